/// Date and time on the display when nothing counts. [control]
#pragma once

#include <string>
#include <string_view>

#include "platform/clock.h"

namespace zv {

/// A time or date by a format such as "HH:mm:ss", "hh:mm:ss AM/PM" or "ddd dd mmmm yyyy"; names of days and
/// months come from the language. Pure but for those names.
std::string FormatTime(std::string_view format, const WallTime& time);
std::string FormatDate(std::string_view format, const WallTime& time);

extern bool ClockShowDate;  ///< the display is held down in minimal view
extern bool TaHeld;         ///< minimal view: lblTa is held, the digits show the next announcement

/// lblTa is pressed, or let go.
void HoldNextAnnouncement(bool held);

extern bool DateTimeDemoOn;  ///< the labels show samples; DateTimeUpdate leaves them alone
/// Fills both labels with sample values in the formats of the settings, or brings date and time back.
void DateTimeDemo(bool on);
/// Writes lblDate and lblTime when their text changed; normal view only.
void DateTimeUpdate();
/// Writes the big digits; minimal view only.
void ClockUpdate();
/// Hides the clock of the minimal view at once (a jingle starts).
void StopClock();
void TimerClockTick();
void TimerIdleClockTick();
void TimerReleaseSepTick();

}  // namespace zv
