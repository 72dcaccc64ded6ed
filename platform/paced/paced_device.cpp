#include "platform/paced/paced_device.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace zv {
namespace {

using Clock = std::chrono::steady_clock;

constexpr auto longestLag =
    std::chrono::milliseconds(200);     // a machine that slept does not catch up on its sleep
constexpr std::uint32_t restCalls = 5;  // calls a second while the client rests

class PacedDevice : public engine::SoundDevice {
  public:
    PacedDevice(std::uint32_t rate, std::uint32_t period, engine::SoundClient& client)
        : rate_(rate), period_(period), client_(&client), thread_([this] { run(); }) {}
    ~PacedDevice() override {
        {
            const std::lock_guard lock(mutex_);
            stopping_ = true;
        }
        changed_.notify_one();
        thread_.join();
    }
    std::uint32_t rate() const override { return rate_; }
    std::uint32_t period() const override { return period_; }
    void wake() override {
        {
            const std::lock_guard lock(mutex_);
            if (!resting_) return;
            woken_ = true;
        }
        changed_.notify_one();
    }

  private:
    void run() {
        const std::uint32_t lump = std::max(period_, rate_ / restCalls);
        std::vector<float> sound(std::size_t{lump} * 2);
        const auto lasts = [&](std::uint64_t frames) {
            return std::chrono::nanoseconds(frames / rate_ * 1'000'000'000 +
                                            frames % rate_ * 1'000'000'000 / rate_);
        };
        // Deadlines count from one moment, so that rounding and late wake-ups do not add up.
        auto start = Clock::now();
        std::uint64_t frames = 0;
        std::unique_lock lock(mutex_);
        while (!stopping_) {
            // Asked under the lock: an order that comes later finds the device resting and wakes it.
            resting_ = client_->resting();
            const std::uint32_t now = resting_ ? lump : period_;
            lock.unlock();
            client_->render({sound.data(), std::size_t{now} * 2});
            frames += now;
            const auto due = start + lasts(frames);
            const bool late = Clock::now() > due + longestLag;
            lock.lock();
            if (!late) changed_.wait_until(lock, due, [this] { return stopping_ || woken_; });
            if (late || woken_) {
                start = Clock::now();
                frames = 0;
            }
            woken_ = resting_ = false;
        }
    }

    std::uint32_t rate_;
    std::uint32_t period_;
    engine::SoundClient* client_;
    std::mutex mutex_;  ///< between the thread and wake()
    std::condition_variable changed_;
    bool stopping_ = false, resting_ = false, woken_ = false;
    std::thread thread_;
};

}  // namespace

std::unique_ptr<engine::SoundDevice> openPacedDevice(std::uint32_t rate, std::uint32_t periodFrames,
                                                     engine::SoundClient& client) {
    if (rate == 0 || periodFrames == 0) return nullptr;
    return std::make_unique<PacedDevice>(rate, periodFrames, client);
}

}  // namespace zv
