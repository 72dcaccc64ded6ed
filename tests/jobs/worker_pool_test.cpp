// The threads behind jobs: who is called where, what hangs, what is cancelled, and the end.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/workers/worker_pool.h"

namespace zv::test {
namespace {

using namespace std::chrono_literals;

/// The interface thread's side: a loop that sleeps until a worker wakes it.
class WorkerPoolTest : public ::testing::Test {
  protected:
    WorkerPoolTest() {
        onJobFailure = [this](const std::string& name, const std::exception_ptr& error) {
            try {
                std::rethrow_exception(error);
            } catch (const std::exception& e) {
                failures.push_back(name + ": " + e.what());
            }
        };
    }
    ~WorkerPoolTest() override {
        gate = true;
        gate.notify_all();
        pool->end(10'000);
        onJobFailure = nullptr;
    }

    /// Runs the loop until `condition` holds; false after 20 s.
    bool until(const std::function<bool()>& condition) {
        const auto limit = std::chrono::steady_clock::now() + 20s;
        while (!condition()) {
            if (std::chrono::steady_clock::now() > limit) return false;
            if (woken.exchange(false)) pool->deliver();
            std::this_thread::sleep_for(200us);
        }
        return true;
    }
    JobOrder order(std::function<void(JobWork&)> work, std::function<void()> done = {},
                   JobLane lane = JobLane::soon) {
        JobOrder made;
        made.name = "modTest.Work";
        made.work = std::move(work);
        made.done = std::move(done);
        made.lane = lane;
        return made;
    }
    /// Work that hangs like a disk, until the gate opens.
    std::function<void(JobWork&)> hang() {
        return [this](JobWork&) {
            ++hanging;
            gate.wait(false);
        };
    }

    std::atomic<bool> woken = false, gate = false;
    std::atomic<int> hanging = 0;
    std::vector<std::string> failures;
    std::shared_ptr<WorkerPool> pool = WorkerPool::create([this] { woken = true; });
};

TEST_F(WorkerPoolTest, CallbacksRunAndDieOnTheInterfaceThread) {
    struct Witness {
        std::thread::id home = std::this_thread::get_id();
        ~Witness() { EXPECT_EQ(std::this_thread::get_id(), home); }
    };
    const auto here = std::this_thread::get_id();
    int ended = 0, lastPercent = -1;
    std::vector<Job> jobs;
    for (int i = 0; i < 200; ++i) {
        auto witness = std::make_shared<Witness>();
        JobOrder one = order(
            [here, witness](JobWork& work) {
                EXPECT_NE(std::this_thread::get_id(), here);
                for (int percent = 0; percent <= 100; ++percent) work.progress(percent);
            },
            [&, here, witness] {
                EXPECT_EQ(std::this_thread::get_id(), here);
                EXPECT_EQ(lastPercent, 100);
                ++ended;
            });
        one.progressed = [&](int percent, const std::string&) { lastPercent = percent; };
        jobs.push_back(pool->start(std::move(one)));
        witness.reset();
        if (i % 3 == 0) jobs[static_cast<std::size_t>(i)].cancel();
        until([&, i] { return i % 3 == 0 || !jobs.back().running(); });
    }
    EXPECT_EQ(ended, 133);
}

TEST_F(WorkerPoolTest, WhatIsThrownIsReportedAndTheNextGoesOn) {
    std::string own;
    bool last = false;
    const auto fail = [](JobWork&) { throw std::runtime_error("no such file"); };
    const Job a = pool->start(order(fail));
    JobOrder taken = order(fail);
    taken.failed = [&](const std::exception_ptr&) { own = "taken"; };
    const Job b = pool->start(std::move(taken));
    const Job c = pool->start(order({}, [] { throw std::runtime_error("in the callback"); }));
    const Job d = pool->start(order({}, [&] { last = true; }));
    ASSERT_TRUE(until([&] { return !a.running() && !b.running() && !c.running() && last; }));
    EXPECT_EQ(own, "taken");
    std::ranges::sort(failures);
    EXPECT_EQ(failures,
              (std::vector<std::string>{"modTest.Work: in the callback", "modTest.Work: no such file"}));
}

TEST_F(WorkerPoolTest, WorkThatHangsHoldsUpNobodyAndHurriedWorkComesFirst) {
    std::vector<Job> stuck;
    for (int i = 0; i < 6; ++i) stuck.push_back(pool->start(order(hang())));
    std::vector<int> order_;
    std::mutex mutex;
    std::vector<Job> quick;
    for (int i = 0; i < 5; ++i)
        quick.push_back(pool->start(order([&, i](JobWork&) {
            const std::lock_guard lock(mutex);
            order_.push_back(i);
            std::this_thread::sleep_for(1ms);
        })));
    quick[4].hurry();
    ASSERT_TRUE(until([&] { return std::ranges::none_of(quick, &Job::running); }));
    EXPECT_EQ(hanging, 6);
    EXPECT_EQ(order_.front(), 4);
    EXPECT_TRUE(std::ranges::all_of(stuck, &Job::running));
}

TEST_F(WorkerPoolTest, ALongJobThatGivesSignsOfLifeKeepsItsLaneAndOnlyIt) {
    std::atomic<int> together = 0, most = 0;
    const auto steady = [&](JobWork& work) {
        most = std::max(most.load(), ++together);
        for (int i = 0; i < 100 && !gate && !work.cancelled(); ++i) std::this_thread::sleep_for(2ms);
        --together;
    };
    const Job a = pool->start(order(steady, {}, JobLane::longer));
    const Job b = pool->start(order(steady, {}, JobLane::longer));
    bool soon = false;
    const Job c = pool->start(order({}, [&] { soon = a.running() && b.running(); }));
    ASSERT_TRUE(until([&] { return !c.running(); }));
    EXPECT_TRUE(soon) << "a quick job waited for long ones";
    ASSERT_TRUE(until([&] { return !a.running() && !b.running(); }));
    EXPECT_EQ(most, 1);
}

TEST_F(WorkerPoolTest, TheEndWaitsForWorkThatListensAndLeavesWhatHangs) {
    std::atomic<bool> began = false, told = false;
    bool delivered = false;
    const Job listens = pool->start(order(
        [&](JobWork& work) {
            began = true;
            while (!work.cancelled()) std::this_thread::sleep_for(1ms);
            told = true;
        },
        [&] { delivered = true; }));
    ASSERT_TRUE(until([&] { return began.load(); }));
    const Job hangs = pool->start(order(hang(), [&] { delivered = true; }));
    ASSERT_TRUE(until([&] { return hanging == 1; }));
    EXPECT_FALSE(pool->end(50));
    EXPECT_TRUE(told);
    EXPECT_FALSE(pool->start(order({})).running()) << "nothing starts behind the end";
    gate = true;
    gate.notify_all();
    std::this_thread::sleep_for(20ms);
    pool->deliver();
    EXPECT_FALSE(delivered);
}

TEST_F(WorkerPoolTest, ChanceStartsHurriesAndCancels) {
    std::mt19937 chance(7);
    std::atomic<int> worked = 0;
    int started = 0, ended = 0, cancelled = 0;
    std::vector<Job> jobs(20);
    for (int i = 0; i < 3000; ++i) {
        Job& job = jobs[chance() % jobs.size()];
        switch (chance() % 4) {
            case 0:
                cancelled += job.running() ? 1 : 0;
                job.cancel();
                break;
            case 1:
                job.hurry();
                break;
            default:
                cancelled += job.running() ? 1 : 0;
                job = pool->start(order([&](JobWork& work) { worked += work.cancelled() ? 0 : 1; },
                                        [&] { ++ended; }, i % 5 == 0 ? JobLane::longer : JobLane::soon));
                ++started;
        }
        if (i % 7 == 0) pool->deliver();
    }
    ASSERT_TRUE(until([&] { return std::ranges::none_of(jobs, &Job::running); }));
    EXPECT_EQ(started, ended + cancelled);
    EXPECT_GE(worked, ended);
}

}  // namespace
}  // namespace zv::test
