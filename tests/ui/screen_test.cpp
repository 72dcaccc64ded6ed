// The main window: where everything stands in a few windows, and what it shows in a few scenes, compared as a whole with
// the approved text beside this source. ZV_APPROVE=1 test_ui --gtest_filter='ScreenTest.*' writes it anew.

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
#include "startup/settings/midi_settings.h"
#include "startup/settings/minimal_settings.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings/volumes_settings.h"
#include "tests/support/approved.h"
#include "tests/support/places.h"
#include "tests/ui/window_test.h"
#include "ui/edit/announcer_tab.h"
#include "ui/edit/palette_steps.h"
#include "ui/press/global_keys.h"
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
std::string look(const Control& c) {
    std::string text;
    const bool apart = c.kind == ControlKind::jingle || c.name == "lblbtnumber";
    if (!c.caption().empty() && !apart) text += " '" + cut(c.caption) + "'";
    if (!c.toolTip().empty()) text += " \"" + cut(c.toolTip) + "\"";
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

class ScreenTest : public WindowTest {
  protected:
    /// The window control by control; parts of buttons that look alike, and the digits, are told as one. Where parts of
    /// buttons stand is told by the other text, that small fields have the button's colours is held at every tick.
    std::vector<std::string> standing() {
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
            std::string text = look(*c);
            const auto [place, first] = places_.emplace(c, placed(*c));
            if (c->kind != ControlKind::jingle &&
                (c->parent == nullptr || c->parent->kind != ControlKind::jingle)) {
                all.push_back(nameOf(*c) + text + (place->second == placed(*c) ? "" : " @" + placed(*c)));
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

    /// What differs from the window as it was told before; what is gone is named.
    std::vector<std::string> news(const std::vector<std::string>& now) {
        const auto namesOf = [](const std::vector<std::string>& of) {
            std::set<std::string> names;
            for (const std::string& one : of) names.insert(one.substr(0, one.find(' ')));
            return names;
        };
        const auto names = namesOf(now);
        std::vector<std::string> told;
        for (const std::string& one : now)
            if (std::ranges::find(before_, one) == before_.end()) told.push_back(one);
        // What goes with the frame around it is not told one by one.
        for (const std::string& name : namesOf(before_)) {
            const auto known = controls_.find(name);
            const bool withFrame = known != controls_.end() && known->second->parent != nullptr &&
                                   !names.contains(nameOf(*known->second->parent));
            if (!names.contains(name) && !withFrame) told.push_back("no " + name);
        }
        before_ = now;
        return told;
    }

    void scene(const std::string& title) {
        VirtualClock::instance().setWallTime("2026-11-07 15:04:20");
        DateTimeUpdate();
        std::vector<std::string> all = standing();
        for (const int i : LiveJingles())  // what a screen reader says
            if (!rec(i).Path.empty()) all.push_back("says" + std::to_string(i) + " " + DescribeButton(i));
        text_ += "== " + title + "\n" + paragraph(news(all), "; ");
    }

    void click(int index) { press(index), release(index); }

    std::string text_;

  private:
    std::vector<std::string> before_;
    std::map<const Control*, std::string> places_;
    std::map<std::string, const Control*> controls_;
};

TEST_F(ScreenTest, EverythingStandsWhereItWasApproved) {
    const struct {
        int width, height, rows, columns;
        const char* meters;
        int joined, hot, hotRows, hotHeight, bar, thickness, number, fontSize;
    } windows[] = {{1280, 800, 6, 5, "r", 0, 2, 1, 2, 1, 1, 0, 12},
                   {512, 236, 6, 5, "n", 1, 1, 1, 6, 0, 0, 1, 20},
                   {790, 590, 8, 12, "l", 1, 2, 2, 2, 2, 2, 1, 2},
                   {1920, 1080, 5, 8, "t", 0, 1, 2, 5, 1, 0, 2, 12}};
    MainWindow& w = frmMain();
    Control* const comeAndGo[] = {&w.palettes.txtSave, &w.announcer.ckTmAnnAM, &w.display.lblQuiet};
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
        midiSettings.MIDIAutoHide = more ? 0 : 1;
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
    std::filesystem::copy_file(sourceDir() + "/data/Time_Announce.wav", path("Time_Announce.wav"));
    write("urls.txt", "http://one.example/\r\nhttp://two.example/\r\n");
    liveSettings.VolLive = 60;
    ListPlayStreams();
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

}  // namespace zv::test
