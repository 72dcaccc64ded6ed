#include "audio/wall_seconds.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>

namespace zv {

namespace {

constexpr std::int64_t kSecond = 1000;  // ms
constexpr std::int64_t kSetFrom = 500;  // ms by which the two clocks differ when one was set

}  // namespace

std::int64_t WallMs(const WallTime& time) {
    using namespace std::chrono;
    const sys_days day{year(time.year) / time.month / time.day};
    const auto whole =
        day.time_since_epoch() + hours(time.hour) + minutes(time.minute) + seconds(time.second);
    return duration_cast<milliseconds>(whole).count() + time.millisecond;
}

WallSeconds::Span WallSeconds::begun(std::int64_t wallMs, std::int64_t monotonicMs) {
    const std::int64_t second = wallMs / kSecond;
    const std::int64_t went = (wallMs - wallMs_) - (monotonicMs - monotonicMs_);
    const bool set = !asked_ || std::llabs(went) >= kSetFrom;
    const Span span{set ? second : last_ + 1, second};
    asked_ = true;
    wallMs_ = wallMs;
    monotonicMs_ = monotonicMs;
    // A clock that is put back a little waits until it is where it was.
    last_ = set ? second : std::max(last_, second);
    return span;
}

}  // namespace zv
