/// The warning before the end: when it starts, and its blinking. [control]
#pragma once

namespace zv {

extern bool BlinkTestOn;  ///< the settings window shows how the warning looks
extern bool BlinkPhase;   ///< phase of TimerWarnBlink

/// What the warning does at a tick.
enum class WarnStep { leave, start, stop };
/// The table of the end warning, pure: times in seconds.
WarnStep WarningFor(double remain, double minDuration, double remainWarn, bool warnAll, bool blinkRuns);
/// Interval of TimerWarnBlink for a blink rate, ms; 0 for none.
int WarnBlinkInterval(int blinkWarn);
void TimerWarnBlinkTick();

}  // namespace zv
