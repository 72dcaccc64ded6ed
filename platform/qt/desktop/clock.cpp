#include "platform/clock.h"

#include <chrono>
#include <ctime>
#include <thread>

namespace zv {

std::int64_t monotonicMs() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

WallTime wallTime() {
    using namespace std::chrono;
    const auto now = system_clock::now();
    const std::time_t seconds = system_clock::to_time_t(now);
    std::tm local{};
    localtime_r(&seconds, &local);
    const auto ms = duration_cast<milliseconds>(now.time_since_epoch()).count() % 1000;
    WallTime t;
    t.year = local.tm_year + 1900;
    t.month = local.tm_mon + 1;
    t.day = local.tm_mday;
    t.weekday = local.tm_wday;
    t.hour = local.tm_hour;
    t.minute = local.tm_min;
    t.second = local.tm_sec;
    t.millisecond = static_cast<int>(ms);
    return t;
}

// The devices have threads of their own: the sound goes on by itself.
void sleepMs(int ms) {
    if (ms > 0) std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

}  // namespace zv
