/// The rehearsal's time. It stands still while the program works and moves only when the rehearsal, or a wait
/// of the program, moves it: then sound is rendered up to the next due time and what is due fires, in the
/// order of due time, then of declaration. It answers platform/clock.h. [control]
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/offline/offline_devices.h"

namespace zv {

/// Rate at which time is counted for the devices; a device of another rate renders its share.
inline constexpr std::uint32_t kClockRate = 44100;
/// Period of the devices: the finest step in which sound is rendered.
inline constexpr std::int64_t kPeriodMs = 10;

/// Something besides the timers that falls due: results of jobs, messages of devices.
struct DueSource {
    std::function<std::optional<std::int64_t>()> next;  ///< when the next of it is due
    std::function<void(std::int64_t now)> fire;         ///< does the first that is due
};

class VirtualClock {
  public:
    static VirtualClock& instance();

    /// From now on served as well; of one moment it comes before the timers.
    void serve(DueSource source);

    /// The devices that are pulled as time goes on; null for none.
    void drive(std::shared_ptr<OfflineDevices> devices);
    /// Called after the sound up to the present moment has been rendered, once a period.
    void onPeriod(std::function<void()> step);

    std::int64_t now() const { return now_; }
    /// Time goes on to `until`: what falls due on the way is fired at its own moment, what is due at `until`
    /// last. Stops early when `enough` says so behind something that fired.
    void advanceTo(std::int64_t until, const std::function<bool()>& enough = {});
    /// Time goes on without a timer, as for a thread that waits.
    void waitUntil(std::int64_t until);
    /// On to the next full period.
    void alignToPeriod();

    /// Sets the wall clock: "HH:MM:SS" or "YYYY-MM-DD HH:MM:SS". False when it is no time.
    bool setWallTime(std::string_view text);
    /// Milliseconds of wall time since 1970 in the user's zone.
    std::int64_t wallMs() const { return now_ + wallOffset_; }

  private:
    VirtualClock();
    void renderTo(std::int64_t until);
    /// Fires what is due now, of one source or of the timers; false when nothing is. `next` is when the first of
    /// the rest is due, at most what it was.
    bool fireDue(std::int64_t& next);

    std::shared_ptr<OfflineDevices> devices_;
    std::function<void()> step_;
    std::vector<DueSource> sources_;
    std::int64_t now_;
    std::int64_t wallOffset_ = 0;
};

/// "HH:MM:SS" or "YYYY-MM-DD HH:MM:SS" as milliseconds; without a date those of `today`'s day. False when it
/// is none.
bool parseWallTime(std::string_view text, std::int64_t today, std::int64_t& ms);

}  // namespace zv
