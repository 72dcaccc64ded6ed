/// The display and the tick that keeps it and the buttons true. [control]
#pragma once

#include <string>
#include <string_view>

#include "platform/controls.h"

namespace zv {

extern std::string DispText;  ///< DispRemain as text, "0" below 0.1
extern double MinDuration;    ///< s, smallest playable length among what sounds
extern bool BlinkTestOn;
extern bool BlinkPhase;  ///< phase of TimerWarnBlink

/// What the warning does at a tick.
enum class WarnStep { leave, start, stop };
/// The table of the end warning, pure: times in seconds.
WarnStep WarningFor(double remain, double minDuration, double remainWarn, bool warnAll, bool blinkRuns);

/// The tick: states, bars, counter, warning, end of play.
void TimerDispAndJButtonsTick();
void TimerWarnBlinkTick();
void TimerFadeOutLEDTick();
void TimerControlFlashTick();
/// Writes the digits from DispRemain; `text` is DispText.
void WriteDigits(double remain, const std::string& text);
void SetDigitsColour(Colour colour);
/// The part of the tick behind the warning: clock of the minimal view, digits, end of the blink.
void ShowRemain();
/// Interval of TimerWarnBlink for a blink rate, ms; 0 for none.
int WarnBlinkInterval(int blinkWarn);

/// Mouse down and up on the display.
void switchDisPalName();
void switchDisPalNameRelease();

/// Seconds as minutes, colon, two digits of seconds, point, one decimal; empty for an empty text.
std::string seconds2msd(std::string_view value);
std::string seconds2msd(double seconds);

/// What ErrDisp shows on the mark of the display ("save", "wait", "ok", "no", "notification", "hide").
void ShowErrMark(std::string_view mode, int blink, std::string_view text);
/// The mark is there and shows this letter.
bool ErrMarkShows(std::string_view letter);
void HideErrMark();

}  // namespace zv
