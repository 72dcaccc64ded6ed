/// The window's timers, declared in the order in which they fire when due at once. [control]
#pragma once

#include "platform/timers.h"

namespace zv {

struct UiTimers {
    UiTimers();

    Timer TimerDispAndJButtons;  ///< 110 - DispSpeed ms
    Timer TimerVU;               ///< (11 - VUspeed) x 10 ms
    Timer TimerKeyModifiers;     ///< 80 ms
    Timer TimerTimeAndTA;        ///< 1000 ms
    Timer SaveTimer;             ///< 50 ms
    Timer TimerLoadPal;          ///< 100 ms
    Timer TimerClock;            ///< 1000 ms
    Timer TimerIdleClock;        ///< 2000 ms
    Timer TimerReleaseSep;       ///< 500 ms
    Timer TimerWarnBlink;        ///< 10000 / BlinkWarn ms
    Timer TimerMainPos;          ///< 500 ms
    Timer TimerFadeOutLED;       ///< 100 ms, always on
    Timer TimerControlFlash;     ///< 500 ms, always on
    Timer TimerVUFD;             ///< 10 ms while the bars fall
    Timer TimerNotif;
    Timer TimerPgUpDnPalLst;      ///< 10 ms while Page Up or Down is held
    Timer Timerlstpalbot;         ///< 500 ms: Page Down held at the end
    Timer Timerlstpaltop;         ///< 500 ms
    Timer TimerTrigColSel;        ///< 50 ms
    Timer TimerCloseColorPicker;  ///< 50 ms
    Timer TimerShutDown;          ///< 2000 ms: Exit held
    Timer tmrResize;              ///< 20 ms after the window changed its size
};

UiTimers& timers();
/// Sets the intervals from the settings and starts those that run from the start.
void StartTimers();
/// Stops all of them (the window unloads).
void StopTimers();

}  // namespace zv
