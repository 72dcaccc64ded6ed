// How the window is wired: its handlers, the timers that always run, the effect of each upcall on everything, and how it
// comes and goes, as approved.

#include "audio/upcalls.h"
#include "audio/announcer.h"
#include "audio/devices.h"
#include "midi/state.h"
#include "midi/upcalls.h"
#include "model/pending_removals.h"
#include "model/upcalls.h"
#include "platform/dialog_language.h"
#include "platform/rehearsal/midi_devices.h"
#include "platform/rehearsal/virtual_clock.h"
#include "platform/timers.h"
#include "platform/waiting.h"
#include "startup/errors.h"
#include "startup/language.h"
#include "startup/settings/bars_settings.h"
#include "startup/settings/grid_settings.h"
#include "startup/settings/minimal_settings.h"
#include "startup/settings/palette_list_settings.h"
#include "startup/settings/program_settings.h"
#include "startup/upcalls.h"
#include "tests/support/approved.h"
#include "tests/ui/approved.h"
#include "ui/edit/carried.h"
#include "ui/edit/palette_load.h"
#include "ui/edit/selection.h"
#include "ui/records/timers.h"
#include "ui/screen/announcer_view.h"
#include "ui/screen/clock.h"
#include "ui/screen/error_mark.h"
#include "ui/windows/midi_settings_window.h"
#include "ui/windows/question_window.h"
#include "ui/windows/splash.h"
#include "ui/wiring.h"

namespace zv::test {
namespace {

class UpcallsTest : public ApprovedTest {
  protected:
    /// Everything of a button is as nothing sets it.
    static void spoil(int index, bool seen) {
        JingleButton& b = *Button(index);
        b.b_Jingle.caption = std::string("?"), b.b_Jingle.toolTip = std::string("?");
        b.b_Jingle.value = 9;
        b.b_Jingle.backColor = 9, b.b_Jingle.foreColor = 9;
        for (Control* part : b.b_Jingle.children()) {
            part->visible = seen;
            part->backColor = 9, part->foreColor = 9;
        }
        b.lblPlaylist.caption = std::string("?");
        b.JRemLev.width = kTwipsPerPixel;
    }
    void tell(const std::string& what, const std::function<void()>& upcall) {
        watch->changes();
        upcall();
        note(what);
    }
    /// The upcall of a slot, on a button where all is seen and on one where nothing is.
    void tellOf(const std::string& what, int index, const std::function<void(int)>& upcall) {
        for (const bool seen : {true, false}) {
            spoil(index, seen);
            tell(what + " " + std::to_string(index) + (seen ? "" : " hidden"), [&] { upcall(index); });
            const int width = Button(index)->JRemLev.width;
            if (width != kTwipsPerPixel) text += "  bar of " + std::to_string(width) + "\n";
        }
    }
    void say(const std::string& what, const auto&... values) {
        text += "  " + what + " >";
        ((text += " " + std::to_string(values)), ...);
        text += "\n";
    }
};

/// Which handlers each control of the window has, as letters; in front of them "-" where it is hidden, "!" where it is off.
std::string handlers() {
    std::string all;
    for (const Control* c : allControls()) {
        if (&windowOf(*c) != &frmMain().window) continue;
        std::string text = std::string(c->visible ? "" : "-") + (c->enabled ? "" : "!");
        for (const auto& [letter, is] : {std::pair('D', bool{c->onMouseDown}),
                                         {'U', bool{c->onMouseUp}},
                                         {'2', bool{c->onDoubleClick}},
                                         {'C', bool{c->onClick}},
                                         {'G', bool{c->onChange}},
                                         {'K', bool{c->onKeyDown}},
                                         {'L', bool{c->onKeyUp}},
                                         {'F', bool{c->onFocus}},
                                         {'P', bool{c->onDrop}},
                                         {'S', bool{c->onDropFiles}},
                                         {'W', bool{c->onWheel}},
                                         {'Q', bool{c->onQueryClose}},
                                         {'R', bool{c->onResize}},
                                         {'T', bool{c->onDescribe}}})
            if (is) text += letter;
        const bool first = c->index <= 0 || c->parent->kind != ControlKind::jingle;
        if (!text.empty() && first && (c->kind != ControlKind::jingle || c->index == 0))
            all += nameOf(*c) + " " + text + "; ";
    }
    return all;
}

TEST_F(UpcallsTest, DoWhatWasApproved) {
    VirtualClock::instance().setWallTime("2026-11-07 15:04:19");
    std::map<std::string, int> ticks;
    std::istringstream always(
        "TimerDispAndJButtons TimerVU TimerKeyModifiers TimerTimeAndTA TimerMainPos "
        "TimerFadeOutLED TimerControlFlash TimerOutputs TimerAutoMixStreamByTA");
    for (std::string name; always >> name;) {
        auto& handler = findTimer(name)->handler;
        handler = [handler, &count = ticks[name]] { ++count, handler(); };
    }
    DisplayControls& d = frmMain().display;
    for (Control* c : {&d.lblMIDIIcon, &d.lblMIDIDevice})
        c->visible = false;  // whatever the tests before did with devices
    StopTimers();
    StartTimers();
    pass(4000);
    for (const auto& [name, count] : ticks) text += name + " " + std::to_string(count) + "; ";
    text += "at least " + std::to_string(desktop().leastWidth) + "x" + std::to_string(desktop().leastHeight) +
            "\n" + handlers() + "\n";
    watch->timeStands = true;
    MidiDevices::instance().onSent = [&](const std::string&, std::uint32_t message) {
        text += "  sent " + midiText(message) + "\n";
    };
    const AudioUpcalls& a = audioUpcalls;
    constexpr int kPlain = 0, kMissing = 2, kList = 5, kEmpty = 7, kBroken = 8;
    rec(kBroken).Path = "Audio_Sample\\A0.wav", rec(kBroken).Unplayable = true, rec(kBroken).BassErr = 41;
    for (const int i : {kPlain, kSlot}) tellOf("reset", i, a.slotReset);
    tellOf("bound", kList, a.slotBound);
    for (const int i : {kPlain, kSlot, kMissing, kBroken}) {
        tellOf("names", i, a.namesRead);
        tellOf("loaded", i, a.slotLoaded);
        tellOf("failed", i, a.slotFailed);
        tellOf("opened", i, a.slotOpened);
    }
    rec(kSlot).Loop = 1, rec(kSlot).Seq = 0;
    for (const int mode : {0, 1, 2, 3, 4}) {
        rec(kSlot).PlayMod = static_cast<PlayMode>(mode);
        tellOf("mode " + std::to_string(mode), kSlot, a.slotLoaded);
    }
    tellOf("missing", kPlain, a.fileMissing);
    for (const bool shown : {true, false}) {
        barSettings.JRemLevPos = shown ? 1 : 0;
        tellOf("starting", kPlain, a.playStarting);
        tellOf("started", kPlain, a.playStarted);
    }
    tellOf("loop left", kSlot, a.loopLeft);
    ChoosingTimeJingle = true;
    for (const int i : {kPlain, kMissing, kEmpty}) tellOf("opened while one is chosen", i, a.slotOpened);
    ChoosingTimeJingle = false;
    for (const bool armed : {false, true}) {
        SelectorsOn = armed;
        rec(kPlain).Playing = rec(kPlain).PlayingOtherPal = true;
        tellOf("names of another palette", kPlain, a.namesRead);
        tellOf("loaded of another palette", kPlain, a.slotLoaded);
        tellOf("failed of another palette", kPlain, a.slotFailed);
        rec(kPlain).PlayingOtherPal = false;
        tellOf("loaded while it plays", kPlain, a.slotLoaded);
        rec(kPlain).Playing = false;
        tellOf("loaded while armed", kSlot, a.slotLoaded);
    }
    SelectorsOn = false;
    for (const int i : {kPlain, kSlot})
        for (const Feedback moment :
             {Feedback::empty, Feedback::loaded, Feedback::failed, Feedback::stopping})
            tell("feedback " + std::to_string(static_cast<int>(moment)), [&] { a.feedback(i, moment); });

    // The display.
    tell("ignored", [&] { a.startIgnored(0); });
    tell("waits", [&] { a.slotWaits(0); });
    tell("ready", [&] { a.pressReady(kPlain, 64); });
    tell("failed", [] { ErrDisp("no", 0, "why"); });
    tell("ready again", [&] { a.pressReady(kPlain, -1); });
    evStop();
    tell("no device", [&] { a.noOutputDevice(); });
    for (const bool none : {true, false}) {
        NoOutputDevice = none;
        tell("outputs", [&] { a.outputsChanged(); });
    }
    const Timer& fades = timers().TimerAutoMixStreamByTA;
    for (const int ms : {0, 700}) {
        a.streamFades(ms);
        const std::int64_t begin = monotonicMs();
        while (fades.enabled()) pass(1);
        say("fades", monotonicMs() - begin);
    }
    minimalSettings.MinimalView = 1;
    ClockShown = true;
    for (Control& mark : d.lblClock) mark.visible = true;
    for (UiTimer* t : {&timers().TimerReleaseSep, &timers().TimerIdleClock, &timers().TimerClock}) t->start();
    tell("clock", [&] { a.hideClock(); });
    say("clock", ClockShown, timers().TimerReleaseSep.enabled(), timers().TimerIdleClock.enabled(),
        timers().TimerClock.enabled());
    const StartupUpcalls& s = startupUpcalls;
    tell("mark", [&] { s.showErrorMark({"no", 'x', true, false, true, "why"}); });
    tell("mark in the minimal view", [&] {
        for (Control& mode : d.lblPlayMode) mode.visible = true;
        s.showErrorMark({"no", 0, true, false, false, "else"});
    });
    minimalSettings.MinimalView = 0;
    tell("save timer", [&] { s.startSaveTimer(); });
    tell("text", [&] { s.applyText("frmMain", "mbtExit", "Leave"); });
    for (const std::string& name : s.paletteNames()) text += "  palette " + name + "\n";
    gridSettings.JinglesRows = 4, gridSettings.JinglesCols = 7;
    s.gridChanged();
    say("grid", LastPalIdx);
    gridSettings.JinglesRows = 6, gridSettings.JinglesCols = 5;
    frmSplash().lblStep.touch();
    tell("step", [&] { s.splashStep("Sounds"), s.splashBar(300); });
    say("splash", int{frmSplash().picLoad.width});

    // The palette.
    const ModelUpcalls& m = modelUpcalls;
    for (const int centred : {1, 0}) {
        paletteListSettings.CenterLstPal = static_cast<std::uint8_t>(centred);
        frmMain().palettes.lstPal.topRow = 9;
        Button(kSlot)->ckJingSel.visible = SelectorsShown = true;
        tell("begins", [&] { m.beginLoad(); });
        say("opens", PaletteOpening);
        tell("ends", [&] { m.endLoad(); });
        say("opens", PaletteOpening);
        frmMain().palettes.lstPal.topRow = 9;
        frmMain().palettes.lstPal.items = {"?"};
        tell("list", [&] { m.paletteListChanged("B"); });
    }
    for (const char* from : {"B", "a"}) {
        MoveSourcePalette = "A";
        tell("named", [&] { m.paletteNamed(from, "Z"); });
    }
    MoveSourcePalette.clear();
    PalToSave = true;
    timers().SaveTimer.start();
    tell("leaves", [&] { m.paletteLeaves(); });
    spoil(kSlot, true);
    tell("moved", [&] { m.slotMoved(kSlot); });
    tell("name", [&] { m.showPaletteName("Noon"); });
    tell("removals", [] { AddRemoval({"B", 3, "A", "x.wav"}), AddRemoval({"A", 5, "", "y.wav"}); });
    ForgetRemovals();

    // A control surface.
    frmMIDISettings();
    Control window("frmSett", ControlKind::window);
    Control volume("SlideVol", ControlKind::slider, &window), fade("SlideAmix", ControlKind::slider, &window),
        value("txtVol", ControlKind::label, &window), time("TxtAmix", ControlKind::textBox, &window);
    for (Control* c : {&volume, &fade, &value, &time}) c->touch();
    tell("volume", [] { midiUpcalls.showVolume(40); });
    tell("mixing", [] { midiUpcalls.showAutoMixTime(700); });
    volume.width = 4215;
    for (const bool learns : {false, false, true, true}) {  // the keys that teach stand beside the sliders
        value.left = learns ? 0 : -1;
        tell("learns", [&] { midiUpcalls.faderLearning(learns); });
        say("sliders", int{volume.width}, int{fade.width}, int{value.left});
    }
    midiUpcalls.layoutAll();
    frmMain().fraPanel.width = 0;
    tell("laid out", [] { midiUpcalls.layoutAll(); });
    say("strip", int{frmMain().fraPanel.width});
    MIDIStatusText = "Pad is here";
    tell("status", [] { midiUpcalls.showStatus(true); });
    OpenMidiSettings();
    cmbMIDIpresets.rows = {"One", "Two"};
    tell("lists", [] { midiUpcalls.listsChanged(); });
    cmbMIDIpresets.rows = {"One"};
    tell("group", [] { midiUpcalls.enableGroup(MidiGroup::in, true); });

    // Words for the desktop, and what it refuses meanwhile.
    for (const char* language : {kEnglish, kFrench, "Deutsch", "Español"}) {
        programSettings.Language = language;
        const BoxWords words = boxWords();
        text += "  " + dialogLanguage() + " " + words.ok + " " + words.cancel + " " + words.yes + " " +
                words.no + "\n";
    }
    programSettings.Language = kEnglish;
    for (const Waiting::For what : {Waiting::For::answer, Waiting::For::window}) {
        const Waiting waits(what, &frmMain().window, {});
        tell("refused", [&] { refusedMeanwhile(), pass(40); });
        pass(4000);
    }

    // The window is filled, and goes.
    for (const char* name : {"frmFX", "frmMain"}) {
        CtrlDown = ShiftDown = AltDown = true;
        frmMain().palettes.txtSave.enabled = true;
        tell(name, [&] { FormsLoad(name); });
        say("held", CtrlDown, ShiftDown, AltDown, frmMain().palettes.txtSave.enabled());
    }
    LoadingUI = false;
    MoveSrcJ = 3;
    frmMain().window.visible = true;
    tell("goes", frmMainUnload);
    say("goes", LoadingUI, timers().TimerVU.enabled());
    LoadingUI = false;
    text = lined();
    expectApproved("ui/upcalls.txt", text);
}

}  // namespace
}  // namespace zv::test
