// The menu of a jingle's button, and controls that are tied to settings.

#include "startup/settings/devices_settings.h"
#include "startup/settings/duck_settings.h"
#include "tests/support/approved.h"
#include "tests/ui/approved.h"
#include "ui/edit/jingle_menu_table.h"
#include "ui/settings/bound_controls.h"
#include "ui/windows/splash.h"

namespace zv::test {
namespace {

/// The menu of a button for each state, with each other fact alone.
TEST(JingleMenu, OffersWhatWasApproved) {
    const std::pair<const char*, std::function<void(MenuFacts&)>> facts[] = {
        {"", [](MenuFacts&) {}},
        {"carrying", [](MenuFacts& f) { f.carrying = true; }},
        {"no folder", [](MenuFacts& f) { f.sampleFolder = false; }},
        {"sequence", [](MenuFacts& f) { f.seq = true; }},
        {"loop", [](MenuFacts& f) { f.loop = true; }},
        {"play/stop", [](MenuFacts& f) { f.playMode = PlayMode::playStop; }},
        {"effects", [](MenuFacts& f) { f.effects = true; }},
        {"locked", [](MenuFacts& f) { f.locked = f.carrying = true; }},
        {"playlist", [](MenuFacts& f) { f.kind = SlotKind::playlist, f.carrying = true; }},
        {"playlists on", [](MenuFacts& f) { f.playlistsEnabled = true; }},
        {"on, sequence", [](MenuFacts& f) { f.playlistsEnabled = f.seq = true; }},
        {"on, playlist", [](MenuFacts& f) { f.playlistsEnabled = true, f.kind = SlotKind::playlist; }},
        {"on, nothing", [](MenuFacts& f) { f.playlistsEnabled = true, f.kind = SlotKind::nothing; }},
        {"surface", [](MenuFacts& f) { f.midiOffered = f.midiAssigned = true; }},
        {"boxes", [](MenuFacts& f) { f.boxes = f.midiOffered = f.playlistsEnabled = f.locked = true; }},
        {"boxes, a playlist ticked", [](MenuFacts& f) { f.boxes = f.playlistTicked = true; }}};
    const std::pair<const char*, MenuFacts> states[] = {
        {"empty", {.state = ButtonState::empty}},
        {"lost", {.state = ButtonState::missing}},
        {"unplayable", {.state = ButtonState::missing, .unplayable = true}},
        {"filled", {.state = ButtonState::filled, .kind = SlotKind::stream}},
        {"playing", {.state = ButtonState::playing, .kind = SlotKind::stream}}};
    std::string text;
    const auto add = [&](const std::string& what, const std::vector<MenuEntry>& menu) {
        text += what + ":";
        for (const MenuEntry& entry : menu)
            text += entry.name == "-" ? " -"
                                      : " " + entry.name.substr(3) +
                                            (entry.key == "m" + entry.name ? "" : "'" + entry.key) +
                                            (entry.enabled ? "" : "!") + (entry.ticked ? "*" : "");
    };
    for (const auto& [state, base] : states) {
        std::string plain;
        for (const auto& [what, set] : facts) {
            MenuFacts all = base;
            all.sampleFolder = true;
            set(all);
            const std::string before = std::exchange(text, {});
            add("", JingleMenuEntries(all));
            const std::string menu = std::exchange(text, before);
            if (*what == 0) plain = menu;
            if (*what == 0 || menu != plain) text += (*what == 0 ? state : std::string(" | ") + what) + menu;
        }
        text += "\n";
    }
    for (const bool playlist : {false, true})
        add(playlist ? " | a playlist" : "several", SelectionMenuEntries(playlist));
    text += "\n";
    expectApproved("ui/menus.txt", text);
}

/// A control of each kind tied to a setting: shown, taken, written where that is at once, brought back.
TEST_F(ApprovedTest, BoundControlsFollowTheirSettings) {
    Control window("frmBound", ControlKind::window);
    Control box("box", ControlKind::checkBox, &window), slider("slider", ControlKind::slider, &window),
        list("list", ControlKind::comboBox, &window), rows("rows", ControlKind::listBox, &window),
        field("field", ControlKind::textBox, &window), same("same", ControlKind::label, &window),
        colour("colour", ControlKind::colourField, &window), zero("option", ControlKind::option, &window, 0),
        one("option", ControlKind::option, &window, 1), atOnce("atOnce", ControlKind::number, &window),
        said("said", ControlKind::label, &window);
    list.items = std::vector<std::string>{"ID", "Name"};
    rows.items = std::vector<std::string>{"level", "time", "off"};
    int told = 0;
    BoundControls bound;
    bound.bind(box, "VolInLink");
    bound.bind(slider, "FadeOutSpeed",
               {.step = 10, .shown = &said, .unit = " ms", .changed = [&] { ++told; }});
    bound.bind(list, "SavDevBy");
    bound.bind(rows, "AutoDuckMode");
    bound.bind(zero, "AutoDuckMode"), bound.bind(one, "AutoDuckMode");
    bound.bind(field, "DeviceName"), bound.bind(same, "DeviceName");
    bound.bind(colour, "DispBackCol");
    bound.bind(atOnce, "LoudnessTarget");
    bound.greyUnless(slider, [&] { return box.value == 1; });
    EXPECT_THROW(bound.bind(box, "NoSuchSetting"), std::logic_error);
    const auto shown = [&] {
        return std::to_string(box.value) + " " + std::to_string(slider.value) +
               (slider.enabled ? " " : " off ") + said.caption() + " " + std::to_string(list.listIndex) +
               " " + std::to_string(rows.listIndex) + " " + std::to_string(zero.value) +
               std::to_string(one.value) + " '" + field.caption() + "' '" + same.caption() + "' " +
               std::to_string(colour.backColor) + " told " + std::to_string(told);
    };
    const auto set = [&](Control& control, auto& property, auto value) {
        property = value;
        control.onChange();
    };
    bound.load();
    const std::string before = shown();
    set(box, box.value, 0), set(slider, slider.value, 7), set(list, list.listIndex, 1),
        set(one, one.value, 1);
    set(field, field.caption, std::string("Card ")), set(colour, colour.backColor, 0x123456);
    EXPECT_EQ(shown(), "0 7 off 70 ms 1 1 01 'Card ' 'Card ' 1193046 told 1");
    set(atOnce, atOnce.value, -20);
    set(rows, rows.listIndex, 2);
    EXPECT_EQ(shown(), "0 7 off 70 ms 1 2 00 'Card ' 'Card ' 1193046 told 1");
    EXPECT_EQ(deviceSettings.DeviceName + " " + std::to_string(duckSettings.FadeOutSpeed), "Card  70");
    EXPECT_EQ(SettingsStore.GetValue("LoudnessTarget") + SettingsStore.GetValue("FadeOutSpeed"), "-20");
    bound.restore();
    EXPECT_EQ(shown(), before.substr(0, before.rfind(' ')) + " 2");
}

/// Where the parts of the first window stand, in twips.
TEST(Splash, StandsAsItWasApproved) {
    std::string text;
    const Splash splash;
    for (const Control* c : splash.window.children())
        text += c->name + " " + std::to_string(c->left) + "," + std::to_string(c->top) + " " +
                std::to_string(c->width) + "x" + std::to_string(c->height) + " " +
                std::to_string(c->backColor) + " " + std::to_string(c->foreColor) + " " +
                std::to_string(static_cast<int>(c->fontSize())) + "; ";
    EXPECT_EQ(
        text + splash.window.caption() + " " + std::to_string(splash.window.height),
        "lblTitle 300,300 4215x720 -1 16777215 22; lblStep 300,1020 4215x360 -1 16777088 0; "
        "picLoadBack 300,1680 4215x90 4209722 -1 0; picLoad 300,1680 0x90 16777088 -1 0; Zentrova 2070");
}

}  // namespace
}  // namespace zv::test
