// The colours of the window: shaded option colours, light and dark, marks.
#include "ui/screen/colours.h"

#include <string>

#include "audio/automix.h"
#include "model/colours.h"
#include "model/jingle.h"
#include "model/state.h"
#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/settings/automix_settings.h"
#include "startup/settings/clock_settings.h"
#include "startup/settings/dark_settings.h"
#include "startup/settings/display_settings.h"
#include "startup/settings/labels_settings.h"
#include "startup/settings/marks_settings.h"
#include "startup/settings/palette_list_settings.h"
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
    } options[] = {{"ass", &w.palettes.ckAssign, markSettings.assColor},
                   {"ar", &w.options.ckAutoRepI, markSettings.arColor},
                   {"tc", &w.options.ckTouchI, markSettings.tcColor},
                   {"ps", &w.options.ckPlayStopI, markSettings.psColor},
                   {"ns", &w.options.ckNoStopI, markSettings.nsColor},
                   {"co", &w.options.ckColorI, markSettings.coColor},
                   {"fx", &w.options.ckFXI, markSettings.fxColor},
                   {"lp", &w.options.ckLoopI, markSettings.lpColor},
                   {"sq", &w.options.ckLoopI, markSettings.sqColor},
                   {"sp", &w.palettes.btSave, markSettings.spColor}};
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
    JingleRecord& j = Jingle(i);
    PaintMarks(i, Shaded.lp, Shaded.sq, Shaded.fx);
    if (!j.Path.empty() && j.BTNCol != kFaceColourText && !j.BTNCol.empty()) {
        j.BackRGB = ShadeColor(HexToRGB(j.BTNCol), darkSettings.ShadeOffsetVal);
        j.ForeRGB = GetForeColor(j.BackRGB, "jingle");
    } else {
        j.BackRGB = BtnFaceColor;
        j.ForeRGB = JingleForeColor;
    }
    ShowPlayModeMark(i);
    PaintAtRest(i);
}

void paintFrames() {
    MainWindow& w = frmMain();
    const bool dark = darkSettings.DarkMode == 1;
    const Colour border = BorderColour();
    // The shell works out ground, panel and borders from the window's colour; the light theme is its own.
    w.window.backColor = dark ? darkSettings.DarkBackColor : kNoColour;
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
    const bool darkList = darkSettings.DarkMode == 1 || paletteListSettings.DarkLstPal == 1;
    const Colour listBack = darkList ? darkSettings.DarkBackColor : kWhite;
    const Colour listFore = darkList ? darkSettings.DarkForeColor : 0;
    const bool reversed = paletteListSettings.RevLstPalCol == 1;
    p.lstPal.backColor = reversed ? listFore : listBack;
    p.lstPal.foreColor = reversed ? listBack : listFore;
    for (Control* field : {&p.txtSave, &l.cmbStream, &a.DTMinute, &a.DTSecond, &a.DTDelay}) {
        field->backColor = darkSettings.DarkMode == 1 ? darkSettings.DarkBackColor : kWhite;
        field->foreColor = darkSettings.DarkMode == 1 ? darkSettings.DarkForeColor : 0;
    }
    for (Control& tab : w.ckTab) {
        tab.foreColor = BtnForeColor;
    }
    k.btStop.backColor = kStopRed;
    k.btStop.foreColor = kWhite;
}

void paintDisplay() {
    DisplayControls& d = frmMain().display;
    d.picDispBack.backColor = displaySettings.DispBackCol;
    for (Control* text : {&d.lblDate, &d.lblTime, &d.lblDispMessage, &d.lblErr}) {
        text->foreColor = clockSettings.DateTimeColor;
    }
    d.txtDisPal.foreColor = paletteListSettings.PalColor;
    d.lblQuiet.foreColor = clockSettings.DateTimeColor;
    d.lblMIDIIcon.foreColor = clockSettings.DateTimeColor;
    d.lblMIDIDevice.foreColor = paletteListSettings.PalColor;
    for (Control* digit : d.digits()) {
        digit->foreColor = displaySettings.CountDownColor;
    }
    for (Control& mark : d.lblClock) {
        mark.foreColor = clockSettings.DateTimeColor;
    }
    for (Control& mark : d.lblPlayMode) {
        mark.foreColor = clockSettings.DateTimeColor;
    }
    d.lblTa.foreColor = clockSettings.DateTimeColor;
}

}  // namespace

Colour BorderColour() {
    return darkSettings.DarkMode == 1 ? ShadeColor(darkSettings.DarkBackColor, 32) : kLightBorder;
}

void ShowGlobalToggles() {
    KeyControls& k = frmMain().keys;
    const auto show = [](Control& key, bool on, Colour colour) { on ? Arm(key, colour) : Disarm(key); };
    show(k.ckAutoRep, ToggleAutoRep == 1, markSettings.arColor);
    show(k.ckTouch, ToggleTouch == 1, markSettings.tcColor);
    // The minimal view shows their letters instead of the keys.
    DisplayControls& d = frmMain().display;
    d.lblPlayMode[0].caption = std::string(automixSettings.AutoMix == kAutomixCrossfade ? "a" : "n");
    d.lblPlayMode[1].caption = std::string(ToggleAutoRep == 1 ? "r" : ToggleTouch == 1 ? "v" : "w");
    show(k.ckAutoMix, automixSettings.AutoMix != kAutomixOff,
         automixSettings.AutoMix == kAutomixCrossfade ? Shaded.am : Shaded.am2);
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
    });
}

void SwitchDarkMode(int dark) {
    guarded("frmMain.SwitchDarkMode", [&] {
        lockUpdates();
        darkSettings.DarkMode = dark == 1 ? 1 : 0;
        BtnFaceColor = dark == 1 ? darkSettings.DarkBackColor : kButtonFace;
        BtnForeColor = dark == 1 ? darkSettings.DarkForeColor : 0;
        // A text colour that was never chosen follows the theme, or it could not be read in the dark.
        JingleForeColor = dark == 1 && labelSettings.JLabelFontColor == 0 ? darkSettings.DarkForeColor
                                                                          : labelSettings.JLabelFontColor;
        paintFrames();
        paintKeys();
        paintDisplay();
        ReColorizeBtn();
        unlockUpdates();
    });
}

}  // namespace zv
