#include "ui/records/timers.h"

#include <string_view>
#include <vector>

#include "platform/timers.h"

namespace zv {

namespace {

std::vector<UiTimer*>& made() {
    static std::vector<UiTimer*> list;
    return list;
}

}  // namespace

UiTimer::UiTimer(std::string_view timer, int intervalMs) : Timer(timer, intervalMs, [] {}) {
    made().push_back(this);
}

UiTimer::~UiTimer() { std::erase(made(), this); }

UiTimers::UiTimers()
    : TimerDispAndJButtons("TimerDispAndJButtons", 40),
      TimerVU("TimerVU", 40),
      TimerKeyModifiers("TimerKeyModifiers", 80),
      TimerTimeAndTA("TimerTimeAndTA", 1000),
      SaveTimer("SaveTimer", 50),
      TimerLoadPal("TimerLoadPal", 100),
      TimerClock("TimerClock", 1000),
      TimerIdleClock("TimerIdleClock", 2000),
      TimerReleaseSep("TimerReleaseSep", 500),
      TimerWarnBlink("TimerWarnBlink", 0),
      TimerMainPos("TimerMainPos", 500),
      TimerFadeOutLED("TimerFadeOutLED", 100),
      TimerControlFlash("TimerControlFlash", 500),
      TimerVUFD("TimerVUFD", 10),
      TimerOutputs("TimerOutputs", 200),
      TimerPgUpDnPalLst("TimerPgUpDnPalLst", 10),
      Timerlstpalbot("Timerlstpalbot", 500),
      Timerlstpaltop("Timerlstpaltop", 500),
      TimerTrigColSel("TimerTrigColSel", 50),
      TimerCloseColorPicker("TimerCloseColorPicker", 50),
      TimerFindJingles("TimerFindJingles", 200),
      TimerSearch("TimerSearch", 25),
      TimerAutoClJSearch("TimerAutoClJSearch", 20),
      TimerClear("TimerClear", 150),
      TimerShutDown("TimerShutDown", 2000),
      TimerAutoMixStreamByTA("TimerAutoMixStreamByTA", 50),
      TimerFadOutLive("TimerFadOutLive", 100),
      TimerLive("TimerLive", 200),
      TimerTOrelease("TimerTOrelease", 500),
      tmrResize("tmrResize", 20) {}

UiTimers& timers() {
    static UiTimers all;
    return all;
}

void StopTimers() {
    for (UiTimer* timer : made()) {
        timer->stop();
    }
}

}  // namespace zv
