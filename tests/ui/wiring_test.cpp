// How the window is wired: its handlers, the timers that always run, the effect of each upcall on everything, and how it
// comes and goes, as approved.

#include "ui/wiring.h"
#include "audio/announcer.h"
#include "audio/devices.h"
#include "audio/live_stream.h"
#include "audio/talk_over.h"
#include "audio/upcalls.h"
#include "midi/assignments.h"
#include "midi/state.h"
#include "midi/upcalls.h"
#include "model/actions.h"
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
#include "startup/settings/clock_settings.h"
#include "startup/settings/grid_settings.h"
#include "startup/settings/keys_settings.h"
#include "startup/settings/minimal_settings.h"
#include "startup/settings/palette_list_settings.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings/playing_settings.h"
#include "startup/settings/program_settings.h"
#include "startup/settings_file.h"
#include "startup/upcalls.h"
#include "tests/support/approved.h"
#include "tests/support/places.h"
#include "tests/ui/approved.h"
#include "ui/edit/carried.h"
#include "ui/edit/palette_load.h"
#include "ui/edit/selection.h"
#include "ui/records/timers.h"
#include "ui/screen/announcer_view.h"
#include "ui/screen/clock.h"
#include "ui/screen/error_mark.h"
#include "ui/screen/layout.h"
#include "ui/screen/mic_keys.h"
#include "ui/upcalls_fill.h"
#include "ui/windows/midi_settings_window.h"
#include "ui/windows/question_window.h"
#include "ui/windows/splash.h"

namespace zv::test {
namespace {

class WiringTest : public ApprovedTest {
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
            if (width != kTwipsPerPixel) say("bar", width);
        }
    }
    /// What an act changes, the menu that it opens and the program that it starts; "!" where the key goes no further.
    void step(const std::string& title, const std::function<void()>& act) {
        Desktop& d = desktop();
        taken_ = false, d.focus = nullptr, d.menu.clear(), d.commands.clear();
        act();
        pass(160);
        std::string seen = watch->changes();
        for (const std::string& command : d.commands)
            seen += " ran " + command.substr(command.rfind('/') + 1);
        for (const MenuItem& item : d.menu) seen += " menu " + item.name + (item.enabled ? "" : "!");
        if (taken_ || !seen.empty()) text += "  " + title + (taken_ ? "! > " : " > ") + seen + "\n";
    }

    /// Steps apart by commas: "ctrl shift Z", "f5", "space up", "space held" (repeated), "press 1", "release 1"; before
    /// them "yes" answers what is asked, "typing" has the keyboard in a text.
    void walk(const std::string& acts) {
        std::istringstream all(acts);
        for (std::string words; std::getline(all, words, ',');) step(words, [&] { act(words); });
    }
    void act(const std::string& acts) {
        KeyEvent e;
        bool up = false, mouse = false;
        std::istringstream words(acts);
        for (std::string word; words >> word;) {
            static const std::map<std::string, int> held{
                {"ctrl", kCtrlMask}, {"shift", kShiftMask}, {"alt", kAltMask}};
            static const std::map<std::string, Key> names{{"space", Key::space},
                                                          {"escape", Key::escape},
                                                          {"del", Key::del},
                                                          {"pgup", Key::pageUp},
                                                          {"pgdn", Key::pageDown}};
            if (const auto mask = held.find(word); mask != held.end()) e.shift |= mask->second;
            if (const auto named = names.find(word); named != names.end()) e.key = named->second;
            if (word == "yes") desktop().answers = {BoxAnswer::yes};
            if (word == "typing") desktop().focus = &frmMain().palettes.txtSave;
            mouse = mouse || word == "press" || word == "release";
            up = up || word == "up" || word == "release";
            e.repeat = e.repeat || word == "held";
            if (mouse && std::isdigit(word[0]) != 0) up ? release(word[0] - '0') : press(word[0] - '0');
            if (word.size() == 1) e.key = static_cast<Key>(word[0]);
            if (word[0] == 'f' && word.size() > 1)
                e.key = static_cast<Key>(static_cast<int>(Key::f1) + std::stoi(word.substr(1)) - 1);
        }
        if (mouse) return;
        desktop().modifiers = e.shift;
        pass(100);
        up ? frmMain().window.onKeyUp(e) : frmMain().window.onKeyDown(e);
        taken_ = e.consumed;
        desktop().modifiers = 0;
    }

    void say(const std::string& what, const auto&... values) {
        text += "  " + what + " >";
        ((text += " " + std::to_string(values)), ...);
        text += "\n";
    }

  private:
    bool taken_ = false;  ///< the key of this step does not reach the control with the focus
};

/// The controls that are seen, frames before what stands in them.
void collect(const Control& c, std::vector<const Control*>& into) {
    if (!c.visible) return;
    into.push_back(&c);
    for (const Control* child : c.children()) collect(*child, into);
}

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

TEST_F(WiringTest, UpcallsDoWhatWasApproved) {
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
    startupUpcalls = {}, audioUpcalls = {}, modelUpcalls = {}, midiUpcalls = {};
    boxWords = {}, dialogLanguage = {}, askOnCard = {}, worksMeanwhile = {}, placeOverGrid = {},
    refusedMeanwhile = {};
    zv::perform = {};
    FillUpcalls();
    tell("the window moves", [&] { frmMain().window.left = 40 * kTwipsPerPixel, pass(600); });
    const AudioUpcalls& a = audioUpcalls;
    const StartupUpcalls& s = startupUpcalls;
    say("filled", bool{a.stopAnnouncer}, bool{a.stopStream}, bool{a.liveChanged}, bool{a.liveFadesOut},
        bool{a.addressesChanged}, bool{a.announcerChanged}, bool{a.announcementFailed}, bool{a.inputsListed},
        bool{s.reportWindowOpen}, bool{s.showReportWindow}, bool{s.unloadOtherWindows}, bool{s.endProgram},
        bool{s.consolePaused}, bool{s.consoleLines}, bool{s.showStreamError}, bool{s.stopPlayStream},
        bool{midiUpcalls.learnChanged}, bool{askOnCard}, bool{worksMeanwhile}, bool{placeOverGrid},
        bool{zv::perform}, bool{modelUpcalls.pumpEvents});
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
    midiOut.OutJingleUp[kSlot] = "A01005";
    for (const int i : {kPlain, kSlot})
        for (const Feedback moment :
             {Feedback::empty, Feedback::loaded, Feedback::failed, Feedback::stopping})
            tell("feedback " + std::to_string(static_cast<int>(moment)), [&] { a.feedback(i, moment); });

    midiOut.OutJingleUp[kSlot].clear();

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
    tell("mark", [&] { s.showErrorMark({"no", 'x', true, false, true, "why"}); });
    tell("mark in the minimal view", [&] {
        for (Control& mode : d.lblPlayMode) mode.visible = true;
        s.showErrorMark({"no", 0, true, false, false, "else"});
    });
    minimalSettings.MinimalView = 0;
    tell("save timer", [&] { s.startSaveTimer(); });
    tell("text", [&] { s.applyText("frmMain", "mbtExit", "Leave"); });
    for (const std::string& name : s.paletteNames()) text += "  palette > " + name + "\n";
    gridSettings.JinglesRows = 4, gridSettings.JinglesCols = 7;
    s.gridChanged();
    say("grid", LastPalIdx);
    gridSettings.JinglesRows = 6, gridSettings.JinglesCols = 5;
    frmSplash().lblStep.touch();
    tell("step", [&] { s.splashStep("Sounds"), s.splashBar(300); });
    say("splash", int{frmSplash().picLoad.width});

    load(9, 2000);
    BASS_ChannelPlay(rec(9).hPlay, 0);
    playingSettings.PlayingFColor = 5;
    for (const bool sounds : {true, false}) {
        hTmAnVoice = sounds ? HSTREAM{rec(9).hPlay} : 0;
        tell("announcement", [&] { a.announcerChanged(); });
    }

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
        text += "  " + dialogLanguage() + " > " + words.ok + " " + words.cancel + " " + words.yes + " " +
                words.no + "\n";
    }
    programSettings.Language = kEnglish;
    for (const Waiting::For what : {Waiting::For::answer, Waiting::For::window}) {
        const Waiting before(Waiting::For::window, nullptr, {}), waits(what, &frmMain().window, {});
        const Waiting behind(what == Waiting::For::answer ? Waiting::For::window : what, nullptr, {});
        EXPECT_EQ(waitingNow(), what == Waiting::For::answer ? &waits : &behind);
        tell("refused", [&] { refusedMeanwhile(), pass(40); });
        pass(4000);
    }

    // The window is filled, and goes. Of two kept toggles only one can be on.
    for (const int kept : {0, 1, 2, 3}) {
        keySettings.Autorepeat = kept % 2, keySettings.Touch = kept / 2;
        FormsLoad("frmMain");
        say("kept", kept, ToggleTouch, ToggleAutoRep);
    }
    ToggleTouch = ToggleAutoRep = 0;
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

TEST_F(WiringTest, KeysAndMouseDoWhatWasApproved) {
    VirtualClock::instance().setWallTime("2026-11-07 15:04:19");
    ticksChecked = true;
    write("palette.ini", "");
    writePalette("Afternoon", 2);
    writePalette("Morning", 1);
    paletteSettings.PaletteIndex = "Morning";
    lstPalRefresh();
    SelectPalette("Morning");
    OpenFile("Morning");
    load(1, 60'000), load(2, 60'000, "PlayMod=2");
    write("myscript.sh", "echo 1");
    std::filesystem::copy_file(sourceDir() + "/data/Time_Announce.wav", path("Time_Announce.wav"));
    SwitchInput(true);
    bool closed = false;
    frmMain().window.onClose = [&] { closed = true; };
    pass(4000);
    LastPlayedJ = -1, TalkOverOn = MicPushed = false, LiveStatus.clear();
    watch->mainOnly = true;
    watch->changes();
    walk(
        "space,space held,Z,f1,f2,f3,f3,f4,f5,f6,f7,f8,f9,alt f9,alt "
        "f9,f10,f10,f10,f11,f11,R,T,R,R,M,M,M,E,E,A,A,S,S,F,F,"
        "L,L,L,N,N,C,C,C,L,L,L,ctrl A,ctrl C,alt C,ctrl alt C,alt X,X,shift C,shift A,shift A,ctrl R,ctrl "
        "R,alt "
        "M,M,M,L,pgdn,"
        "pgdn held,pgdn up,pgup,pgup up,pgdn,pgdn up,ctrl f9,del,press 1,release 1,space,space,space "
        "held,yes del,ctrl Z,"
        "ctrl Y,ctrl Z,ctrl shift Z,ctrl Z,press 2,release 2,space,space up,escape,typing T,typing "
        "space,typing f10,"
        "typing f10,typing f10,yes del");
    for (const int held : {0, 1, 2, 3, 4, 6, 5, 7})
        step("held " + std::to_string(held), [&] { desktop().modifiers = held; });
    desktop().modifiers = 0;
    DisplayControls& d = frmMain().display;
    for (Control* c : {&d.lblMIDIIcon, &d.lblMIDIDevice, &d.lblPlayMode[0], &d.lblPlayMode[1]})
        c->visible = true;
    for (int tab = 0; tab < kTabs; ++tab) {
        step("tab " + std::to_string(tab),
             [&] { frmMain().ckTab[static_cast<std::size_t>(tab)].onMouseDown({}); });
        std::vector<const Control*> seen;
        collect(frmMain().window, seen);
        for (const Control* shown : seen) {
            const bool once = tab > 0 && shown->parent != &frmMain().fraTab[static_cast<std::size_t>(tab)];
            if (once || !shown->enabled || shown->kind == ControlKind::jingle ||
                shown->kind == ControlKind::window || shown->name == "ckTab")
                continue;
            for (const MouseButton button :
                 {MouseButton::left, MouseButton::left, MouseButton::right, MouseButton::middle}) {
                if (shown == &frmMain().keys.btExit && button != MouseButton::right) continue;
                const bool left = button == MouseButton::left;
                const std::string how = left ? "" : button == MouseButton::right ? " right" : " middle";
                const MouseEvent event{button};
                if (shown->onMouseDown)
                    step(nameOf(*shown) + how + " down", [&] { shown->onMouseDown(event); });
                if (shown->onMouseUp) step(nameOf(*shown) + how + " up", [&] { shown->onMouseUp(event); });
                if (shown->onClick && left) step(nameOf(*shown) + " click", [&] { shown->onClick(); });
            }
        }
    }
    programSettings.HoldExitToShutDown = 1;
    for (const bool letGo : {true, false}) {
        frmMain().keys.btExit.onMouseDown({});
        pass(500);
        letGo ? frmMain().keys.btExit.onMouseUp({}) : walk("alt f4");
        EXPECT_TRUE(closed);
        closed = false;
        pass(2500);
        EXPECT_FALSE(closed) << "closed before two seconds it shuts nothing down";
    }
    for (const int hold : {0, 1}) {
        programSettings.HoldExitToShutDown = programSettings.ConfirmExit = hold;
        step("exit down", [] { frmMain().keys.btExit.onMouseDown({}); });
        pass(1900);
        EXPECT_EQ(closed, hold == 1) << "held for two seconds it shuts the machine down";
        closed = false;
        step("exit up", [] { frmMain().keys.btExit.onMouseUp({}); });
        EXPECT_TRUE(closed);
        closed = false;
    }
    SaveZVini();
    EXPECT_EQ(read("zv.ini").find("ShutdownOnQuit=1"), std::string::npos) << "it holds for this once";
    frmMain().window.onClose = nullptr;
    expectApproved("ui/acts.txt", lined());
}

/// The list of palettes: steps, held keys, centring; which palette is loaded when.
TEST_F(WiringTest, TheListOfPalettesStepsAsApproved) {
    write("palette.ini", "");
    for (const char* name : {"Morning", "afternoon", "Zulu"}) writePalette(name, 1);
    for (int i = 0; i < 30; ++i)
        write("palette.ini", read("palette.ini") + "[P" + std::to_string(10 + i) + "]\r\n");
    const auto begin = [](const std::string& name) {
        lstPalRefresh(), SelectPalette(name);
        paletteSettings.PaletteIndex = name;
        OpenFile(name);
    };
    begin("P39");
    const auto act = [&](
                         const std::string& what, int ms, const std::function<void()>& does = [] {}) {
        tell(what, [&] { does(), pass(ms); });
    };
    PaletteTab& tab = frmMain().palettes;
    act("down", 0, evBtDn), act("again, around", 0, evBtDn), act("loaded", 150);
    act("while another opens", 250, [] { PaletteOpening = true, evBtDn(); });
    act("that has opened", 150, [] { PaletteOpening = false; });
    act("up", 150, evbtUp);
    for (const int wanted : {1, 0}) {
        paletteListSettings.CenterLstPal = static_cast<std::uint8_t>(wanted);
        SelectPalette("P30"), tab.lstPal.topRow = 0;
        act("picked", 200, [&] { tab.lstPal.onMouseUp({}); });
        act("stepped", 200, evBtDn);
        act("jumped", 600, [&] { tab.btUp.onMouseDown({}); });
        tab.btUp.onMouseUp({});
    }
    paletteListSettings.LoopLstPal = 0;
    act("up at the top", 150, evbtUp);
    const auto page = [](bool repeat) {
        KeyEvent event{Key::pageDown, 0, repeat};
        frmMain().window.onKeyDown(event);
    };
    desktop().keys = {static_cast<int>(Key::pageDown)};
    act("page key", 390, [&] { page(false); });
    act("its own repeat", 0, [&] { page(true); });
    act("held for 0.4 s it runs", 20);
    begin("afternoon");
    act("let go while another window had the keyboard", 600, [&] { page(true), desktop().keys.clear(); });
    act("arrow", 700, [&] { tab.btDn.onMouseDown({}), tab.btDn.onMouseUp({}); });
    act("arrow held", 490, [&] { tab.btDn.onMouseDown({}); });
    act("to the end", 200), act("let go", 0, [&] { tab.btDn.onMouseUp({}); });
    expectApproved("ui/palettes.txt", lined());
}

/// Two seconds of silence, then the time; the date for four seconds twice a minute and while the display is held.
TEST_F(WiringTest, TheClockOfTheMinimalViewIsAsApproved) {
    minimalSettings.MinimalView = clockSettings.ClockEnabled = clockSettings.DateEnabled = 1;
    FormDraw("init"), StopClock(), pass(100);
    DisplayControls& d = frmMain().display;
    const auto act = [&](
                         const std::string& what, int ms, const std::function<void()>& does = [] {}) {
        tell(what, [&] { does(), pass(ms); });
        text += "  > ";
        for (const Control* digit : d.digits()) text += digit->visible ? digit->caption() : "";
        text += "\n";
    };
    const std::pair<const char*, const char*> formats[] = {{"HH:mm:ss", "ddd dd mmmm yyyy"},
                                                           {"hh:mm:ss AM/PM", "mmmm dd ddd yyyy"},
                                                           {"HH:mm:ss", "yyyy mmmm dd ddd"}};
    for (const char* at :
         {"2026-11-07 15:04:20", "2026-11-07 00:04:09", "2026-11-07 12:04:39", "2026-11-07 15:04:42"})
        for (const auto& [time, date] : formats) {
            clockSettings.TimeFormat = time, clockSettings.DateFormat = date;
            StopClock(), VirtualClock::instance().setWallTime(at);
            act(std::string(at) + " " + time + " " + date, 1900), act("later", 600);
        }
    Control& held = frmMain().display.lblPosSecU;
    Control& next = frmMain().display.lblTa;
    act("held", 0, [&] { held.onMouseDown({}); });
    act("let go at the right", 0, [&] { held.onMouseUp({MouseButton::right}); });
    act("let go", 0, [&] { held.onMouseUp({}); });
    act("no next announcement", 0, [&] { next.onMouseDown({}); });
    TmAnnOn = true;
    act("the next announcement", 100, [&] { next.onMouseDown({}); });
    act("in half days", 0, [&] { clockSettings.TimeFormat = "hh:mm:ss AM/PM", next.onMouseDown({}); });
    act("let go", 0, [&] { next.onMouseUp({}); });
    act("before the clock", 0, [&] { StopClock(), next.onMouseDown({}); });
    act("let go", 0, [&] { next.onMouseUp({}); });
    TmAnnOn = false;
    clockSettings.TimeFormat = "HH:mm:ss";
    act("the clock", 2500);
    for (int i = 0; i < 10; ++i) act("colons", 100);
    load(1, 2000);
    act("a press", 100, [&] { press(1); });
    say("clock", ClockShown, timers().TimerReleaseSep.enabled(), timers().TimerClock.enabled());
    act("held while it counts", 0, [&] { held.onMouseDown({}); });
    act("let go", 0, [&] { held.onMouseUp({}); });
    minimalSettings.MinimalView = 0;
    StopClock();
    expectApproved("ui/clock.txt", lined());
}

}  // namespace
}  // namespace zv::test
