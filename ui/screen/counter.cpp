#include "ui/screen/counter.h"

#include <string>

#include "model/state.h"
#include "platform/timers.h"
#include "startup/helpers.h"
#include "startup/settings/clock_settings.h"
#include "startup/settings/display_settings.h"
#include "startup/settings/minimal_settings.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/clock.h"
#include "ui/screen/digits.h"

namespace zv {

std::string DispText = "0";

namespace {

/// Minimal view: the clock comes two seconds after the counter has gone idle, and goes when it counts.
void minimalClock() {
    UiTimers& t = timers();
    if (DispRemain <= 0) {
        if (clockSettings.ClockEnabled == 1) {
            if (!ClockShown) {
                t.TimerIdleClock.start();
            }
        } else if (ClockShown) {
            StopClock();
        }
    } else if (ClockShown) {
        StopClock();
    }
}

}  // namespace

void ShowRemain() {
    Timer& blink = timers().TimerWarnBlink;
    if (DispRemain <= 0 && blink.enabled()) {
        blink.stop();
        SetDigitsColour(displaySettings.CountDownColor);
    }
    if (minimalSettings.MinimalView == 1) {
        minimalClock();
    }
    if (ClockShown || (TaHeld && DispRemain <= 0)) {
        return;
    }
    WriteDigits(Val(DispText));
}

}  // namespace zv
