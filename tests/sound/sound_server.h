/// A PulseAudio server of the test's own: two outputs, and a microphone that hears what is sent to "micfeed".
#pragma once

#include <sys/types.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/sound/workshop.h"

namespace zv::test {

/// A program that runs beside the test and ends with it.
class Process {
  public:
    Process() = default;
    /// Starts `arguments` with `environment` added to the test's own; what it writes goes to `output` (a
    /// file) or nowhere.
    Process(const std::vector<std::string>& arguments,
            const std::vector<std::pair<std::string, std::string>>& environment,
            const std::string& output = "/dev/null");
    Process(Process&& other) noexcept : pid_(std::exchange(other.pid_, -1)) {}
    Process& operator=(Process&& other) noexcept {
        std::swap(pid_, other.pid_);
        return *this;
    }
    ~Process() { end(); }

    bool running();
    /// Asks it to end, insists after two seconds.
    void end();
    void signal(int number) const;

  private:
    pid_t pid_ = -1;
};

class SoundServer {
  public:
    SoundServer() { start(); }

    /// What a client calls the server.
    std::string address() const { return "unix:" + (folder_ / "native"); }
    bool answers() const;
    void start();
    void stop() { server_.end(); }
    /// Stops the server's program in its tracks, or lets it go on.
    void freeze(bool frozen) const;

    void plugOutput(const std::string& name, const std::string& description, int rate = 44'100);
    void unplugOutput(const std::string& name);
    int pactl(const std::string& arguments) const;

    /// Records what output `name` sends until the recording is stopped. 44.1 kHz stereo float.
    class Recording {
      public:
        Recording(const SoundServer& server, const std::string& output);
        std::vector<float> stop();
        std::size_t frames() const;

      private:
        std::string file_;
        Process recorder_;
    };
    /// Plays a WAV into the microphone.
    Process feedMicrophone(const std::string& wav) const;

  private:
    std::vector<std::pair<std::string, std::string>> environment() const;

    Folder folder_;
    Process server_;
};

/// Sends a steady sound, and counts what it is asked for and what it hears.
class Probe : public engine::SoundClient {
  public:
    static constexpr float level = 0.25F;
    void render(std::span<float> stereo) override;
    void heard(std::span<const float> stereo) override;
    void deviceLost() override { ++lost; }
    void deviceBack() override { ++back; }

    std::atomic<std::uint64_t> asked{0}, taken{0};  ///< frames
    std::atomic<std::size_t> longest{0};            ///< frames of one call
    std::atomic<float> loudest{0};                  ///< that was heard
    std::atomic<std::int64_t> soundAt{0};  ///< when something was heard first, ns of the steady clock
    std::atomic<int> lost{0}, back{0};
};

/// A JACK server with two inputs and three outputs, found by whoever becomes its client in this process.
Process startJack(const Folder& home, int rate, int period);

/// Sends clicks to output `from` and listens at input `to`: how long each was under way, in ms, in rising
/// order; nothing when one got lost.
std::vector<double> clickTravels(engine::DeviceSource& devices, const std::string& from,
                                 const std::string& to);

/// Waits until `holds` does, at most `seconds`.
template <class Condition>
bool within(double seconds, Condition holds) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (!holds()) {
        if (std::chrono::steady_clock::now() > limit) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

}  // namespace zv::test
