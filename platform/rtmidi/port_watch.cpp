#include "platform/rtmidi/port_watch.h"

#include <alsa/asoundlib.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>
#include <vector>

#include "platform/wake.h"

namespace zv {
namespace {

std::atomic<bool> changed{false};

/// Reads what the sequencer announces, on a thread of its own that sleeps until something is.
class AlsaWatch {
  public:
    explicit AlsaWatch(const std::string& client) {
        if (!open(client)) return;
        stop_ = eventfd(0, EFD_CLOEXEC);
        if (stop_ >= 0) thread_ = std::thread([this] { run(); });
    }
    ~AlsaWatch() {
        if (thread_.joinable()) {
            const std::uint64_t one = 1;
            [[maybe_unused]] const ssize_t bytes = write(stop_, &one, sizeof one);
            thread_.join();
        }
        if (stop_ >= 0) close(stop_);
        if (sequencer_ != nullptr) snd_seq_close(sequencer_);
    }
    AlsaWatch(const AlsaWatch&) = delete;
    AlsaWatch& operator=(const AlsaWatch&) = delete;

    bool watches() const { return thread_.joinable(); }

  private:
    bool open(const std::string& client) {
        if (snd_seq_open(&sequencer_, "default", SND_SEQ_OPEN_INPUT, SND_SEQ_NONBLOCK) < 0) {
            sequencer_ = nullptr;
            return false;
        }
        snd_seq_set_client_name(sequencer_, (client + "-watch").c_str());
        const int port = snd_seq_create_simple_port(sequencer_, "announcements",
                                                    SND_SEQ_PORT_CAP_WRITE | SND_SEQ_PORT_CAP_NO_EXPORT,
                                                    SND_SEQ_PORT_TYPE_APPLICATION);
        return port >= 0 && snd_seq_connect_from(sequencer_, port, SND_SEQ_CLIENT_SYSTEM,
                                                 SND_SEQ_PORT_SYSTEM_ANNOUNCE) >= 0;
    }

    void run() {
        const int count = snd_seq_poll_descriptors_count(sequencer_, POLLIN);
        std::vector<pollfd> files(static_cast<std::size_t>(count) + 1);
        snd_seq_poll_descriptors(sequencer_, files.data(), static_cast<unsigned int>(count), POLLIN);
        files.back() = {stop_, POLLIN, 0};
        while (poll(files.data(), files.size(), -1) >= 0 && files.back().revents == 0) {
            snd_seq_event_t* event = nullptr;
            while (snd_seq_event_input(sequencer_, &event) >= 0 && event != nullptr) {
                if (event->type == SND_SEQ_EVENT_PORT_START || event->type == SND_SEQ_EVENT_PORT_EXIT)
                    notePortsChanged();
            }
        }
    }

    snd_seq_t* sequencer_ = nullptr;
    int stop_ = -1;
    std::thread thread_;
};

}  // namespace

void watchAlsaPorts(const std::string& client) {
    static std::unique_ptr<AlsaWatch> watch;
    if (watch == nullptr || !watch->watches()) watch = std::make_unique<AlsaWatch>(client);
}

void notePortsChanged() noexcept {
    changed.store(true, std::memory_order_release);
    wakeInterface();
}

bool portsChanged() { return changed.exchange(false, std::memory_order_acq_rel); }

}  // namespace zv
