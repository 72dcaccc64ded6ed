#include "platform/jack/jack_devices.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <mutex>
#include <thread>

#include "platform/jack/jack_stream.h"
#include "platform/paced/paced_device.h"

namespace zv {
namespace {

using namespace std::chrono_literals;

constexpr auto kAskAgain = 400ms;
constexpr std::uint32_t kNoSoundPeriod = 256;  // frames

class JackDevice final : public engine::SoundDevice {
  public:
    explicit JackDevice(std::shared_ptr<JackStream> stream)
        : stream_(std::move(stream)),
          rate_(stream_->rate()),
          period_(stream_->period()),
          thread_([stream = stream_] { stream->follow(); }) {}
    ~JackDevice() override { stream_->stop() ? thread_.join() : thread_.detach(); }

    std::uint32_t rate() const override { return rate_; }
    std::uint32_t period() const override { return period_; }

  private:
    std::shared_ptr<JackStream> stream_;
    const std::uint32_t rate_, period_;
    std::thread thread_;
};

/// A client that only looks. It is kept, for to open one takes the server a while.
class Lister {
  public:
    ~Lister() { close(); }

    /// Physical ports that sound goes to, or comes from, in the server's order.
    std::vector<std::string> ports(JackDirection direction, std::uint32_t& rate) {
        const std::lock_guard lock(mutex_);
        if (gone_) close();
        if (jack_ == nullptr && !open()) return {};
        rate = jack_get_sample_rate(jack_);
        const auto flags =
            JackPortIsPhysical | (direction == JackDirection::output ? JackPortIsInput : JackPortIsOutput);
        std::vector<std::string> names;
        const char** found = jack_get_ports(jack_, nullptr, JACK_DEFAULT_AUDIO_TYPE, flags);
        for (const char** name = found; name != nullptr && *name != nullptr; ++name)
            names.emplace_back(*name);
        if (found != nullptr) jack_free(found);
        return names;
    }

  private:
    bool open() {
        const auto now = std::chrono::steady_clock::now();
        if (now < askAgain_) return false;
        gone_ = false;
        jack_ = openJackClient("Zentrova devices");
        if (jack_ == nullptr) {
            askAgain_ = now + kAskAgain;
            return false;
        }
        jack_on_shutdown(
            jack_, [](void* self) { static_cast<Lister*>(self)->gone_ = true; }, this);
        if (jack_activate(jack_) == 0) return true;  // only an active one hears of the server's end
        close();
        return false;
    }
    void close() {
        if (jack_ != nullptr) closeJackClient(jack_);
        jack_ = nullptr;
    }

    std::mutex mutex_;
    jack_client_t* jack_ = nullptr;
    std::atomic<bool> gone_{false};
    std::chrono::steady_clock::time_point askAgain_;
};

struct Pair {
    std::string name;
    std::vector<std::string> ports;
};

/// Ports of a client by twos.
std::vector<Pair> pairsOf(const std::vector<std::string>& ports) {
    std::vector<Pair> pairs;
    std::map<std::string, std::size_t> seen;  // ports of each client so far
    for (const std::string& port : ports) {
        const std::string client = port.substr(0, port.find(':'));
        const std::size_t number = ++seen[client];
        if (number % 2 == 1) {
            pairs.push_back({client + " " + std::to_string(number), {port}});
            continue;
        }
        for (Pair& pair : pairs) {
            if (pair.name != client + " " + std::to_string(number - 1)) continue;
            pair.name += "/" + std::to_string(number);
            pair.ports.push_back(port);
        }
    }
    return pairs;
}

class JackDevices final : public engine::DeviceSource {
  public:
    std::vector<engine::DeviceDescription> outputs() override { return list(JackDirection::output); }
    std::vector<engine::DeviceDescription> inputs() override { return list(JackDirection::input); }
    std::unique_ptr<engine::SoundDevice> openOutput(const std::string& id, std::uint32_t,
                                                    engine::SoundClient& client) override {
        return open(JackDirection::output, id, client);
    }
    std::unique_ptr<engine::SoundDevice> openInput(const std::string& id, std::uint32_t,
                                                   engine::SoundClient& client) override {
        return open(JackDirection::input, id, client);
    }
    std::unique_ptr<engine::SoundDevice> openNoSound(std::uint32_t rate,
                                                     engine::SoundClient& client) override {
        return openPacedDevice(rate, kNoSoundPeriod, client);
    }
    bool offline() const override { return false; }

  private:
    std::vector<engine::DeviceDescription> list(JackDirection direction) {
        std::uint32_t rate = 0;
        std::vector<engine::DeviceDescription> devices;
        for (const Pair& pair : pairsOf(lister_.ports(direction, rate)))
            devices.push_back({pair.name, pair.name, devices.empty(), rate});
        return devices;
    }

    std::unique_ptr<engine::SoundDevice> open(JackDirection direction, const std::string& id,
                                              engine::SoundClient& client) {
        std::uint32_t rate = 0;
        const std::vector<Pair> pairs = pairsOf(lister_.ports(direction, rate));
        const auto pair =
            id.empty() ? pairs.begin() : std::ranges::find(pairs, id, [](const Pair& p) { return p.name; });
        if (pair == pairs.end()) return nullptr;
        auto stream = std::make_shared<JackStream>(direction, pair->ports, client);
        if (!stream->open()) return nullptr;
        return std::make_unique<JackDevice>(std::move(stream));
    }

    Lister lister_;
};

}  // namespace

std::shared_ptr<engine::DeviceSource> makeJackDevices() { return std::make_shared<JackDevices>(); }

}  // namespace zv
