// The toggles of the panel and of the keys: arming, disarming, and what an armed option does to buttons.
#include "ui/edit/options.h"

#include <array>
#include <cstddef>

#include "model/jingle.h"
#include "model/state.h"
#include "platform/controls.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/settings/marks_settings.h"
#include "ui/edit/undo.h"
#include "ui/edit/unsaved.h"
#include "ui/records/armed.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/screen/button_faces.h"
#include "ui/screen/highlight.h"
#include "ui/screen/layout_strip.h"

namespace zv {

namespace {

/// One of the six option toggles that work alike.
struct Option {
    Control* toggle;
    const char* name;
    Colour base;
    const char* code;
};

std::array<Option, 6> options() {
    OptionsTab& t = frmMain().options;
    return {{{&t.ckAutoRepI, "ckAutoRepI", markSettings.arColor, "ar"},
             {&t.ckTouchI, "ckTouchI", markSettings.tcColor, "tc"},
             {&t.ckPlayStopI, "ckPlayStopI", markSettings.psColor, "ps"},
             {&t.ckNoStopI, "ckNoStopI", markSettings.nsColor, "ns"},
             {&t.ckColorI, "ckColorI", markSettings.coColor, "co"},
             {&t.ckFXI, "ckFXI", markSettings.fxColor, "fx"}}};
}

void noOption() {
    OptionControl.clear();
    OptionCode.clear();
}

void pressOption(std::size_t which) {
    const std::array<Option, 6> all = options();
    const Option& option = all[which];
    LastCtrl = option.name;
    const bool wasArmed = Armed(*option.toggle);
    DisarmOptions();
    OptionControl = option.name;
    if (wasArmed) {
        noOption();
        ResetJingles();
        return;
    }
    Arm(*option.toggle, option.base);
    SelectorsOn = true;
    OptionCode = option.code;
    HighlightArmed();
}

/// An option applies once: afterwards none is armed, also one that was not applied (a menu sets options too).
void optionSpent() {
    ResetJingles();
    noOption();
    DisarmOptions();
    MarkPalToSave();
}

void setPlayMode(PlayMode mode) {
    const UndoStep step("unOption");
    for (const int i : SelJ) {
        JingleRecord& j = Jingle(i);
        if (j.Path.empty() || j.MissingFile) {
            continue;
        }
        j.PlayMod = j.PlayMod == mode ? PlayMode::global : mode;
        ShowPlayModeMark(i);
    }
    optionSpent();
}

void showLoopMarks(int index) {
    if (JingleButton* b = Button(index)) {
        b->lp_Jingle.visible = Jingle(index).Loop != 0;
        b->sq_Jingle.visible = Jingle(index).Seq != 0;
    }
}

}  // namespace

void ckAutoRepI_MouseDown() {
    guarded(".ckAutoRepI_MouseDown", [] { pressOption(0); });
}
void ckTouchI_MouseDown() {
    guarded(".ckTouchI_MouseDown", [] { pressOption(1); });
}
void ckPlayStopI_MouseDown() {
    guarded(".ckPlayStopI_MouseDown", [] { pressOption(2); });
}
void ckNoStopI_MouseDown() {
    guarded(".ckNoStopI_MouseDown", [] { pressOption(3); });
}
void ckColorI_MouseDown() {
    guarded(".ckColorI_MouseDown", [] { pressOption(4); });
}
void ckFXI_MouseDown() {
    guarded(".ckFXI_MouseDown", [] { pressOption(5); });
}

void ckLoopITog() {
    guarded("frmMain.ckLoopITog", [] {
        OptionsTab& t = frmMain().options;
        LastCtrl = "ckLoopI";
        for (const Option& o : options()) {
            Disarm(*o.toggle);
        }
        Disarm(frmMain().palettes.ckAssign);
        OptionControl = "ckLoopI";
        if (LoopToggleStep == 0) {
            LoopToggleStep = 1;
            t.lp_LED.visible = true;
            t.sq_LED.visible = false;
            t.ckLoopI.caption = Ln("mmnuLoop");
            Arm(t.ckLoopI, markSettings.lpColor);
            SelectorsOn = true;
            OptionCode = "lp";
            HighlightArmed();
        } else if (LoopToggleStep == 1) {
            LoopToggleStep = 2;
            t.sq_LED.visible = true;
            t.lp_LED.visible = false;
            t.ckLoopI.caption = Ln("mmnuSeq");
            Arm(t.ckLoopI, markSettings.sqColor);
            SelectorsOn = true;
            OptionCode = "sq";
            HighlightArmed();
        } else {
            LoopToggleAtRest();
            noOption();
            ResetJingles();
        }
    });
}

void CkAssignTog() {
    guarded("frmMain.CkAssignTog", [] {
        Control& assign = frmMain().palettes.ckAssign;
        LastCtrl = "ckAssign";
        const bool arm = !Armed(assign);
        DisarmOptions();
        noOption();
        if (!arm) {
            ResetJingles();
            return;
        }
        Arm(assign, markSettings.assColor);
        SelectorsOn = true;
        OptionCode = "ass";
        HighlightArmed();
    });
}

void ckTab_MouseDown(int tab) {
    guarded(".ckTab_MouseDown", [&] {
        DisarmOptions();
        noOption();
        ResetJingles();
        ChangeTab(tab);
    });
}

void clAutoRepSet(int) {
    guarded("modClick.clAutoRepSet", [] { setPlayMode(PlayMode::autoRepeat); });
}
void clTouchSet(int) {
    guarded("modClick.clTouchSet", [] { setPlayMode(PlayMode::touch); });
}
void clPlayStopSet(int) {
    guarded("modClick.clPlayStopSet", [] { setPlayMode(PlayMode::playStop); });
}
void clNoStopSet(int) {
    guarded("modClick.clNoStopSet", [] { setPlayMode(PlayMode::noStop); });
}

void clLoopSet(int) {
    guarded("modClick.clLoopSet", [] {
        const UndoStep step("unOption");
        for (const int i : SelJ) {
            JingleRecord& j = Jingle(i);
            j.Seq = 0;
            j.Loop = j.Loop == 0 ? 1 : 0;
            showLoopMarks(i);
        }
        optionSpent();
    });
}

void clSeqSet(int) {
    guarded("modClick.clSeqSet", [] {
        const UndoStep step("unOption");
        for (const int i : SelJ) {
            JingleRecord& j = Jingle(i);
            j.Loop = 0;
            j.Seq = j.Seq == 0 ? 1 : 0;
            if (j.Seq != 0) {
                j.PlayMod = PlayMode::global;
            }
            ShowPlayModeMark(i);
            showLoopMarks(i);
        }
        optionSpent();
    });
}

}  // namespace zv
