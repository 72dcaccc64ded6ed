// The main window: where everything stands in a few windows, and what it shows in a few scenes, compared as a whole with
// the approved text beside this source. ZV_APPROVE=1 test_ui --gtest_filter='ScreenTest.*' writes it anew.

#include <functional>
#include <map>
#include <set>
#include <sstream>

#include "audio/live_stream.h"
#include "audio/streams.h"
#include "model/held_palette.h"
#include "platform/rehearsal/virtual_clock.h"
#include "startup/errors.h"
#include "startup/helpers.h"
#include "startup/settings/bars_settings.h"
#include "startup/settings/clock_settings.h"
#include "startup/settings/dark_settings.h"
#include "startup/settings/devices_settings.h"
#include "startup/settings/display_settings.h"
#include "startup/settings/grid_settings.h"
#include "startup/settings/labels_settings.h"
#include "startup/settings/live_settings.h"
#include "startup/settings/meters_settings.h"
#include "startup/settings/minimal_settings.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings/program_settings.h"
#include "startup/settings/volumes_settings.h"
#include "startup/settings_file.h"
#include "tests/support/approved.h"
#include "tests/support/places.h"
#include "tests/ui/window_test.h"
#include "ui/edit/announcer_tab.h"
#include "ui/edit/palette_steps.h"
#include "ui/press/global_keys.h"
#include "ui/records/timers.h"
#include "ui/screen/announcer_view.h"
#include "ui/screen/button_faces.h"
#include "ui/screen/clock.h"
#include "ui/screen/colours.h"
#include "ui/screen/flashing.h"
#include "ui/screen/layout.h"
#include "ui/screen/layout_grid.h"
#include "ui/screen/live_view.h"
#include "ui/screen/meters.h"
#include "ui/screen/mic_keys.h"

namespace zv::test {

namespace {

std::string nameOf(const Control& c) { return c.name + (c.index < 0 ? "" : std::to_string(c.index)); }

/// Pixels; twips that make none stand behind a plus sign.
std::string pixels(int twips) {
    const int rest = twips % kTwipsPerPixel;
    return std::to_string(twips / kTwipsPerPixel) + (rest == 0 ? "" : "+" + std::to_string(rest));
}

std::string placed(const Control& c) {
    return pixels(c.left) + "," + pixels(c.top) + " " + pixels(c.width) + "x" + pixels(c.height);
}

std::string colour(Colour c) {
    if (c == kButtonFace) return "face";
    char digits[16];
    std::snprintf(digits, sizeof digits, "%06X",
                  static_cast<unsigned>((c & 0xFF) << 16 | (c & 0xFF00) | c >> 16));
    return c == kNoColour ? "-" : digits;
}

/// The controls of the window that are painted: of hidden ones nothing is told, nor of what stands in them.
void collect(const Control& c, std::vector<const Control*>& into) {
    if (!c.visible) return;
    into.push_back(&c);
    for (const Control* child : c.children()) collect(*child, into);
}

/// A text as a word of a line.
std::string cut(std::string s) {
    std::replace(s.begin(), s.end(), '\n', '/');
    std::erase(s, '\r');
    return s.substr(0, 44);
}

/// How a control looks: 'caption' "tip" back/fore[border] =value {rows}selected font.
std::string look(const Control& c, bool tips = true) {
    std::string text;
    const bool apart = c.kind == ControlKind::jingle || c.name == "lblbtnumber";
    if (!c.caption().empty() && !apart) text += " '" + cut(c.caption) + "'";
    if (tips && !c.toolTip().empty()) text += " \"" + cut(c.toolTip) + "\"";
    if (c.backColor != kNoColour || c.foreColor != kNoColour)
        text += " " + colour(c.backColor) + "/" + colour(c.foreColor);
    if (c.borderColor != kNoColour) text += "[" + colour(c.borderColor) + "]";
    if (c.kind == ControlKind::slider || c.kind == ControlKind::number)
        text += " " + std::to_string(c.minimum) + ".." + std::to_string(c.maximum);
    if (c.kind == ControlKind::meter) {
        const MeterLook& m = c.meterLook();
        for (const Colour part : {m.backColor, m.lowColor, m.midColor, m.hiColor}) text += " " + colour(part);
        for (const int part : {int{m.gradient}, int{m.solid}, int{m.peak}, m.peakDelayMs, m.midLevel,
                               m.hiLevel, int{m.vertical}, int{m.clipped}})
            text += " " + std::to_string(part);
    }
    if (c.value != 0) text += " =" + std::to_string(c.value);
    if (!c.items().empty()) {
        for (const std::string& item : c.items())
            text += (&item == &c.items().front() ? " {" : "|") + cut(item).substr(0, 12);
        text += "}" + std::to_string(c.listIndex);
    }
    if (c.alignment != 0) text += c.alignment == 1 ? " right" : " centred";
    return text + (c.enabled ? "" : " off") +
           (c.fontName().empty() || c.kind == ControlKind::jingle ? "" : " " + c.fontName());
}

/// "0-3,5"
std::string ranges(const std::vector<int>& indices) {
    std::string text;
    for (std::size_t i = 0; i < indices.size(); ++i) {
        std::size_t last = i;
        while (last + 1 < indices.size() && indices[last + 1] == indices[last] + 1) ++last;
        text += (text.empty() ? "" : ",") + std::to_string(indices[i]) +
                (last > i ? "-" + std::to_string(indices[last]) : "");
        i = last;
    }
    return text;
}

}  // namespace

/// Joined to lines of some length.
std::string paragraph(const std::vector<std::string>& parts, const std::string& between) {
    constexpr std::size_t kLine = 800;  // as of the other approved texts
    std::string text, line;
    for (const std::string& part : parts) {
        if (!line.empty() && line.size() + part.size() > kLine) text += std::exchange(line, {}) + "\n";
        line += (line.empty() ? "" : between) + part;
    }
    return line.empty() ? text : text + line + "\n";
}

class ScreenTest : public WindowTest {
  protected:
    /// The window control by control; parts of buttons that look alike, and the digits, are told as one. Where parts of
    /// buttons stand is told by the other text, that small fields have the button's colours is held at every tick.
    std::vector<std::string> standing(bool whole = true) {
        std::vector<const Control*> seen;
        collect(frmMain().window, seen);
        std::vector<std::string> all{"digits "};
        std::map<std::string, std::pair<std::size_t, std::vector<int>>> alike;
        for (const Control* c : seen) {
            controls_.emplace(nameOf(*c), c);
            if (c->name.starts_with("lblPos") || c->name.starts_with("sep")) {
                all[0] += c->caption() + (c->name == "lblPosMisC" ? look(*c) : "");
                continue;
            }
            if (c->name == "picbtnumber" || c->name == "lblPlaylist") continue;
            std::string text = look(*c, whole);
            const auto [place, first] = places_.emplace(c, placed(*c));
            if (c->kind != ControlKind::jingle &&
                (c->parent == nullptr || c->parent->kind != ControlKind::jingle)) {
                all.push_back(nameOf(*c) + text +
                              (!whole || place->second == placed(*c) ? "" : " @" + placed(*c)));
                continue;
            }
            if (c->name == "JRemLev") text += " " + pixels(c->width) + " wide";
            auto& [line, indices] = alike[c->name + "#" + text];
            if (indices.empty()) line = all.size(), all.emplace_back();
            indices.push_back(c->index);
            all[line] = c->name + " " + ranges(indices) + text;
        }
        return all;
    }

    /// What no control of the window shows: slots, settings, other windows, and what the desktop was asked.
    static std::vector<std::string> facts() {
        std::vector<std::string> all;
        for (const int i : LiveJingles()) {
            const JingleRecord& j = rec(i);
            if (!j.Path.empty())
                all.push_back("slot" + std::to_string(i) + " " + GetFileName(j.Path) + " " +
                              std::to_string(static_cast<int>(j.State)));
        }
        std::istringstream settings(SettingsDump());
        for (std::string line; std::getline(settings, line);) {
            std::erase(line, '\r');
            all.push_back(line.insert(std::min(line.find('='), line.size()), " "));
        }
        for (const Control* c : allControls())
            if (c->kind == ControlKind::window && c->visible && c != &frmMain().window)
                all.push_back(c->name + " open");
        Desktop& d = desktop();
        for (const std::string& box : std::exchange(d.boxes, {})) all.push_back("asked '" + cut(box) + "'");
        for (const std::string& command : std::exchange(d.commands, {}))
            all.push_back("ran " + GetFileName(command));
        all.push_back("armed " + OptionCode + " by " + LastCtrl);
        all.push_back("timers " + runningTimers());
        if (d.focus != nullptr) all.push_back("focus " + d.focus->name);
        if (const std::string copied = std::exchange(d.clipboard, {}); !copied.empty())
            all.push_back("copied '" + cut(copied) + "'");
        std::string menu;
        for (const MenuItem& item : std::exchange(d.menu, {}))
            menu += " " + item.name + (item.enabled ? "" : "!");
        if (!menu.empty()) all.push_back("menu" + menu);
        return all;
    }

    /// What differs from the window as it was told before; what is gone is named.
    std::vector<std::string> news(const std::vector<std::string>& now, bool whole) {
        const auto namesOf = [](const std::vector<std::string>& of) {
            std::set<std::string> names;
            for (const std::string& one : of) names.insert(one.substr(0, one.find(' ')));
            return names;
        };
        const auto names = namesOf(now), namesBefore = namesOf(before_);
        // What comes or goes with the frame around it is not told one by one.
        const auto withFrame = [&](const std::string& name, const std::set<std::string>& others) {
            const auto known = controls_.find(name);
            return known != controls_.end() && known->second->parent != nullptr &&
                   !others.contains(nameOf(*known->second->parent));
        };
        std::vector<std::string> told;
        for (const std::string& one : now) {
            if (std::ranges::find(before_, one) != before_.end()) continue;
            const std::string name = one.substr(0, one.find(' '));
            const bool isNew = !whole && !namesBefore.contains(name) && controls_.contains(name);
            if (isNew && withFrame(name, namesBefore)) continue;
            told.push_back(isNew ? name : one);
        }
        for (const std::string& name : namesBefore)
            if (!names.contains(name) && !withFrame(name, names)) told.push_back("no " + name);
        before_ = now;
        return told;
    }

    void scene(const std::string& title) {
        VirtualClock::instance().setWallTime("2026-11-07 15:04:20");
        DateTimeUpdate();
        std::vector<std::string> all = standing();
        for (const int i : LiveJingles())  // what a screen reader says
            if (!rec(i).Path.empty()) all.push_back("says" + std::to_string(i) + " " + DescribeButton(i));
        text_ += "== " + title + "\n" + paragraph(news(all, true), "; ");
    }

    /// What an act changes of the window and of all facts; nothing is told where it changes nothing. What time and sound
    /// move by themselves is left out, places and tips too.
    void step(const std::string& title, const std::function<void()>& act) {
        taken_ = false;
        act();
        pass(160);
        std::vector<std::string> now = standing(false);
        std::erase_if(now, [](const std::string& one) {
            return one.starts_with("digits") || one.starts_with("J") || one.starts_with("Vu") ||
                   one.starts_with("lblTime");
        });
        std::ranges::copy(facts(), std::back_inserter(now));
        std::string told;
        for (const std::string& one : news(now, false)) told += (told.empty() ? " " : "; ") + one;
        if (taken_ || !told.empty()) steps_.push_back("[" + title + (taken_ ? "]!" : "]") + told);
        desktop().focus = nullptr;
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

    void click(int index) { press(index), release(index); }

    std::string text_;
    std::vector<std::string> steps_;

  private:
    bool taken_ = false;  ///< the key of this step does not reach the control with the focus
    std::vector<std::string> before_;
    std::map<const Control*, std::string> places_;
    std::map<std::string, const Control*> controls_;
};

TEST_F(ScreenTest, EverythingStandsWhereItWasApproved) {
    const struct {
        int width, height, rows, columns;
        const char* meters;
        int joined, hot, hotRows, hotHeight, bar, thickness, number, fontSize;
    } windows[] = {{1280, 800, 6, 5, "r", 0, 0, 1, 2, 1, 1, 0, 12},
                   {512, 236, 6, 5, "n", 1, 1, 1, 6, 0, 0, 1, 20},
                   {790, 590, 8, 12, "l", 1, 2, 2, 2, 2, 2, 1, 2},
                   {1920, 1080, 5, 8, "t", 1, 1, 2, 5, 1, 0, 2, 12}};
    MainWindow& w = frmMain();
    Control* const comeAndGo[] = {&w.palettes.txtSave, &w.announcer.ckTmAnnAM, &w.display.lblQuiet,
                                  &w.display.lblMIDIDevice};
    std::vector<std::pair<const Control*, std::string>> rows;
    MakeButton(kPaletteSlots + 1);
    for (const auto& window : windows) {
        meterSettings.VUPos = window.meters;
        gridSettings.JinglesRows = window.rows;
        gridSettings.JinglesCols = window.columns;
        gridSettings.JoinedJButtons = window.joined;
        gridSettings.HotJinglesPos = window.hot;
        gridSettings.HotJinglesRows = window.hotRows;
        gridSettings.HotJinglesHeight = window.hotHeight;
        barSettings.JRemLevPos = window.bar;
        barSettings.JRemLevThickness = window.thickness;
        labelSettings.JNumbPos = window.number;
        labelSettings.JLabelFontSize = window.fontSize;
        // In every second window what comes and goes is there.
        const bool more = window.columns % 4 == 0;
        displaySettings.DispCSec = more ? 1 : 0;
        for (Control* c : comeAndGo) c->visible = more;
        deviceSettings.DeviceSingle = window.width == 1920 ? 1 : 0;  // one sound output has no microphone
        resize(window.width, window.height);
        text_ += "== " + std::to_string(window.width) + "x" + std::to_string(window.height) + " " +
                 std::to_string(JGap) + "/" + std::to_string(JOuterGap) + "\n";
        std::vector<const Control*> all;
        const auto add = [&](const auto& self, const Control& c) -> void {
            for (const Control* child : c.children()) {
                const int i = child->index;
                const bool sample = i == 0 || i == 11 || i == kPaletteSlots || i == kPaletteSlots + 5;
                if (child->kind == ControlKind::jingle && !sample) continue;
                if (child->parent->kind == ControlKind::jingle && (i == 0 || i == kPaletteSlots + 5) &&
                    child->name != "lblbtnumber")
                    continue;
                all.push_back(child);
                self(self, *child);
            }
        };
        add(add, w.window);
        for (const Control* c : all) {
            auto row = std::ranges::find(rows, c, &std::pair<const Control*, std::string>::first);
            if (row == rows.end()) row = rows.insert(row, {c, nameOf(*c)});
            row->second += (c->visible ? " |" : " |hidden ") + placed(*c);
            if (c->fontSize > 0) row->second += " " + std::to_string(c->fontSize).substr(0, 5);
        }
        for (Control* c : comeAndGo) c->visible = false;
    }
    std::vector<std::string> parts;
    for (const auto& [c, row] : rows) parts.push_back(row);
    text_ += paragraph(parts, "; ");
    expectApproved("ui/places.txt", text_);
    resize(3840, 2160);
    EXPECT_NEAR(w.fraPanel.height() / kTwipsPerPixel, 300, 8) << "the strip grows no more";
}

TEST_F(ScreenTest, EverythingLooksAsItWasApproved) {
    VirtualClock::instance().setWallTime("2026-11-07 15:04:19");
    pass(4000);  // the meters forget what they saw
    FadePhase = FlashPhase = false;
    lstPalRefresh();
    LiveStatus.clear();
    for (const std::string& font : desktop().fonts) text_ += GetFileName(font) + "\n";
    scene("nothing yet");
    writePalette("Afternoon", 2);
    writePalette("Morning", 1);
    paletteSettings.PaletteIndex = "Morning";
    lstPalRefresh();
    SelectPalette("Morning");
    OpenFile("Morning");
    pass(500);
    const char* keys[] = {"",
                          "Loop=1",
                          "Seq=1 LoopIn=300 LoopOut=600",
                          "PlayMod=1",
                          "PlayMod=2",
                          "PlayMod=3",
                          "PlayMod=4",
                          "BTNCol=FF8000",
                          "BTNCol=000040",
                          "CueStart=100",
                          "FadeOut=2000 Loop=1 LoopFadeOut=1",
                          "FadeOut=2000"};
    for (int i = 0; i < 12; ++i) load(i, 8000 + 1000 * i, keys[i]);
    load(kPaletteSlots, 2000, "PlayMod=2");
    for (const int broken : {12, 13}) load(broken, 500, "Loop=1");
    std::filesystem::remove(path("Audio_Sample/sound_12.wav"));
    write("Audio_Sample/sound_13.wav", "no sound");
    for (const int broken : {12, 13}) FreeJingle(broken), openStreams(broken);
    gridSettings.HotJinglesPos = 2;
    labelSettings.JNumbPos = 1;
    FormDraw("init");
    pass(100);
    scene("a palette at rest, hot jingles, numbers");

    for (const int i : {0, 2, 7, 10, 11}) click(i);
    pass(700);
    BASS_ChannelPause(rec(7).hPlay);
    openNames(0, "Afternoon", false);
    click(10), click(11);
    pass(400);
    scene("one of another palette, one in its loop, one paused, two fade");
    pass(100);
    scene("the other phase of the marks");
    evStop();
    pass(100);
    HoldPalette("Morning");
    click(1);
    pass(300);
    frmMain().ckTab[3].onMouseDown({});
    frmMain().options.ckLoopI.onMouseDown({});
    pass(160);
    scene("loop is armed while one sounds");
    frmMain().options.ckLoopI.onMouseDown({});
    pass(160);
    scene("sequence is armed");
    for (Control* key : {&frmMain().options.ckNoStopI, &frmMain().options.ckFXI}) {
        key->onMouseDown({});
        pass(160);
        scene(key->name + " is armed");
    }
    frmMain().ckTab[1].onMouseDown({});
    std::filesystem::copy_file(sourceDir() + "/data/Time_Announce.wav", path("Time_Announce.wav"));
    CkTmAnnTog();
    pass(160);
    scene("the announcer's tab, nothing is armed; it announces");
    CkTmAnnTog();
    b_tmAnJinTog();
    pass(160);
    scene("the announcer asks for a jingle");
    EndChoosing();
    frmMain().ckTab[2].onMouseDown({});
    write("urls.txt", "http://one.example/\r\nhttp://two.example/\r\n");
    liveSettings.VolLive = 60;
    ListPlayStreams();
    ShowLive();
    pass(160);
    scene("the stream's tab");
    evStop();
    frmMain().ckTab[0].onMouseDown({});
    volumeSettings.InputEnabled = 1;
    SwitchInput(true);
    MicPush(), TalkOverTog(), CkTouchTog(), CkAutoMixTog();
    volumeSettings.Volume = 60;
    load(14, 4000), press(14), pass(1300);
    scene("keys are armed, the microphone is open, the warning runs");
    MicRelease(), TalkOverTog(), SwitchInput(false);
    volumeSettings.Volume = 100;
    CkTouchTog(), CkAutoRepTog(), CkAutoMixTog();
    evStop();
    labelSettings.JNumbPos = 2;
    FormDraw("init");
    desktop().modifiers = kCtrlMask;
    pass(700);
    click(1);
    pass(160);
    scene("a jingle is carried, numbers at the right");
    desktop().modifiers = 0;
    btNewTog();
    ErrDisp("no", 0, "It failed");
    pass(160);
    scene("a palette is named, something failed");
    openNames(1, "Afternoon", false);
    darkSettings.ShadeOffsetVal = -100;
    meterSettings.VUBackCol = 1, meterSettings.VULowCol = 2, meterSettings.VUMidCol = 3;
    meterSettings.VUHiCol = 4, meterSettings.VUMid = 50, meterSettings.VUHi = 60;
    ApplyMeterLook();
    SwitchDarkMode(1);
    pass(160);
    DisplayControls& d = frmMain().display;
    Control* const seldom[] = {&d.lblMIDIIcon, &d.lblMIDIDevice,  &d.lblQuiet,       &d.lblDispMessage,
                               &d.lblTa,       &d.lblPlayMode[0], &d.lblPlayMode[1], &d.lblClock[1]};
    for (Control* c : seldom) c->visible = true;
    d.lblMIDIDevice.caption = std::string();
    scene("dark");
    for (Control* c : seldom) c->visible = false;
    for (std::size_t tab = 1; tab < kTabs; ++tab) {
        frmMain().ckTab[tab].onMouseDown({});
        pass(160);
        scene("dark, tab " + std::to_string(tab));
    }
    minimalSettings.MinimalView = clockSettings.ClockEnabled = 1;
    CkTmAnnTog();
    FormDraw("init");
    ShowLive();
    pass(2500);
    scene("the minimal view");
    CkTmAnnTog();
    StopClock();
    expectApproved("ui/screen.txt", text_);
}

TEST_F(ScreenTest, KeysAndMouseDoWhatWasApproved) {
    VirtualClock::instance().setWallTime("2026-11-07 15:04:19");
    FadePhase = FlashPhase = false;
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
    step("", [] {});
    steps_.clear();
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
    expectApproved("ui/acts.txt", paragraph(steps_, "  "));
}

}  // namespace zv::test
