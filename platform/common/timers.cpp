#include "platform/timers.h"

#include <algorithm>
#include <cctype>

#include "platform/clock.h"

namespace zv {
namespace {

struct Entry {
    Timer* timer;
    std::uint64_t firedIn;  ///< the round in which it fired last
};

/// Made by the first timer and never destroyed: timers in statics may end after any other static.
struct Registry {
    std::vector<Entry> timers;
    std::function<void()> rearm;
    std::uint64_t round = 0;
};

Registry& registry() {
    static Registry& r = *new Registry;
    return r;
}

void changed() {
    if (registry().rearm) registry().rearm();
}

bool sameName(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

}  // namespace

Timer::Timer(std::string_view n, int intervalMs, std::function<void()> h)
    : name(n), handler(std::move(h)), interval_(intervalMs) {
    registry().timers.push_back({this, 0});
}

Timer::~Timer() {
    std::erase_if(registry().timers, [this](const Entry& e) { return e.timer == this; });
}

void Timer::start() {
    if (!enabled_) restart();
}

void Timer::restart() {
    enabled_ = true;
    due_ = monotonicMs() + interval_;
    changed();
}

void Timer::stop() { enabled_ = false; }

void Timer::setInterval(int ms) {
    if (ms == interval_) return;
    interval_ = ms;
    if (enabled_) restart();
}

std::optional<std::int64_t> nextTimerDue() {
    std::optional<std::int64_t> next;
    for (const Entry& e : registry().timers) {
        const Timer& t = *e.timer;
        if (t.enabled_ && t.interval_ > 0 && (!next || t.due_ < *next)) next = t.due_;
    }
    return next;
}

void fireDueTimers(std::int64_t now) {
    const std::uint64_t round = ++registry().round;
    for (;;) {
        // Looked up anew each time: the handler may have declared, ended or changed any timer.
        Entry* first = nullptr;
        for (Entry& e : registry().timers) {
            const Timer& t = *e.timer;
            if (!t.enabled_ || t.interval_ <= 0 || t.due_ > now || e.firedIn >= round) continue;
            if (first == nullptr || t.due_ < first->timer->due_) first = &e;
        }
        if (first == nullptr) return;
        first->firedIn = round;
        Timer& t = *first->timer;
        t.due_ += t.interval_;
        if (t.due_ <= now) t.due_ = now + t.interval_;  // what was missed is not made up for
        if (t.handler) t.handler();
    }
}

Timer* findTimer(std::string_view name) {
    for (const Entry& e : registry().timers) {
        if (sameName(e.timer->name, name)) return e.timer;
    }
    return nullptr;
}

void onTimersChanged(std::function<void()> rearm) { registry().rearm = std::move(rearm); }

}  // namespace zv
