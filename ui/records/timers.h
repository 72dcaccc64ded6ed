/// The window's timers, declared in the order in which they fire when due at once. [control]
#pragma once

#include <string_view>

#include "platform/timers.h"

namespace zv {

/// A timer of this room: it stops with the window. Its handler comes from wiring.cpp.
class UiTimer : public Timer {
  public:
    UiTimer(std::string_view timer, int intervalMs);
    ~UiTimer();
};

struct UiTimers {
    UiTimers();

    UiTimer TimerDispAndJButtons;    ///< 110 - DispSpeed ms
    UiTimer TimerVU;                 ///< (11 - VUspeed) x 10 ms
    UiTimer TimerKeyModifiers;       ///< 80 ms
    UiTimer TimerTimeAndTA;          ///< 1000 ms
    UiTimer SaveTimer;               ///< 50 ms
    UiTimer TimerLoadPal;            ///< 100 ms
    UiTimer TimerClock;              ///< 1000 ms
    UiTimer TimerIdleClock;          ///< 2000 ms
    UiTimer TimerReleaseSep;         ///< 500 ms
    UiTimer TimerWarnBlink;          ///< 10000 / BlinkWarn ms
    UiTimer TimerMainPos;            ///< 500 ms
    UiTimer TimerFadeOutLED;         ///< 100 ms, always on
    UiTimer TimerControlFlash;       ///< 500 ms, always on
    UiTimer TimerVUFD;               ///< 10 ms while the bars fall
    UiTimer TimerOutputs;            ///< 200 ms
    UiTimer TimerPgUpDnPalLst;       ///< 10 ms while Page Up or Down is held
    UiTimer Timerlstpalbot;          ///< 500 ms: Page Down held at the end
    UiTimer Timerlstpaltop;          ///< 500 ms
    UiTimer TimerTrigColSel;         ///< 50 ms
    UiTimer TimerCloseColorPicker;   ///< 50 ms
    UiTimer TimerFindJingles;        ///< 200 ms while hits blink
    UiTimer TimerSearch;             ///< 25 ms while a text is typed
    UiTimer TimerAutoClJSearch;      ///< 20 ms: the search closes by itself
    UiTimer TimerClear;              ///< 150 ms: its backspace held
    UiTimer TimerShutDown;           ///< 2000 ms: Exit held
    UiTimer TimerAutoMixStreamByTA;  ///< AutoMixTime ms: the live stream has faded
    UiTimer TimerFadOutLive;         ///< 100 ms while the live stream fades out
    UiTimer TimerLive;               ///< 200 ms from the press that starts the live stream to its end
    UiTimer TimerTOrelease;          ///< InTORelease ms after the input was turned off
    UiTimer tmrResize;               ///< 20 ms after the window changed its size
};

UiTimers& timers();
/// Stops every UiTimer (the window unloads).
void StopTimers();

}  // namespace zv
