#include "ui/screen/display_message.h"

#include "platform/controls.h"
#include "startup/guard.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"

namespace zv {

namespace {

constexpr int kMessageMs = 3000;

void showLine(bool on) {
    DisplayControls& d = frmMain().display;
    d.lblDate.visible = !on;
    d.lblTime.visible = !on;
    d.lblDispMessage.visible = on;
}

UiTimer& timerMessage() {
    static UiTimer timer("TimerDispMessage", kMessageMs);
    return timer;
}

}  // namespace

void ShowDisplayMessage(const std::string& text) {
    frmMain().display.lblDispMessage.caption = text;
    showLine(true);
    timerMessage().handler = [] {
        guarded("frmMain.TimerDispMessage_Timer", [] {
            timerMessage().stop();
            showLine(false);
        });
    };
    timerMessage().restart();
}

bool DisplayMessageShown() { return timerMessage().enabled(); }

}  // namespace zv
