// The colours of the window: shaded option colours, light and dark, marks.
#include "ui/screen/colours.h"

#include <string>

#include "model/colours.h"
#include "model/jingle.h"
#include "model/state.h"
#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/settings.h"
#include "ui/records/armed.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/screen/announcer_view.h"
#include "ui/screen/button_faces.h"
#include "ui/screen/highlight.h"
#include "ui/screen/live_view.h"
#include "ui/screen/shaded.h"

namespace zv {

namespace {

constexpr Colour kStopRed = 0x2020B0;  // the one red key
constexpr Colour kWhite = 0xFFFFFF;
constexpr Colour kLightBorder = 0x808080;
constexpr Colour kLightLine = 0xC3BFBB;

void paintLeds() {
    OptionsTab& t = frmMain().options;
    t.ps_LED.backColor = Shaded.ps;
    t.ns_LED.backColor = Shaded.ns;
    t.ar_LED.backColor = Shaded.ar;
    t.tc_LED.backColor = Shaded.tc;
    t.lp_LED.backColor = Shaded.lp;
    t.sq_LED.backColor = Shaded.sq;
    t.fx_LED.backColor = Shaded.fx;
}

/// The armed option's key and the global toggles that are on.
void paintToggles() {
    MainWindow& w = frmMain();
    const struct {
        const char* code;
        Control* key;
        Colour colour;
    } options[] = {
        {"ass", &w.palettes.ckAssign, settings.assColor}, {"ar", &w.options.ckAutoRepI, settings.arColor},
        {"tc", &w.options.ckTouchI, settings.tcColor},    {"ps", &w.options.ckPlayStopI, settings.psColor},
        {"ns", &w.options.ckNoStopI, settings.nsColor},   {"co", &w.options.ckColorI, settings.coColor},
        {"fx", &w.options.ckFXI, settings.fxColor},       {"lp", &w.options.ckLoopI, settings.lpColor},
        {"sq", &w.options.ckLoopI, settings.sqColor},     {"sp", &w.palettes.btSave, settings.spColor}};
    for (const auto& option : options) {
        if (OptionCode == option.code) {
            Arm(*option.key, option.colour);
        }
    }
    ShowGlobalToggles();
    ShowLive();
    ShowAnnouncer();
}

void paintRecord(int i) {
    JingleButton& b = *Button(i);
    JingleRecord& j = Jingle(i);
    b.lp_Jingle.foreColor = Shaded.lp;
    b.sq_Jingle.foreColor = Shaded.sq;
    b.fx_Jingle.foreColor = Shaded.fx;
    if (!j.Path.empty() && j.BTNCol != kFaceColourText && !j.BTNCol.empty()) {
        j.BackRGB = ShadeColor(HexToRGB(j.BTNCol), settings.ShadeOffsetVal);
        j.ForeRGB = GetForeColor(j.BackRGB, "jingle");
    } else {
        j.BackRGB = BtnFaceColor;
        j.ForeRGB = JingleForeColor;
    }
    ShowPlayModeMark(i);
    if (SelectorsOn || j.Playing) {
        return;
    }
    Colour back = 0;
    Colour fore = 0;
    RestColours(i, back, fore);
    PaintButton(i, back, fore);
}

void paintFrames() {
    MainWindow& w = frmMain();
    const bool dark = settings.DarkMode == 1;
    const Colour border = BorderColour();
    // The shell works out ground, panel and borders from the window's colour; the light theme is its own.
    w.window.backColor = dark ? settings.DarkBackColor : kNoColour;
    w.window.foreColor = BtnForeColor;
    w.fraPanel.foreColor = BtnForeColor;
    for (Control* frame : {&w.fraPanel, &w.fraVU, &w.display.picDispBack, &w.linHotJingles}) {
        frame->borderColor = border;
    }
    w.linHotJingles.backColor = dark ? border : kLightLine;
    for (Control& tab : w.fraTab) {
        tab.foreColor = BtnForeColor;
    }
}

void paintKeys() {
    MainWindow& w = frmMain();
    PaletteTab& p = w.palettes;
    AnnouncerTab& a = w.announcer;
    LiveTab& l = w.live;
    OptionsTab& o = w.options;
    KeyControls& k = w.keys;
    for (Control* key :
         {&p.btUp,      &p.btSearchJingle, &p.btDn,          &p.ckAssign,    &p.btSave,      &p.btNew,
          &p.btDelPal,  &a.ckTmAnn,        &a.ckTmAnnAM,     &a.b_tmAnJin,   &a.b_tmAnJinAM, &l.ckPlayStream,
          &l.btRemUrl,  &l.ckMixByTa,      &l.btCoefVolLive, &o.ckPlayStopI, &o.ckAutoRepI,  &o.ckTouchI,
          &o.ckNoStopI, &o.ckLoopI,        &o.ckFXI,         &o.ckColorI,    &k.ckAutoRep,   &k.ckTouch,
          &k.ckAutoMix, &k.btMicPush,      &k.btMicTO,       &k.btSettings,  &k.btExit}) {
        Disarm(*key);
        key->borderColor = BorderColour();
    }
    for (Control* text : {&p.PalNameCar, &a.lblMinute, &a.lblSecond, &a.lblDelay, &l.lblVolLive, &l.lblStream,
                          &l.ckAutoDuckLive}) {
        text->foreColor = BtnForeColor;
    }
    const bool darkList = settings.DarkMode == 1 || settings.DarkLstPal == 1;
    const Colour listBack = darkList ? settings.DarkBackColor : kWhite;
    const Colour listFore = darkList ? settings.DarkForeColor : 0;
    const bool reversed = settings.RevLstPalCol == 1;
    p.lstPal.backColor = reversed ? listFore : listBack;
    p.lstPal.foreColor = reversed ? listBack : listFore;
    for (Control* field : {&p.txtSave, &l.cmbStream, &a.DTMinute, &a.DTSecond, &a.DTDelay}) {
        field->backColor = settings.DarkMode == 1 ? settings.DarkBackColor : kWhite;
        field->foreColor = settings.DarkMode == 1 ? settings.DarkForeColor : 0;
    }
    for (Control& tab : w.ckTab) {
        tab.foreColor = BtnForeColor;
    }
    k.btStop.backColor = kStopRed;
    k.btStop.foreColor = kWhite;
}

void paintDisplay() {
    DisplayControls& d = frmMain().display;
    d.picDispBack.backColor = settings.DispBackCol;
    for (Control* text : {&d.lblDate, &d.lblTime, &d.lblDispMessage, &d.lblErr}) {
        text->foreColor = settings.DateTimeColor;
    }
    d.txtDisPal.foreColor = settings.PalColor;
    d.lblQuiet.foreColor = settings.DateTimeColor;
    d.lblMIDIIcon.foreColor = settings.DateTimeColor;
    d.lblMIDIDevice.foreColor = settings.PalColor;
    for (Control* digit : d.digits()) {
        digit->foreColor = settings.CountDownColor;
    }
    for (Control& mark : d.lblClock) {
        mark.foreColor = settings.DateTimeColor;
    }
    for (Control& mark : d.lblPlayMode) {
        mark.foreColor = settings.DateTimeColor;
    }
}

}  // namespace

Colour BorderColour() {
    return settings.DarkMode == 1 ? ShadeColor(settings.DarkBackColor, 32) : kLightBorder;
}

void ShowGlobalToggles() {
    KeyControls& k = frmMain().keys;
    const auto show = [](Control& key, bool on, Colour colour) { on ? Arm(key, colour) : Disarm(key); };
    show(k.ckAutoRep, ToggleAutoRep == 1, settings.arColor);
    show(k.ckTouch, ToggleTouch == 1, settings.tcColor);
    // The minimal view shows their letters instead of the keys.
    DisplayControls& d = frmMain().display;
    d.lblPlayMode[0].caption = std::string(settings.AutoMix == 1 ? "a" : "n");
    d.lblPlayMode[1].caption = std::string(ToggleAutoRep == 1 ? "r" : ToggleTouch == 1 ? "v" : "w");
    show(k.ckAutoMix, settings.AutoMix != 0, settings.AutoMix == 1 ? Shaded.am : Shaded.am2);
}

void ReColorizeBtn() {
    guarded("frmMain.ReColorizeBtn", [] {
        ComputeShaded();
        paintLeds();
        paintToggles();
        for (int i = 0; i < kJingles; ++i) {
            if (Button(i) != nullptr) {
                paintRecord(i);
            }
        }
        if (SelectorsOn && !ColorPickerOpen) {
            HighlightArmed();
        }
    });
}

void SwitchDarkMode(int dark) {
    guarded("frmMain.SwitchDarkMode", [&] {
        lockUpdates();
        settings.DarkMode = dark == 1 ? 1 : 0;
        BtnFaceColor = dark == 1 ? settings.DarkBackColor : kButtonFace;
        BtnForeColor = dark == 1 ? settings.DarkForeColor : 0;
        // A text colour that was never chosen follows the theme, or it could not be read in the dark.
        JingleForeColor =
            dark == 1 && settings.JLabelFontColor == 0 ? settings.DarkForeColor : settings.JLabelFontColor;
        paintFrames();
        paintKeys();
        paintDisplay();
        ReColorizeBtn();
        unlockUpdates();
    });
}

}  // namespace zv
