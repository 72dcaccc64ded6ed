#include "ui/wiring.h"
#include "ui/windows/midi_learn.h"
#include "ui/windows/midi_settings_window.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "audio/announcer.h"
#include "audio/output_watch.h"
#include "audio/upcalls.h"
#include "midi/feedback.h"
#include "model/actions.h"
#include "model/state.h"
#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/datafiles.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/settings/dark_settings.h"
#include "startup/settings/display_settings.h"
#include "startup/settings/grid_settings.h"
#include "startup/settings/keys_settings.h"
#include "startup/settings/live_settings.h"
#include "startup/settings/meters_settings.h"
#include "startup/settings/program_settings.h"
#include "startup/settings/warning_settings.h"
#include "startup/settings/window_settings.h"
#include "startup/settings_file.h"
#include "startup/trace.h"
#include "startup/upcalls.h"
#include "ui/edit/announcer_tab.h"
#include "ui/edit/assign.h"
#include "ui/edit/carried.h"
#include "ui/edit/colour_picker.h"
#include "ui/edit/fill.h"
#include "ui/edit/history.h"
#include "ui/edit/jingle_editor.h"
#include "ui/edit/jingle_menu.h"
#include "ui/edit/leave_palette.h"
#include "ui/edit/live_tab.h"
#include "ui/edit/options.h"
#include "ui/edit/palette_load.h"
#include "ui/edit/palette_steps.h"
#include "ui/edit/playlists.h"
#include "ui/edit/save_dialogue.h"
#include "ui/edit/search.h"
#include "ui/press/display_press.h"
#include "ui/press/exit_key.h"
#include "ui/press/global_keys.h"
#include "ui/press/keyboard.h"
#include "ui/press/modifiers.h"
#include "ui/press/press.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/announcer_view.h"
#include "ui/screen/button_faces.h"
#include "ui/screen/clock.h"
#include "ui/screen/colours.h"
#include "ui/screen/display_tick.h"
#include "ui/screen/flashing.h"
#include "ui/screen/layout.h"
#include "ui/screen/layout_grid.h"
#include "ui/screen/layout_strip.h"
#include "ui/screen/live_view.h"
#include "ui/screen/meters.h"
#include "ui/screen/mic_keys.h"
#include "ui/screen/warning.h"
#include "ui/screen/window_place.h"
#include "ui/windows/question_window.h"

namespace zv {

namespace {

constexpr const char* kSymbolFont = "ZVR";

/// A press with the left button, and the keyboard's way to it (a click without a mouse).
void onLeftPress(Control& control, void (*handler)()) {
    control.onMouseDown = [handler](const MouseEvent& e) {
        if (e.button == MouseButton::left) {
            handler();
        }
    };
}

void wireDisplay() {
    DisplayControls& d = frmMain().display;
    std::vector<Control*> switches{&d.picDispBack};
    for (Control* digit : d.digits()) {
        switches.push_back(digit);
    }
    for (Control& mark : d.lblPlayMode) {
        switches.push_back(&mark);
    }
    for (Control* c : switches) {
        c->onMouseDown = [](const MouseEvent& e) {
            if (e.button == MouseButton::left) {
                switchDisPalName();
            }
        };
        c->onMouseUp = [](const MouseEvent& e) {
            if (e.button == MouseButton::left) {
                switchDisPalNameRelease();
            }
        };
    }
    d.lblTa.onMouseDown = [](const MouseEvent& e) {
        if (e.button == MouseButton::left) {
            HoldNextAnnouncement(true);
        }
    };
    d.lblTa.onMouseUp = [](const MouseEvent&) { HoldNextAnnouncement(false); };
    d.picDispBack.onDropFiles = FillPalette;
    onLeftPress(d.lblErr, ErrClick);
    onLeftPress(d.lblMIDIIcon, OpenMidiSettings);
    onLeftPress(d.lblMIDIDevice, OpenMidiSettings);
}

void wirePalettes() {
    PaletteTab& t = frmMain().palettes;
    t.lstPal.onMouseUp = [](const MouseEvent& e) {
        if (e.button == MouseButton::left) {
            lstPal_MouseUp();
        } else if (e.button == MouseButton::right) {
            lstPalMenu();
        }
    };
    t.lstPal.onDropFiles = FillPalette;
    t.lstPal.onKeyDown = lstpal_KeyDown;
    t.btUp.onMouseDown = btUp_MouseDown;
    t.btDn.onMouseDown = btDn_MouseDown;
    t.btUp.onMouseUp = [](const MouseEvent& e) { btUpDn_MouseUp(e, true); };
    t.btDn.onMouseUp = [](const MouseEvent& e) { btUpDn_MouseUp(e, false); };
    t.btSearchJingle.onClick = JingSearch;
    WireSearch();
    WirePlaylists();
    onLeftPress(t.ckAssign, CkAssignTog);
    t.btSave.onMouseDown = [](const MouseEvent& e) {
        if (e.button == MouseButton::left) {
            SavePal(ShiftDown ? 2 : 0);
        }
    };
    onLeftPress(t.btNew, btNewTog);
    t.btDelPal.onMouseUp = [](const MouseEvent& e) {
        if (e.button == MouseButton::left) {
            btDelpal_MouseUp();
        }
    };
    t.txtSave.onKeyDown = txtSave_KeyDown;
}

void wireOptions() {
    OptionsTab& t = frmMain().options;
    onLeftPress(t.ckPlayStopI, ckPlayStopI_MouseDown);
    onLeftPress(t.ckAutoRepI, ckAutoRepI_MouseDown);
    onLeftPress(t.ckTouchI, ckTouchI_MouseDown);
    onLeftPress(t.ckNoStopI, ckNoStopI_MouseDown);
    onLeftPress(t.ckLoopI, ckLoopITog);
    onLeftPress(t.ckFXI, ckFXI_MouseDown);
    onLeftPress(t.ckColorI, ckColorI_MouseDown);
    for (int i = 0; i < kTabs; ++i) {
        frmMain().ckTab[static_cast<std::size_t>(i)].onMouseDown = [i](const MouseEvent& e) {
            if (e.button == MouseButton::left) {
                ckTab_MouseDown(i);
            }
        };
    }
}

/// A global play mode: the surface shows the key held, and what is on when it is let go.
void wireToggle(Control& control, Toggle toggle, void (*handler)()) {
    control.onMouseDown = [toggle, handler](const MouseEvent& e) {
        if (e.button == MouseButton::left) {
            ToggleHeld(toggle);
            handler();
        }
    };
    control.onMouseUp = [](const MouseEvent& e) {
        if (e.button == MouseButton::left) {
            PlayModesTogglesMIDIOut("");
        }
    };
}

/// A control that a surface can be taught: the right button opens the menu for it.
void wireLearning(Control& control) {
    control.onMouseUp = [name = control.name, before = control.onMouseUp](const MouseEvent& e) {
        if (e.button == MouseButton::right) {
            OpenLearnMenu(name);
        } else if (before) {
            before(e);
        }
    };
}

void wireKeys() {
    KeyControls& k = frmMain().keys;
    wireToggle(k.ckAutoRep, Toggle::autoRepeat, CkAutoRepTog);
    wireToggle(k.ckTouch, Toggle::touch, CkTouchTog);
    wireToggle(k.ckAutoMix, Toggle::autoMix, CkAutoMixTog);
    k.btMicPush.onMouseDown = [](const MouseEvent& e) {
        if (e.button == MouseButton::left) {
            guarded(".btMicPush_MouseDown", MicPush);
        }
    };
    k.btMicPush.onMouseUp = [](const MouseEvent& e) {
        if (e.button == MouseButton::left) {
            guarded(".btMicPush_MouseUp", MicRelease);
        }
    };
    onLeftPress(k.btMicTO, [] { guarded(".btMicTO_MouseDown", TalkOverTog); });
    k.btSettings.onClick = [] { guarded(".btSettings_Click", [] { perform(Action::settings, 0, -1); }); };
    k.btStop.onMouseDown = btStop_MouseDown;
    k.btStop.onMouseUp = btStop_MouseUp;
    // The page of the surface is the first of the settings that there is.
    k.btExit.onMouseDown = btExit_MouseDown;
    k.btExit.onMouseUp = btExit_MouseUp;
    PaletteTab& t = frmMain().palettes;
    for (Control* c :
         {&k.ckAutoRep, &k.ckTouch, &k.ckAutoMix, &k.btStop, &k.btMicPush, &k.btMicTO, &t.btUp, &t.btDn}) {
        wireLearning(*c);
    }
}

void wireWindow() {
    MainWindow& w = frmMain();
    w.window.onKeyDown = Form_KeyDown;
    w.window.onKeyUp = Form_KeyUp;
    w.window.onQueryClose = Form_QueryUnload;
    onSessionEnd = [] { UnloadMain(kSessionEnds); };
    w.window.onResize = [] { timers().tmrResize.restart(); };
    onLeftPress(w.lblVUSrc, ChangeVUchan);
}

/// Handlers and first look of a button that was just made.
void wireButton(int index) {
    JingleButton& b = *Button(index);
    b.b_Jingle.onMouseDown = [index](const MouseEvent& e) { b_Jingle_MouseDown(index, e); };
    b.b_Jingle.onMouseUp = [index](const MouseEvent& e) { b_Jingle_MouseUp(index, e); };
    b.b_Jingle.onKeyDown = [index](KeyEvent& e) { b_Jingle_KeyDown(index, e); };
    b.b_Jingle.onDrop = [index](const std::string& path) { b_Jingle_OLEDragDrop(index, path); };
    b.b_Jingle.onDescribe = [index] {
        return guardedOr(".b_Jingle_Describe", std::string(), [&] { return DescribeButton(index); });
    };
    b.ckJingSel.onChange = [index] {
        if (index == MoveSrcJ) {
            MoveBuffer.tick = Button(index)->ckJingSel.value;  // it travels with the move
        }
    };
    b.ckJingSel.onMouseDown = [](const MouseEvent& e) {
        if (e.button == MouseButton::right) {
            ckJingleMenu();
        }
    };
    DressButton(index);
}

void wireTimers() {
    UiTimers& t = timers();
    t.TimerDispAndJButtons.handler = TimerDispAndJButtonsTick;
    t.TimerVU.handler = TimerVUTick;
    t.TimerKeyModifiers.handler = TimerKeyModifiersTick;
    t.TimerTimeAndTA.handler = TimerTimeAndTATick;
    t.SaveTimer.handler = SaveTimerTick;
    t.TimerLoadPal.handler = TimerLoadPalTick;
    t.TimerClock.handler = TimerClockTick;
    t.TimerIdleClock.handler = TimerIdleClockTick;
    t.TimerReleaseSep.handler = TimerReleaseSepTick;
    t.TimerWarnBlink.handler = TimerWarnBlinkTick;
    t.TimerMainPos.handler = TimerMainPosTick;
    t.TimerFadeOutLED.handler = TimerFadeOutLEDTick;
    t.TimerControlFlash.handler = TimerControlFlashTick;
    t.TimerVUFD.handler = TimerVUFDTick;
    t.TimerOutputs.handler = WatchOutputs;
    t.TimerPgUpDnPalLst.handler = TimerPgUpDnPalLstTick;
    t.Timerlstpalbot.handler = TimerlstpalbotTick;
    t.Timerlstpaltop.handler = TimerlstpaltopTick;
    t.TimerTrigColSel.handler = TimerTrigColSelTick;
    t.TimerCloseColorPicker.handler = TimerCloseColorPickerTick;
    t.TimerFindJingles.handler = TimerFindJinglesTick;
    t.TimerSearch.handler = TimerSearchTick;
    t.TimerAutoClJSearch.handler = TimerAutoClJSearchTick;
    t.TimerClear.handler = TimerClearTick;
    t.TimerShutDown.handler = TimerShutDownTick;
    t.TimerTOrelease.handler = TimerTOreleaseTick;
    t.TimerFadOutLive.handler = TimerFadOutLiveTick;
    t.TimerLive.handler = TimerLiveTick;
    t.TimerAutoMixStreamByTA.handler = [] {
        guarded("frmMain.TimerAutoMixStreamByTA_Timer", [] {
            timers().TimerAutoMixStreamByTA.stop();
            callUp(audioUpcalls.stopStream);
        });
    };
    t.tmrResize.handler = [] {
        timers().tmrResize.stop();
        FormDraw();
        PlaceQuestion();
    };
}

constexpr int kFastestDisplay = 110, kFastestMeter = 11, kMeterStep = 10;  // ms
int displayInterval() { return std::max(10, kFastestDisplay - displaySettings.DispSpeed); }

int meterInterval() { return std::max(kMeterStep, (kFastestMeter - meterSettings.VUspeed) * kMeterStep); }

void fillFromSettings() {
    DTChange();
    ShowAnnouncer();
    frmMain().live.cmbStream.caption = liveSettings.StreamPoint;
    ListPlayStreams();
    ShowLive();
}

}  // namespace

void Form_Load() {
    guarded("frmMain.Form_Load", [] {
        for (const char* font : {"ZVR", "MSSSMod"}) {
            registerFont(ShippedFile("Fonts/" + std::string(font) + ".ttf"));
        }
        MainWindow& w = frmMain();
        DisplayControls& d = w.display;
        for (Control* c : d.digits()) {
            c->fontName = kSymbolFont;
            c->fontSize = 48;
            c->alignment = 2;
        }
        for (Control* c : {&d.lblPosMisD, &d.lblPosMisC}) {
            c->fontSize = 14;
        }
        for (Control* c : {&d.lblErr, &d.lblClock[0], &d.lblClock[1], &d.lblClock[2], &d.lblPlayMode[0],
                           &d.lblPlayMode[1], &d.lblTa}) {
            c->fontName = kSymbolFont;
            c->fontSize = 12;
        }
        PlaceWindow(w.window);
        wireWindow();
        wireDisplay();
        wirePalettes();
        wireOptions();
        wireKeys();
        WireLiveTab();
        WireAnnouncerTab();
        wireTimers();
        buttonMade = wireButton;
        LimitWindow(w.window);
    });
}

void FormsLoad(const std::string& window) {
    guarded("modMain.FormsLoad", [&] {
        CtrlDown = false;
        ShiftDown = false;
        AltDown = false;
        if (window != "frmMain") {
            return;
        }
        ActiveTab = std::clamp(windowSettings.ActiveTab, 0, kTabs - 1);
        JGap = gridSettings.JoinedJButtons == 1 ? 0 : kGap;
        JOuterGap = gridSettings.JoinedJButtons == 1 ? kJoinedOuterGap : 0;
        ToggleTouch = static_cast<std::uint8_t>(keySettings.Touch == 1 ? 1 : 0);
        ToggleAutoRep =
            static_cast<std::uint8_t>(keySettings.Autorepeat == 1 && keySettings.Touch != 1 ? 1 : 0);
        fillFromSettings();
        frmMain().palettes.txtSave.enabled = false;
        SwitchDarkMode(darkSettings.DarkMode);
        ApplyMeterLook();
        DrawJButtons(1);
        ReColorizeBtn();
        MainWindow& w = frmMain();
        for (int i = 0; i < kTabs; ++i) {
            const auto at = static_cast<std::size_t>(i);
            w.fraTab[at].visible = i == ActiveTab;
            w.ckTab[at].value = i == ActiveTab ? 1 : 0;
        }
    });
}

bool Form_QueryUnload(int reason) {
    return guardedOr("frmMain.Form_QueryUnload", true, [&] {
        ErrLog("", UnloadReasonText(reason));
        bool cancel = true;
        if (programSettings.ConfirmExit == 1 && reason != kSessionEnds) {
            cancel = messageBox(LnBox("mMsquit"), "Zentrova", BoxKind::question, BoxButtons::yesNo,
                                Verbs("vbClose", "vbGoOn")) != BoxAnswer::yes;
        } else {
            cancel = false;
        }
        if (!cancel) {
            OKfx();
            LeaveForGood();
            windowSettings.ActiveTab = ActiveTab;
            SaveZVini();
        }
        return !cancel;
    });
}

void frmMainUnload() {
    guarded("frmMain.Form_Unload", [] {
        MoveSrcJ = -1;
        LoadingUI = true;
        StopTimers();
        hideWindow(frmMain().window);
    });
}

void StartTimers() {
    UiTimers& t = timers();
    t.TimerDispAndJButtons.setInterval(displayInterval());
    t.TimerVU.setInterval(meterInterval());
    t.TimerWarnBlink.setInterval(WarnBlinkInterval(warningSettings.BlinkWarn));
    t.TimerDispAndJButtons.start();
    t.TimerVU.start();
    t.TimerMainPos.start();
    t.TimerKeyModifiers.start();
    t.TimerTimeAndTA.setInterval(UntilNextSecond());
    t.TimerTimeAndTA.start();
    t.TimerFadeOutLED.start();
    t.TimerControlFlash.start();
    t.TimerAutoMixStreamByTA.start();
    t.TimerOutputs.setInterval(kOutputWatchMs);
    t.TimerOutputs.start();
}

}  // namespace zv
