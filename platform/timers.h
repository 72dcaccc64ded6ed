/// Timers as records. The desktop drives them with the system's timers, the rehearsal with a virtual clock; both
/// fire what is due in the order of due time, then of declaration. A handler may start, stop and change any
/// timer, its own included. A timer that is late fires once, not once per missed interval. [control]
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zv {

class Timer {
  public:
    /// Declares a timer; it is off until enabled and never fires with an interval of 0.
    Timer(std::string_view name, int intervalMs, std::function<void()> handler);
    ~Timer();
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    const std::string name;
    std::function<void()> handler;

    bool enabled() const { return enabled_; }
    void start();    ///< enables; a timer that runs goes on as it is
    void restart();  ///< enables and counts from now
    void stop();
    void setInterval(int ms);  ///< counts from now when it changes

  private:
    friend std::optional<std::int64_t> nextTimerDue();
    friend void fireDueTimers(std::int64_t);
    bool enabled_ = false;
    int interval_ = 0;
    std::int64_t due_ = 0;  ///< monotonic ms
};

/// When the next timer is due (monotonicMs), nothing while all are off.
std::optional<std::int64_t> nextTimerDue();
/// Fires everything that is due at `now`, each timer at most once.
void fireDueTimers(std::int64_t now);
Timer* findTimer(std::string_view name);
/// Called whenever nextTimerDue() may have become earlier.
void onTimersChanged(std::function<void()> rearm);

}  // namespace zv
