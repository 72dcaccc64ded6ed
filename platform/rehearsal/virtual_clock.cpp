#include "platform/rehearsal/virtual_clock.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <optional>
#include <utility>

#include "platform/clock.h"
#include "platform/timers.h"

namespace zv {
namespace {

/// Where the monotonic clock begins: like a machine that has been up for a while.
constexpr std::int64_t kStartMs = 100'000;
constexpr std::int64_t kDayMs = 24LL * 3600 * 1000;
/// What the wall shows when the program starts, unless the script sets it.
constexpr std::string_view kStartWallTime = "2026-11-21 10:58:00";

std::uint64_t framesAt(std::int64_t ms) { return static_cast<std::uint64_t>(ms) * kClockRate / 1000; }

/// Numbers of exactly the widths given, separated by `mark`.
template <std::size_t N>
bool readFields(std::string_view text, const int (&widths)[N], char mark, int (&values)[N]) {
    for (std::size_t i = 0; i < N; ++i) {
        if (i > 0) {
            if (text.empty() || text.front() != mark) return false;
            text.remove_prefix(1);
        }
        const auto width = static_cast<std::size_t>(widths[i]);
        if (text.size() < width) return false;
        const auto [end, error] = std::from_chars(text.data(), text.data() + width, values[i]);
        if (error != std::errc{} || end != text.data() + width || values[i] < 0) return false;
        text.remove_prefix(width);
    }
    return text.empty();
}

}  // namespace

bool parseWallTime(std::string_view text, std::int64_t today, std::int64_t& ms) {
    std::int64_t day = today - (today % kDayMs + kDayMs) % kDayMs;
    if (const std::size_t gap = text.find(' '); gap != std::string_view::npos) {
        int date[3];
        if (!readFields(text.substr(0, gap), {4, 2, 2}, '-', date)) return false;
        const std::chrono::year_month_day ymd{std::chrono::year{date[0]},
                                              std::chrono::month{static_cast<unsigned>(date[1])},
                                              std::chrono::day{static_cast<unsigned>(date[2])}};
        if (!ymd.ok()) return false;
        day = std::chrono::sys_days{ymd}.time_since_epoch().count() * kDayMs;
        text.remove_prefix(gap + 1);
    }
    int time[3];
    if (!readFields(text, {2, 2, 2}, ':', time)) return false;
    if (time[0] > 23 || time[1] > 59 || time[2] > 59) return false;
    ms = day + ((time[0] * 60LL + time[1]) * 60 + time[2]) * 1000;
    return true;
}

VirtualClock& VirtualClock::instance() {
    static VirtualClock clock;
    return clock;
}

VirtualClock::VirtualClock() : now_(kStartMs) { setWallTime(kStartWallTime); }

void VirtualClock::drive(std::shared_ptr<OfflineDevices> devices) { devices_ = std::move(devices); }

void VirtualClock::onPeriod(std::function<void()> step) { step_ = std::move(step); }

void VirtualClock::renderTo(std::int64_t until) {
    while (now_ < until) {
        const std::int64_t next = std::min(until, (now_ / kPeriodMs + 1) * kPeriodMs);
        if (devices_) devices_->pull(framesAt(next) - framesAt(now_), kClockRate);
        now_ = next;
        if (step_) step_();
    }
}

void VirtualClock::serve(DueSource source) { sources_.push_back(std::move(source)); }

bool VirtualClock::fireDue(std::int64_t& next) {
    for (const DueSource& source : sources_) {
        const std::optional<std::int64_t> due = source.next();
        if (due && *due <= now_) {
            source.fire(now_);
            return true;
        }
        if (due) next = std::min(next, *due);
    }
    const std::optional<std::int64_t> due = nextTimerDue();
    if (due && *due <= now_) {
        fireDueTimers(now_);
        return true;
    }
    if (due) next = std::min(next, *due);
    return false;
}

void VirtualClock::advanceTo(std::int64_t until, const std::function<bool()>& enough) {
    for (;;) {
        std::int64_t next = until;
        if (fireDue(next)) {
            if (enough && enough()) return;
            continue;
        }
        if (now_ >= until) return;
        renderTo(next);
    }
}

void VirtualClock::waitUntil(std::int64_t until) { renderTo(until); }

void VirtualClock::alignToPeriod() { renderTo((now_ + kPeriodMs - 1) / kPeriodMs * kPeriodMs); }

bool VirtualClock::setWallTime(std::string_view text) {
    std::int64_t ms = 0;
    if (!parseWallTime(text, wallMs(), ms)) return false;
    wallOffset_ = ms - now_;
    return true;
}

// ---- platform/clock.h
// ------------------------------------------------------------------------------------------

std::int64_t monotonicMs() { return VirtualClock::instance().now(); }

WallTime wallTime() {
    const std::int64_t ms = VirtualClock::instance().wallMs();
    const std::chrono::sys_days day = std::chrono::floor<std::chrono::days>(
        std::chrono::sys_time<std::chrono::milliseconds>{std::chrono::milliseconds{ms}});
    const std::chrono::year_month_day date{day};
    const std::int64_t inDay = ms - day.time_since_epoch().count() * kDayMs;
    WallTime t;
    t.year = static_cast<int>(date.year());
    t.month = static_cast<int>(static_cast<unsigned>(date.month()));
    t.day = static_cast<int>(static_cast<unsigned>(date.day()));
    t.weekday = static_cast<int>(std::chrono::weekday{day}.c_encoding());
    t.hour = static_cast<int>(inDay / 3'600'000);
    t.minute = static_cast<int>(inDay / 60'000 % 60);
    t.second = static_cast<int>(inDay / 1000 % 60);
    t.millisecond = static_cast<int>(inDay % 1000);
    return t;
}

void sleepMs(int ms) { VirtualClock::instance().waitUntil(monotonicMs() + ms); }

}  // namespace zv
