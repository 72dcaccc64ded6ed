#include "platform/paced/paced_device.h"

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace zv {
namespace {

using Clock = std::chrono::steady_clock;

constexpr auto longestLag =
    std::chrono::milliseconds(200);  // a machine that slept does not catch up on its sleep

class PacedDevice : public SoundDevice {
  public:
    PacedDevice(std::uint32_t rate, std::uint32_t period, SoundClient& client)
        : rate_(rate), period_(period), client_(&client), thread_([this] { run(); }) {}
    ~PacedDevice() override {
        stopping_ = true;
        thread_.join();
    }
    std::uint32_t rate() const override { return rate_; }
    std::uint32_t period() const override { return period_; }

  private:
    void run() {
        std::vector<float> sound(std::size_t{period_} * 2);
        const auto length = std::chrono::nanoseconds(std::uint64_t{1'000'000'000} * period_ / rate_);
        // Deadlines count from the start, so that rounding and late wake-ups do not add up.
        auto start = Clock::now();
        std::uint64_t periods = 0;
        while (!stopping_) {
            client_->render(sound);
            ++periods;
            const auto due =
                start + std::chrono::nanoseconds(periods * period_ / rate_ * 1'000'000'000 +
                                                 periods * period_ % rate_ * 1'000'000'000 / rate_);
            if (Clock::now() > due + longestLag) {
                start = Clock::now() - length;
                periods = 1;
            } else {
                std::this_thread::sleep_until(due);
            }
        }
    }

    std::uint32_t rate_;
    std::uint32_t period_;
    SoundClient* client_;
    std::atomic<bool> stopping_ = false;
    std::thread thread_;
};

}  // namespace

std::unique_ptr<SoundDevice> openPacedDevice(std::uint32_t rate, std::uint32_t periodFrames, SoundClient& client) {
    if (rate == 0 || periodFrames == 0) return nullptr;
    return std::make_unique<PacedDevice>(rate, periodFrames, client);
}

}  // namespace zv
