// The guard of device callbacks, itself: every planted fault is seen, clean code is not.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <semaphore.h>
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <thread>
#include <vector>

extern "C" {
__attribute__((weak)) void rt_guard_enter();
__attribute__((weak)) void rt_guard_leave();
__attribute__((weak)) std::uint64_t rt_guard_faults();
__attribute__((weak)) void rt_guard_forget();
}

namespace {

std::uint64_t seenIn(const std::function<void()>& callback) {
    const std::uint64_t before = rt_guard_faults();
    rt_guard_enter();
    callback();
    rt_guard_leave();
    return rt_guard_faults() - before;
}

class Guard : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(rt_guard_enter) << "librt_guard.so is not preloaded"; }
    void TearDown() override { rt_guard_forget(); }
};

TEST_F(Guard, SeesEveryPlantedFault) {
    std::mutex mutex;
    std::shared_mutex shared;
    std::condition_variable condition;
    std::atomic<int> flag{0};
    sem_t semaphore;
    sem_init(&semaphore, 0, 1);
    std::vector<int> vector;
    std::string text;
    void* memory = std::malloc(10);
    const auto owner = std::make_shared<std::unique_ptr<int>>(std::make_unique<int>(1));
    const std::pair<const char*, std::function<void()>> faults[] = {
        {"new", [&] { vector.reserve(vector.capacity() + 100); }},
        {"text", [&] { text.assign(1000, 'x'); }},
        {"realloc", [&] { memory = std::realloc(memory, 5000); }},
        {"free", [&] { std::free(memory); }},
        {"delete", [&] { owner->reset(); }},
        {"aligned", [&] { memory = std::aligned_alloc(64, 128); }},
        {"mutex", [&] { const std::lock_guard lock(mutex); }},
        {"reader", [&] { const std::shared_lock lock(shared); }},
        {"semaphore", [&] { sem_wait(&semaphore); }},
        {"condition",
         [&] {
             std::unique_lock lock(mutex, std::try_to_lock);
             condition.wait_for(lock, std::chrono::milliseconds(1));
         }},
        {"sleep", [] { std::this_thread::sleep_for(std::chrono::microseconds(1)); }},
        {"usleep", [] { usleep(1); }},
        {"file", [] { close(open("/dev/null", O_RDONLY)); }},
        {"stream", [] { std::ifstream in("/dev/null"); }},
        {"write", [] { EXPECT_EQ(0, write(STDERR_FILENO, "", 0)); }},
        {"atomic wait",
         [&] {
             std::thread waker([&] {
                 std::this_thread::sleep_for(std::chrono::milliseconds(20));
                 flag = 1;
                 flag.notify_all();
             });
             flag.wait(0);
             waker.detach();
         }},
    };
    for (const auto& [name, fault] : faults) EXPECT_GT(seenIn(fault), 0U) << name;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
}

TEST_F(Guard, LetsCleanCodePass) {
    std::vector<float> sound(512, 0.5F);
    std::atomic<int> published{0};
    std::mutex mutex;
    std::atomic<bool> stop{false};
    // What other threads do meanwhile is their own affair.
    std::thread other([&] {
        while (!stop) {
            const std::lock_guard lock(mutex);
            std::vector<int>(100).swap(*std::make_unique<std::vector<int>>());
        }
    });
    const std::uint64_t seen = seenIn([&] {
        for (int round = 0; round < 2000; ++round) {
            for (float& sample : sound) sample = sample * 0.99F + 0.001F;
            published.store(round);
            if (mutex.try_lock()) mutex.unlock();
        }
    });
    stop = true;
    other.join();
    EXPECT_EQ(0U, seen);
    EXPECT_EQ(0U, rt_guard_faults());
    // Outside a callback everything is allowed.
    sound.resize(4096);
    EXPECT_EQ(0U, rt_guard_faults());
}

}  // namespace
