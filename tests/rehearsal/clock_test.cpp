#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/rehearsal/virtual_clock.h"
#include "platform/timers.h"

namespace zv {
namespace {

struct Listener : engine::SoundClient {
    std::vector<std::int64_t> calls;  ///< ms at which a period was asked for
    void render(std::span<float>) override { calls.push_back(monotonicMs()); }
    void heard(std::span<const float>) override {}
    void deviceLost() override {}
    void deviceBack() override {}
};

TEST(VirtualClock, FiresAtTheDueTimeThenInTheOrderOfDeclaration) {
    VirtualClock& clock = VirtualClock::instance();
    clock.alignToPeriod();
    const std::int64_t start = monotonicMs();
    std::string log;
    const auto note = [&](const char* name) {
        log += std::string(name) + "@" + std::to_string(monotonicMs() - start) + " ";
    };
    Timer slow("testSlow", 30, [&] { note("slow"); });
    Timer fast("testFast", 15, [&] { note("fast"); });
    slow.start();
    fast.start();
    clock.advanceTo(start + 60);
    EXPECT_EQ(log, "fast@15 slow@30 fast@30 fast@45 slow@60 fast@60 ");
}

TEST(VirtualClock, AWaitHoldsTimersBackButNotTheSound) {
    VirtualClock& clock = VirtualClock::instance();
    const auto devices = makeOfflineDevices();
    clock.drive(devices);
    clock.alignToPeriod();
    const std::int64_t start = monotonicMs();
    Listener listener;
    const auto device = devices->openOutput("", kClockRate, listener);
    int fired = 0;
    Timer tick("testTick", 10, [&] { ++fired; });
    tick.start();
    sleepMs(100);
    EXPECT_EQ(fired, 0);
    EXPECT_EQ(listener.calls.size(), 10U);
    clock.advanceTo(start + 120);
    EXPECT_EQ(fired, 3) << "at 100 once, however often it was missed, then at 110 and 120";
    clock.drive(nullptr);
}

}  // namespace
}  // namespace zv
