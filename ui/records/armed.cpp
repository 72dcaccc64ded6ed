#include "ui/records/armed.h"

#include <string>

#include "model/colours.h"
#include "model/state.h"
#include "platform/controls.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/settings/marks_settings.h"
#include "ui/records/main_window.h"

namespace zv {

std::string OptionCode;

std::string OptionControl;

int LoopToggleStep = 0;

bool SelectorsShown = false;

bool ColorPickerOpen = false;

bool Armed(const Control& toggle) { return toggle.backColor != BtnFaceColor; }

void Arm(Control& toggle, Colour colour) {
    toggle.backColor = colour;
    toggle.foreColor = GetForeColor(colour);
}

void Disarm(Control& toggle) {
    toggle.backColor = BtnFaceColor;
    toggle.foreColor = BtnForeColor;
}

void LoopToggleAtRest() {
    OptionsTab& t = frmMain().options;
    LoopToggleStep = 0;
    t.lp_LED.visible = true;
    t.sq_LED.visible = true;
    t.ckLoopI.caption = Ln("mckLoopI");
    Disarm(t.ckLoopI);
}

void DisarmOptions() {
    OptionsTab& t = frmMain().options;
    for (Control* toggle :
         {&t.ckAutoRepI, &t.ckTouchI, &t.ckPlayStopI, &t.ckNoStopI, &t.ckColorI, &t.ckFXI}) {
        Disarm(*toggle);
    }
    Disarm(frmMain().palettes.ckAssign);
    LoopToggleAtRest();
}

void ResetOption() {
    guarded("modClick.ResetOption", [] {
        if (LastCtrl.empty()) {
            return;
        }
        DisarmOptions();
        LastCtrl.clear();
        const Control& key = frmMain().announcer.b_tmAnJin;
        if (key.caption() == Ln("mb_tmAnJin") && key.backColor == markSettings.taColor) {
            SelectorsOn = false;
        }
    });
}

}  // namespace zv
