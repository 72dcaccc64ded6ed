#include "ui/screen/display_message.h"

#include "model/jingle.h"
#include "platform/controls.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/captions.h"

namespace zv {

namespace {

constexpr int kMessageMs = 3000;

UiTimer& timerMessage() {
    static UiTimer timer("TimerDispMessage", kMessageMs);
    return timer;
}

}  // namespace

void ShowMessageLine(bool on) {
    DisplayControls& d = frmMain().display;
    d.lblDate.visible = !on;
    d.lblTime.visible = !on;
    d.lblDispMessage.visible = on;
}

void ShowDisplayMessage(const std::string& text) {
    frmMain().display.lblDispMessage.caption = text;
    ShowMessageLine(true);
    timerMessage().handler = [] {
        guarded("frmMain.TimerDispMessage_Timer", [] {
            timerMessage().stop();
            ShowMessageLine(false);
        });
    };
    timerMessage().restart();
}

void SayWhyBroken(int index) {
    const JingleRecord& j = Jingle(index);
    if (j.MissingFile || j.Unplayable) {
        ShowDisplayMessage(btCaption(j.Path) + ": " +
                           (j.Unplayable ? BassErrMessage(j.BassErr) : Ln("errMissFile")));
    }
}

bool DisplayMessageShown() { return timerMessage().enabled(); }

}  // namespace zv
