// Jobs on the virtual clock: the same moments at every run.
#include <gtest/gtest.h>

#include <string>

#include "platform/clock.h"
#include "platform/jobs.h"
#include "platform/rehearsal/virtual_clock.h"
#include "platform/timers.h"

namespace zv::test {
namespace {

TEST(VirtualJobs, ReportsAndEndsAtFixedTimesUnlessCancelled) {
    VirtualClock& clock = VirtualClock::instance();
    const std::int64_t start = clock.now();
    std::string told;
    const auto tell = [&](const std::string& what) {
        told += what + "@" + std::to_string(monotonicMs() - start) + " ";
    };
    const auto order = [&](const std::string& name, int ms, int parts) {
        JobOrder made;
        made.name = name;
        made.rehearsedMs = ms;
        made.work = [parts](JobWork& work) {
            for (int i = 1; i <= parts && !work.cancelled(); ++i) work.progress(100 * i / parts);
        };
        made.progressed = [&, name](int percent, const std::string&) {
            tell(name + std::to_string(percent));
        };
        made.done = [&, name] { tell(name + "done"); };
        return made;
    };
    Timer timer("TimerTest", 30, [&] { tell("timer"); });
    timer.start();
    Job a = startJob(order("a", 20, 2)), b = startJob(order("b", 30, 0)), c = startJob(order("c", 25, 4));
    EXPECT_EQ(told, "") << "nothing comes before its time";
    Job atOnce = startJob(order("d", 0, 1));
    EXPECT_FALSE(atOnce.running());
    clock.advanceTo(start + 30);
    timer.stop();
    c.cancel();
    clock.advanceTo(start + 1000);
    EXPECT_EQ(told, "d100@0 ddone@0 a50@20 c25@25 bdone@30 timer@30 a100@40 adone@60 ");

    // A callback that ends its own holder, and starts the next.
    told.clear();
    JobOrder own = order("own", 10, 3);
    own.progressed = [&](int, const std::string&) {
        tell("next");
        a = startJob(order("e", 10, 0));
    };
    a = startJob(std::move(own));
    clock.advanceTo(start + 2000);
    EXPECT_EQ(told, "next@1010 edone@1020 ");
}

}  // namespace
}  // namespace zv::test
