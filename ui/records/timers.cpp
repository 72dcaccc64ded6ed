#include "ui/records/timers.h"

#include <algorithm>

#include "model/state.h"
#include "startup/settings.h"
#include "ui/edit/palette_list.h"
#include "ui/press/keyboard.h"
#include "ui/press/press.h"
#include "ui/records/main_window.h"
#include "ui/screen/clock.h"
#include "ui/screen/colours.h"
#include "ui/screen/counter.h"
#include "ui/screen/layout.h"
#include "ui/screen/meters.h"

namespace zv {

namespace {

constexpr int kFastestDisplay = 110, kFastestMeter = 11, kMeterStep = 10;  // ms

int displayInterval() { return std::max(10, kFastestDisplay - settings.DispSpeed); }
int meterInterval() { return std::max(kMeterStep, (kFastestMeter - settings.VUspeed) * kMeterStep); }

}  // namespace

UiTimers::UiTimers()
    : TimerDispAndJButtons("TimerDispAndJButtons", 40, TimerDispAndJButtonsTick),
      TimerVU("TimerVU", 40, TimerVUTick),
      TimerKeyModifiers("TimerKeyModifiers", 80, TimerKeyModifiersTick),
      TimerTimeAndTA("TimerTimeAndTA", 1000, DateTimeUpdate),
      SaveTimer("SaveTimer", 50, SaveTimerTick),
      TimerLoadPal("TimerLoadPal", 100, TimerLoadPalTick),
      TimerClock("TimerClock", 1000, TimerClockTick),
      TimerIdleClock("TimerIdleClock", 2000, TimerIdleClockTick),
      TimerReleaseSep("TimerReleaseSep", 500, TimerReleaseSepTick),
      TimerWarnBlink("TimerWarnBlink", 0, TimerWarnBlinkTick),
      TimerMainPos("TimerMainPos", 500, TimerMainPosTick),
      TimerFadeOutLED("TimerFadeOutLED", 100, TimerFadeOutLEDTick),
      TimerControlFlash("TimerControlFlash", 500, TimerControlFlashTick),
      TimerVUFD("TimerVUFD", 10, TimerVUFDTick),
      TimerNotif("TimerNotif", 0, [] {}),
      TimerPgUpDnPalLst("TimerPgUpDnPalLst", 10, TimerPgUpDnPalLstTick),
      Timerlstpalbot("Timerlstpalbot", 500, TimerlstpalbotTick),
      Timerlstpaltop("Timerlstpaltop", 500, TimerlstpaltopTick),
      TimerTrigColSel("TimerTrigColSel", 50, TimerTrigColSelTick),
      TimerCloseColorPicker("TimerCloseColorPicker", 50, TimerCloseColorPickerTick),
      TimerShutDown("TimerShutDown", 2000, TimerShutDownTick),
      tmrResize("tmrResize", 20, [] {
          timers().tmrResize.stop();
          FormDraw();
      }) {}

UiTimers& timers() {
    static UiTimers all;
    return all;
}

void StartTimers() {
    UiTimers& t = timers();
    t.TimerDispAndJButtons.setInterval(displayInterval());
    t.TimerVU.setInterval(meterInterval());
    t.TimerWarnBlink.setInterval(WarnBlinkInterval(settings.BlinkWarn));
    t.TimerDispAndJButtons.start();
    t.TimerVU.start();
    t.TimerMainPos.start();
    t.TimerKeyModifiers.start();
    t.TimerTimeAndTA.start();
    t.TimerFadeOutLED.start();
    t.TimerControlFlash.start();
}

void StopTimers() {
    UiTimers& t = timers();
    for (Timer* timer : {&t.TimerDispAndJButtons,
                         &t.TimerVU,
                         &t.TimerKeyModifiers,
                         &t.TimerTimeAndTA,
                         &t.SaveTimer,
                         &t.TimerLoadPal,
                         &t.TimerClock,
                         &t.TimerIdleClock,
                         &t.TimerReleaseSep,
                         &t.TimerWarnBlink,
                         &t.TimerMainPos,
                         &t.TimerFadeOutLED,
                         &t.TimerControlFlash,
                         &t.TimerVUFD,
                         &t.TimerNotif,
                         &t.TimerPgUpDnPalLst,
                         &t.Timerlstpalbot,
                         &t.Timerlstpaltop,
                         &t.TimerTrigColSel,
                         &t.TimerCloseColorPicker,
                         &t.TimerShutDown,
                         &t.tmrResize}) {
        timer->stop();
    }
}

}  // namespace zv
