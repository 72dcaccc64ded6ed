// The toggles of the panel and of the keys: arming, disarming, and what an armed option does to buttons.
#include <array>
#include <string>

#include "model/colours.h"
#include "model/jingle.h"
#include "model/state.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/settings.h"
#include "ui/edit/palette_list.h"
#include "ui/press/press.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/screen/colours.h"
#include "ui/screen/layout.h"

namespace zv {

std::string OptionCode;
std::string OptionControl;
int LoopToggleStep = 0;

namespace {

bool playModeFits(const JingleRecord& j) { return !j.Path.empty() && j.Seq == 0; }
bool filledAndThere(const JingleRecord& j) { return !j.Path.empty() && !j.MissingFile; }

/// One of the six option toggles that work alike.
struct Option {
    Control* toggle;
    const char* name;
    Colour base;
    Colour shaded;
    const char* code;
    bool (*fits)(const JingleRecord&);
};

std::array<Option, 6> options() {
    OptionsTab& t = frmMain().options;
    return {{{&t.ckAutoRepI, "ckAutoRepI", settings.arColor, Shaded.ar, "ar", playModeFits},
             {&t.ckTouchI, "ckTouchI", settings.tcColor, Shaded.tc, "tc", playModeFits},
             {&t.ckPlayStopI, "ckPlayStopI", settings.psColor, Shaded.ps, "ps", playModeFits},
             {&t.ckNoStopI, "ckNoStopI", settings.nsColor, Shaded.ns, "ns", playModeFits},
             {&t.ckColorI, "ckColorI", settings.coColor, Shaded.co, "co", filledAndThere},
             {&t.ckFXI, "ckFXI", settings.fxColor, Shaded.fx, "fx", filledAndThere}}};
}

void loopToggleAtRest() {
    OptionsTab& t = frmMain().options;
    LoopToggleStep = 0;
    t.lp_LED.visible = true;
    t.sq_LED.visible = true;
    t.ckLoopI.caption = Ln("mckLoopI");
    Disarm(t.ckLoopI);
}

void disarmAllOptions() {
    for (const Option& o : options()) {
        Disarm(*o.toggle);
    }
    loopToggleAtRest();
}

void noOption() {
    OptionControl.clear();
    OptionCode.clear();
    SelectorsOn = false;
}

void pressOption(std::size_t which) {
    const std::array<Option, 6> all = options();
    const Option& option = all[which];
    LastCtrl = option.name;
    const bool wasArmed = Armed(*option.toggle);
    disarmAllOptions();
    OptionControl = option.name;
    if (wasArmed) {
        noOption();
        ResetJingles();
        return;
    }
    Disarm(frmMain().palettes.ckAssign);
    Arm(*option.toggle, option.base);
    SelectorsOn = true;
    HighlightButtons(option.shaded, option.fits);
    OptionCode = option.code;
}

bool anyFits(const JingleRecord&) { return true; }

void highlightAssignable() {
    for (const int i : LiveJingles()) {
        if (Button(i) != nullptr && !Jingle(i).Playing) {
            PaintButton(i, Shaded.ass, GetForeColor(Shaded.ass, "jingle"));
        }
    }
}

/// After an option was applied: it is spent.
void optionSpent(Control& toggle) {
    ResetJingles();
    noOption();
    Disarm(toggle);
    MarkPalToSave();
}

void setPlayMode(PlayMode mode, Control& toggle) {
    for (const int i : SelJ) {
        JingleRecord& j = Jingle(i);
        if (!filledAndThere(j)) {
            continue;
        }
        j.PlayMod = j.PlayMod == mode ? PlayMode::global : mode;
        ShowPlayModeMark(i);
    }
    optionSpent(toggle);
}

void showLoopMarks(int index) {
    if (JingleButton* b = Button(index)) {
        b->lp_Jingle.visible = Jingle(index).Loop != 0;
        b->sq_Jingle.visible = Jingle(index).Seq != 0;
    }
}

}  // namespace

bool Armed(const Control& toggle) { return toggle.backColor != BtnFaceColor; }

void Arm(Control& toggle, Colour colour) {
    toggle.backColor = colour;
    toggle.foreColor = GetForeColor(colour);
}

void Disarm(Control& toggle) {
    toggle.backColor = BtnFaceColor;
    toggle.foreColor = BtnForeColor;
}

void HighlightButtons(Colour shaded, bool (*fits)(const JingleRecord&)) {
    for (const int i : LiveJingles()) {
        if (Button(i) == nullptr) {
            continue;
        }
        const JingleRecord& j = Jingle(i);
        const Colour back = fits(j) ? shaded : BtnFaceColor;
        PaintButton(i, back, j.MissingFile ? kMissingColour : GetForeColor(back, "jingle"));
    }
}

void HighlightArmed() {
    if (OptionCode == "ass") {
        highlightAssignable();
    } else if (OptionCode == "lp" || OptionCode == "sq") {
        HighlightButtons(OptionCode == "lp" ? Shaded.lp : Shaded.sq, anyFits);
    }
    for (const Option& option : options()) {
        if (OptionCode == option.code) {
            HighlightButtons(option.shaded, option.fits);
        }
    }
}

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
            Arm(t.ckLoopI, settings.lpColor);
            SelectorsOn = true;
            OptionCode = "lp";
            HighlightButtons(Shaded.lp, anyFits);
        } else if (LoopToggleStep == 1) {
            LoopToggleStep = 2;
            t.sq_LED.visible = true;
            t.lp_LED.visible = false;
            t.ckLoopI.caption = Ln("mmnuSeq");
            Arm(t.ckLoopI, settings.sqColor);
            SelectorsOn = true;
            OptionCode = "sq";
            HighlightButtons(Shaded.sq, anyFits);
        } else {
            loopToggleAtRest();
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
        disarmAllOptions();
        noOption();
        if (!arm) {
            Disarm(assign);
            ResetJingles();
            return;
        }
        Arm(assign, settings.assColor);
        SelectorsOn = true;
        OptionCode = "ass";
        highlightAssignable();
    });
}

void ckTab_MouseDown(int tab) {
    guarded(".ckTab_MouseDown", [&] {
        if (Armed(frmMain().palettes.ckAssign)) {
            CkAssignTog();
        }
        disarmAllOptions();
        OptionCode.clear();
        OptionControl.clear();
        SelectorsOn = false;
        ResetJingles();
        ChangeTab(tab);
    });
}

void ResetJingles(int except) {
    guarded("modClick.ResetJingles", [&] {
        SelectorsOn = false;
        for (const int i : LiveJingles()) {
            if (i == except || Button(i) == nullptr || Jingle(i).Playing) {
                continue;
            }
            Colour back = 0;
            Colour fore = 0;
            RestColours(i, back, fore);
            PaintButton(i, back, fore);
        }
    });
}

void ResetOption() {
    guarded("modClick.ResetOption", [] {
        if (LastCtrl.empty()) {
            return;
        }
        disarmAllOptions();
        MainWindow& w = frmMain();
        Disarm(w.palettes.ckAssign);
        LastCtrl.clear();
        const Control& key = w.announcer.b_tmAnJin;
        if (key.caption() == Ln("mb_tmAnJin") && key.backColor == settings.assColor) {
            SelectorsOn = false;
        }
    });
}

void clAutoRepSet(int) {
    guarded("modClick.clAutoRepSet", [] { setPlayMode(PlayMode::autoRepeat, frmMain().options.ckAutoRepI); });
}
void clTouchSet(int) {
    guarded("modClick.clTouchSet", [] { setPlayMode(PlayMode::touch, frmMain().options.ckTouchI); });
}
void clPlayStopSet(int) {
    guarded("modClick.clPlayStopSet", [] { setPlayMode(PlayMode::playStop, frmMain().options.ckPlayStopI); });
}
void clNoStopSet(int) {
    guarded("modClick.clNoStopSet", [] { setPlayMode(PlayMode::noStop, frmMain().options.ckNoStopI); });
}

void clLoopSet(int) {
    guarded("modClick.clLoopSet", [] {
        for (const int i : SelJ) {
            JingleRecord& j = Jingle(i);
            j.Seq = 0;
            j.Loop = j.Loop == 0 ? 1 : 0;
            showLoopMarks(i);
        }
        loopToggleAtRest();
        optionSpent(frmMain().options.ckLoopI);
    });
}

void clSeqSet(int) {
    guarded("modClick.clSeqSet", [] {
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
        loopToggleAtRest();
        optionSpent(frmMain().options.ckLoopI);
    });
}

}  // namespace zv
