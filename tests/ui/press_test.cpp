// What a press means, and what toggles, options and modifier keys do.

#include <map>
#include <ostream>

#include "audio/streams.h"
#include "audio/time_jingle.h"
#include "model/actions.h"
#include "startup/errors.h"
#include "startup/language.h"
#include "startup/settings/folders_settings.h"
#include "startup/settings/keys_settings.h"
#include "tests/ui/window_test.h"
#include "ui/edit/announcer_tab.h"
#include "ui/edit/carried.h"
#include "ui/edit/colour_picker.h"
#include "ui/press/global_keys.h"
#include "ui/press/keyboard.h"
#include "ui/screen/announcer_view.h"
#include "ui/screen/shaded.h"
#include "ui/windows/form_window.h"

namespace zv::test {

namespace {

constexpr int kSlot = 4, kOther = 5, kBed = 0;
constexpr int kRowMs = 900;

/// One row: what lies on the slot, what is done when (ms), which of its tones sounded when
/// (tests/support/ear.h), and what the presses left behind. The slot holds 100 ms of tone a, then b; another
/// one next to it tone c. Meanwhile a bed plays, tone h, and whatever a press means, it plays on.
struct Row {
    const char* name;
    const char* slot;  ///< "empty", "missing", "broken", "locked" (held by a playlist), or keys of a file
    const char* acts;
    const char* heard;
    const char* after;
};

constexpr const char* kSeq = "Seq=1 LoopIn=300 LoopOut=600";

// clang-format off
constexpr Row kRows[] = {
    // Armed options come first, whatever is held and set.
    {"assign", "", "0 ckAssign file 100 click 300 click", "c300-", "other unsaved"},
    {"assign leaves what sounds alone", "", "0 click 300 ckAssign file 400 click", "a0-100 b100-", "armed:ass mRefPlaying"},
    {"announcer takes no empty one", "empty", "0 announcer 100 click", "", "armed:ta"},
    {"loop", "", "0 ckLoopI 100 click 300 click", "a300-400 b400-", "loop unsaved"},
    {"sequence", "", "0 ckLoopI ckLoopI 100 click", "", "seq unsaved"},
    {"an empty one takes nothing away", "empty", "0 ckAutoMix click", "", ""},
    {"nor does a missing one", "missing", "0 ckAutoMix noreloc click", "", "missing errMissFile"},
    {"loop again takes it away", "Loop=1", "0 ckLoopI 100 click", "", "unsaved"},
    {"repeat", "", "0 ckAutoRepI 100 click 300 click 600 click", "a300-400 b400-610 a620-720 b720-", "repeat unsaved"},
    {"touch", "", "0 ckTouchI 100 click 300 down 600 up", "a300-400 b400-600", "touch unsaved"},
    {"play stop", "", "0 ckPlayStopI 100 click 300 click 600 click", "a300-400 b400-600", "playstop unsaved"},
    {"no stop", "", "0 ckNoStopI 100 click 300 click 600 click", "a300-400 b400-", "nostop unsaved"},
    {"a sequence has no mode to repeat", kSeq, "0 ckTouch ckAutoRepI 100 click", "", "seq armed:ar mRefSequence"},
    {"a missing file takes no mode", "missing", "0 ckTouchI 100 click", "", "missing unsaved"},
    {"an empty one leaves it armed", "empty", "0 ckAutoRepI ctrl 100 click", "", "armed:ar"},
    {"the same option again takes it away", "PlayMod=4", "0 ckNoStopI 100 click 300 click 600 click", "a300-400 b400-600", "unsaved"},
    {"and by a command of another tab", "", "0 ckNoStopI S 100 click", "a100-200 b200-", "armed:sp"},
    {"colour", "", "0 ckTouch ckColorI 100 click", "", "armed:co colours"},
    {"effects of a missing file", "missing", "0 ckFXI 100 click", "", "missing armed:fx dialog"},

    // Touch mode plays what is there and looks for nothing.
    {"touch mode", "", "0 ckTouch 100 down 400 up", "a100-200 b200-400", ""},
    {"missing: looked for as the button is let go", "missing", "0 down", "", "missing"},
    {"missing: not looked for", "missing", "0 noreloc 100 click", "", "missing errMissFile"},
    {"broken, by its key", "broken", "0 100 space", "", "why"},
    {"broken, by a surface's pad", "broken", "0 100 pad", "", "why"},

    // Modifier keys.
    {"move", "", "0 ctrl 100 click5 200 click 300 none 400 click", "c400-", "other gone5 unsaved"},
    {"move: nothing under what sounds", "", "0 click 200 ctrl 300 click5 400 click", "a0-100 b100-", "cut5 mRefPlaying"},
    {"move: onto an empty one", "empty", "0 ctrl 100 click5 200 click", "", "other gone5 unsaved"},
    {"move: not what a playlist holds", "locked", "0 ctrl 100 click", "", "mRefLocked"},
    {"move: nothing over what a playlist holds", "locked", "0 ctrl 100 click5 200 click", "", "cut5 mRefLocked"},
    {"move: shift makes it a new copy", "", "0 ctrl 100 click 200 cs 300 click5", "", "copy5"},
    {"rename", "", "0 shift 100 click", "", "renames"},
    {"copy", "", "0 cs 100 click5 200 click 300 none 400 click", "c400-", "other unsaved"},
    {"copy: nothing over what a playlist holds", "locked", "0 cs 100 click5 200 click", "", "copy5 mRefLocked"},
    {"delete", "", "0 alt yes 100 click", "", "gone asked unsaved"},
    {"delete: not what a playlist holds", "locked", "0 alt yes 100 click", "", "mRefLocked"},
    {"delete with the file", "", "0 ca yes 100 click", "", "gone nofile asked unsaved"},

    // And what is left: mouse buttons, fingers, keys.
    {"right and middle button", "", "0 right 100 middle", "", ""},
    {"touch mode: play stop", "PlayMod=3", "0 ckTouch down 300 up", "a0-100 b100-", ""},
    {"space on the focused button", "", "0 space 300 space", "a0-100 b100-300", ""},
    {"space with a modifier key", "", "0 modspace", "", ""},
    {"space held", "", "0 space 100 held 200 held 300 own 500 own", "a0-100 b100-", ""},
    {"space inhibited", "", "0 inhibit space", "", ""},
    {"space goes to what was played last", "empty", "0 down5 up5 300 space", "c0-300", ""},
    {"touch is held on the space bar", "PlayMod=2", "0 down 200 up 300 space 400 held 500 letgo", "a0-100 b100-200 a300-400 b400-500", ""},
    {"touch mode is held on the space bar", "", "0 ckTouch down 200 up 300 space 500 letgo", "a0-100 b100-200 a300-400 b400-500", ""},
};
// clang-format on

void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

}  // namespace

class PressTest : public WindowTest {
  protected:
    void TearDown() override {
        DropTimeJingle();
        EndChoosing();
        Button(kSlot)->picPlaylist.visible = false;
        CloseColorPicker();
        ckTab_MouseDown(0);
        CloseForms();
        MoveSrcJ = RenameJ = -1;
    }

    void fill(const std::string& slot) {
        load(kOther, tones("c2000"));
        if (slot == "empty") return;
        load(kSlot, tones("a100 b2400"),
             slot == "missing" || slot == "broken" || slot == "locked" ? "" : slot);
        if (slot == "missing" || slot == "broken") {
            write("Audio_Sample/sound_4.wav", "no sound");
            if (slot == "missing") std::filesystem::remove(path("Audio_Sample/sound_4.wav"));
            FreeJingle(kSlot);
            openStreams(kSlot);
        } else if (slot == "locked") {
            Button(kSlot)->picPlaylist.visible = true;
            Button(kSlot)->lblPlaylist.caption = "K";
        }
    }

    void key(Key which, bool repeat = false) {
        KeyEvent event{which, 0, repeat};
        Form_KeyDown(event);
        if (event.consumed) return;
        button(kSlot).onKeyDown(event);
        EXPECT_EQ(event.consumed, which == Key::space && !repeat && keySettings.InhibSpBar == 0);
    }

    /// A key as the button with the focus gets it.
    void keyOnButton(KeyEvent event) { button(kSlot).onKeyDown(event); }

    void act(const std::string& word) {
        const std::map<std::string, std::function<void()>> words{
            {"down", [&] { press(kSlot); }},
            {"up", [&] { release(kSlot); }},
            {"click", [&] { press(kSlot), release(kSlot); }},
            {"down5", [&] { press(kOther); }},
            {"up5", [&] { release(kOther); }},
            {"click5", [&] { press(kOther), release(kOther); }},
            {"right", [&] { button(kSlot).onMouseDown({MouseButton::right}); }},
            {"middle", [&] { button(kSlot).onMouseDown({MouseButton::middle}); }},
            {"space", [&] { key(Key::space); }},
            {"held", [&] { key(Key::space, true); }},
            {"letgo", [event = KeyEvent{Key::space}]() mutable { Form_KeyUp(event); }},
            {"modspace",
             [&] {
                 keyOnButton({Key::space, kCtrlMask});
             }},
            {"S", [&] { key(static_cast<Key>('S')); }},
            {"own",
             [&] {
                 keyOnButton({Key::space, 0, true});
             }},
            {"pad", [] { zv::perform(Action::play, kSlot, 127); }},
            {"announcer", b_tmAnJinTog},
            {"noreloc", [] { folderSettings.OpenReloc = 0; }},
            {"inhibit", [] { keySettings.InhibSpBar = 1; }},
            {"yes", [] { desktop().answers = {BoxAnswer::yes}; }},
            {"file", [&] { desktop().paths = {path("Audio_Sample/sound_5.wav").string()}; }},
        };
        static const std::map<std::string, int> keys{{"none", 0},
                                                     {"ctrl", kCtrlMask},
                                                     {"shift", kShiftMask},
                                                     {"alt", kAltMask},
                                                     {"cs", kCtrlMask | kShiftMask},
                                                     {"ca", kCtrlMask | kAltMask},
                                                     {"sa", kShiftMask | kAltMask},
                                                     {"csa", kCtrlMask | kShiftMask | kAltMask}};
        if (const auto found = words.find(word); found != words.end()) {
            found->second();
        } else if (const auto held = keys.find(word); held != keys.end()) {
            desktop().modifiers = held->second;
        } else {
            findControl(word)->onMouseDown({});
        }
    }

    std::string after() {
        const JingleRecord& j = rec(kSlot);
        std::string text;
        const auto tell = [&](bool is, const std::string& word) {
            text += is ? (text.empty() ? "" : " ") + word : "";
        };
        tell(j.Path.find("sound_5") != std::string::npos, "other");
        tell(j.Path.empty() && !before_.empty(), "gone");
        tell(rec(kOther).Path.empty(), "gone5");
        tell(!before_.empty() && !j.MissingFile && !std::filesystem::exists(path("Audio_Sample/sound_4.wav")),
             "nofile");
        tell(j.MissingFile, "missing");
        tell(j.Loop != 0, "loop");
        tell(j.Seq != 0, "seq");
        static const char* modes[] = {"", "repeat", "touch", "playstop", "nostop"};
        tell(j.PlayMod != mode_ && j.PlayMod != PlayMode::global, modes[static_cast<std::size_t>(j.PlayMod)]);
        tell(!OptionCode.empty(), "armed:" + OptionCode);
        EXPECT_EQ(SelectorsOn, !OptionCode.empty() && OptionCode != "sp");
        tell(MoveSrcJ >= 0, MoveMode + std::to_string(MoveSrcJ));
        tell(RenameJ >= 0, "renames");
        tell(ColorPickerOpen, "colours");
        tell(desktop().dialogs > 0 && j.MissingFile, "dialog");
        tell(!desktop().boxes.empty(), "asked");
        tell(PalToSave, "unsaved");
        const Control& message = frmMain().display.lblDispMessage;
        for (const char* why : {"mRefPlaying", "mRefSequence", "mRefLocked", "errMissFile"})
            tell(message.visible && message.caption().ends_with(Ln(why)), why);
        tell(j.Unplayable && message.visible && message.caption() == "sound 4: " + BassErrMessage(j.BassErr),
             "why");
        return text;
    }

    std::string before_;
    PlayMode mode_ = PlayMode::global;
};

class Meaning : public PressTest, public ::testing::WithParamInterface<Row> {};

TEST_P(Meaning, IsHeard) {
    const Row row = GetParam();
    fill(row.slot);
    load(kBed, tones("h2000"));
    before_ = rec(kSlot).Path;
    mode_ = rec(kSlot).PlayMod;
    press(kBed);
    release(kBed);
    LastPlayedJ = -1;
    heard();
    const auto began = monotonicMs();
    perform(row.acts, [&](const std::string& word) { act(word); });
    pass(static_cast<int>(began + kRowMs - monotonicMs()));
    std::string sound = whatIsHeard(heard());
    const auto bed = sound.find("h0-");
    ASSERT_NE(bed, std::string::npos) << sound;
    sound.erase(bed, 4);
    if (sound.ends_with(' ')) sound.pop_back();
    EXPECT_EQ(sound, row.heard);
    EXPECT_EQ(after(), row.after);
    EXPECT_EQ(reports, std::vector<std::string>());
}

std::string rowName(const ::testing::TestParamInfo<Row>& info) {
    std::string name;
    for (const char c : std::string(info.param.name)) {
        name += std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    }
    return name;
}
INSTANTIATE_TEST_SUITE_P(Rows, Meaning, ::testing::ValuesIn(kRows), rowName);

TEST_F(PressTest, coloursComeWhenTheButtonIsUpAndGoWithAPressElsewhere) {
    load(kSlot, 500);
    ckColorI_MouseDown();
    const auto open = [this](std::set<int> keys, Control* over) {
        desktop().keys = std::move(keys);
        desktop().mouseOver = over;
        pass(200);
        return ColorPickerOpen;
    };
    press(kSlot);
    EXPECT_FALSE(open({1}, nullptr));
    release(kSlot);
    EXPECT_TRUE(open({}, nullptr));
    EXPECT_EQ(button(kSlot).backColor, Shaded.co);
    EXPECT_TRUE(open({1}, findControl("frmColPick")));
    EXPECT_FALSE(open({1}, &frmMain().window));
    EXPECT_FALSE(SelectorsOn);
}

}  // namespace zv::test
