// What a press means, and what toggles, options and modifier keys do.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "audio/play.h"
#include "model/colours.h"
#include "model/jingle.h"
#include "model/state.h"
#include "startup/language.h"
#include "startup/settings.h"
#include "tests/ui/window_test.h"
#include "ui/colours_ui.h"
#include "ui/commands.h"
#include "ui/edit_commands.h"
#include "ui/global_keys.h"
#include "ui/keyboard.h"
#include "ui/layout.h"

namespace zv::test {

namespace {

/// State of a slot, options and keys before a press; written as words, so that a case is one line.
struct Case {
    const char* slot;  ///< "empty", "file", "seq", "missing", "locked"
    const char*
        armed;  ///< what is armed: "", "assign", "loop", "seq", "ar", "tc", "ps", "ns", "co", "fx", "ta"
    const char* held;  ///< modifier keys: "", "c", "s", "a", "cs", "ca", "sa", "csa"
    bool touch;        ///< global touch mode
    bool reloc;        ///< setting OpenReloc
    bool moving;       ///< a source was chosen
    PressMeaning meaning;
};

}  // namespace

class PressTest : public WindowTest {
  protected:
    static constexpr int kSlot = 4;

    void prepare(const Case& c) {
        JingleRecord& j = rec(kSlot);
        j = {};
        JingleButton& b = *Button(kSlot);
        const std::string slot = c.slot;
        j.Path = slot == "empty" ? "" : "a.wav";
        j.Seq = slot == "seq" ? 1 : 0;
        j.MissingFile = slot == "missing";
        b.picPlaylist.visible = slot == "locked";
        b.lblPlaylist.caption = slot == "locked" ? "K" : "";
        MainWindow& w = frmMain();
        OptionsTab& o = w.options;
        for (Control* key : {&w.palettes.ckAssign, &o.ckAutoRepI, &o.ckTouchI, &o.ckPlayStopI, &o.ckNoStopI,
                             &o.ckColorI, &o.ckFXI, &w.announcer.b_tmAnJin}) {
            Disarm(*key);
        }
        const std::string armed = c.armed;
        const auto arm = [&](const char* word, Control& key) {
            if (armed == word) {
                Arm(key, 0x123456);
            }
        };
        arm("assign", w.palettes.ckAssign);
        arm("ar", o.ckAutoRepI);
        arm("tc", o.ckTouchI);
        arm("ps", o.ckPlayStopI);
        arm("ns", o.ckNoStopI);
        arm("co", o.ckColorI);
        arm("fx", o.ckFXI);
        arm("ta", w.announcer.b_tmAnJin);
        b.b_Jingle.backColor = armed == "fx" ? Shaded.fx : BtnFaceColor;
        LoopToggleStep = armed == "loop" ? 1 : armed == "seq" ? 2 : 0;
        const std::string held = c.held;
        CtrlDown = held.find('c') != std::string::npos;
        ShiftDown = held.find('s') != std::string::npos;
        AltDown = held.find('a') != std::string::npos;
        ToggleTouch = c.touch ? 1 : 0;
        settings.OpenReloc = c.reloc ? 1 : 0;
        MoveSrcJ = c.moving ? 1 : -1;
    }

    void TearDown() override {
        prepare({"empty", "", "", false, false, false, PressMeaning::nothing});
        MoveSrcJ = -1;
    }

    void hold(int modifiers) {
        desktop().modifiers = modifiers;
        pass(100);
    }
};

TEST_F(PressTest, decisionOrder) {
    using enum PressMeaning;
    const Case cases[] = {
        // Armed options come first, whatever is held and set.
        {"empty", "assign", "", true, true, false, assign},
        {"file", "assign", "c", false, true, false, assign},
        {"file", "ta", "", true, true, false, announcerJingle},
        {"empty", "ta", "", false, true, false, nothing},
        {"file", "loop", "", true, true, false, loop},
        {"seq", "loop", "s", false, true, false, loop},
        {"empty", "loop", "", false, true, false, nothing},
        {"file", "seq", "", false, true, false, sequence},
        {"file", "ar", "", true, true, false, autoRepeat},
        {"seq", "ar", "", true, true, false, nothing},
        {"empty", "ar", "c", false, true, false, cut},
        {"file", "tc", "", false, true, false, touch},
        {"seq", "tc", "", false, true, false, nothing},
        {"file", "ps", "", false, true, false, playStop},
        {"seq", "ps", "", false, true, false, nothing},
        {"file", "ns", "", false, true, false, noStop},
        {"seq", "ns", "", false, true, false, nothing},
        {"file", "co", "", false, true, false, colour},
        {"file", "fx", "", false, true, false, effects},
        // Touch mode plays what is there and looks for nothing.
        {"file", "", "", true, true, false, play},
        {"missing", "", "", true, true, false, nothing},
        {"empty", "", "", true, true, false, nothing},
        {"missing", "", "", false, true, false, relocate},
        {"missing", "", "", false, false, false, nothing},
        {"missing", "", "c", true, true, false, cut},
        // Modifier keys.
        {"file", "", "c", false, true, false, cut},
        {"file", "", "c", true, true, false, cut},
        {"file", "", "c", false, true, true, paste},
        {"empty", "", "c", false, true, true, paste},
        {"locked", "", "c", false, true, false, nothing},
        {"locked", "", "c", false, true, true, nothing},
        {"file", "", "cs", false, true, false, copy},
        {"locked", "", "cs", false, true, false, copy},
        {"locked", "", "cs", false, true, true, nothing},
        {"file", "", "cs", false, true, true, paste},
        {"file", "", "s", false, true, false, rename},
        {"file", "", "a", false, true, false, remove},
        {"file", "", "ca", false, true, false, removeWithFile},
        {"file", "", "sa", false, true, false, nothing},
        {"file", "", "csa", false, true, false, nothing},
        // And what is left.
        {"file", "", "", false, true, false, play},
        {"locked", "", "", false, true, false, play},
        {"empty", "", "", false, true, false, nothing},
    };
    for (const Case& c : cases) {
        prepare(c);
        EXPECT_EQ(static_cast<int>(DecidePress(kSlot)), static_cast<int>(c.meaning))
            << c.slot << " armed '" << c.armed << "' held '" << c.held << "' touch " << c.touch << " moving "
            << c.moving;
    }
    EXPECT_EQ(static_cast<int>(DecidePress(-1)), static_cast<int>(nothing));
    EXPECT_EQ(static_cast<int>(DecidePress(120)), static_cast<int>(nothing));
}

TEST_F(PressTest, mouseButtonsAndLostFiles) {
    load(kSlot, 500);
    button(kSlot).onMouseDown({MouseButton::right});
    button(kSlot).onMouseDown({MouseButton::middle});
    EXPECT_EQ(rec(kSlot).State, PlayState::idle);
    press(kSlot);
    EXPECT_EQ(rec(kSlot).State, PlayState::playing);
    EXPECT_EQ(rec(kSlot).Pressed, 1);
    release(kSlot);
    EXPECT_EQ(rec(kSlot).Pressed, 0);
    EXPECT_EQ(LastCtrl, "b_Jingle");
    EXPECT_EQ(rec(kSlot).State, PlayState::playing);
    evStop();

    // A lost file acts on release: the search asks for a folder.
    rec(kSlot).MissingFile = true;
    desktop().paths = {(folder / "Audio_Sample").string()};
    press(kSlot);
    EXPECT_EQ(desktop().paths.size(), 1U);
    release(kSlot);
    EXPECT_TRUE(desktop().paths.empty());
    EXPECT_FALSE(rec(kSlot).MissingFile);
    EXPECT_EQ(rec(kSlot).Path, (folder / "Audio_Sample" / "sound_4.wav").string());
}

TEST_F(PressTest, touchStopsOnReleaseByModeAndToggle) {
    const struct {
        int toggle;
        PlayMode mode;
        const char* keys;
        bool stops;
    } cases[] = {{0, PlayMode::global, "", false},    {1, PlayMode::global, "", true},
                 {1, PlayMode::touch, "", true},      {0, PlayMode::touch, "", true},
                 {1, PlayMode::noStop, "", false},    {1, PlayMode::playStop, "", false},
                 {1, PlayMode::autoRepeat, "", false}};
    for (const auto& c : cases) {
        load(kSlot, 2000, c.keys);
        rec(kSlot).PlayMod = c.mode;
        ToggleTouch = static_cast<std::uint8_t>(c.toggle);
        press(kSlot);
        pass(100);
        release(kSlot);
        pass(100);
        EXPECT_EQ(BASS_ChannelIsActive(rec(kSlot).hPlay), c.stops ? BASS_ACTIVE_STOPPED : BASS_ACTIVE_PLAYING)
            << c.toggle << " " << static_cast<int>(c.mode);
        evStop();
        pass(60);
    }
}

TEST_F(PressTest, severalFingersAreIndependent) {
    ToggleTouch = 1;
    for (const int i : {1, 2, 3}) {
        load(i, 3000);
        press(i);
    }
    pass(100);
    release(2);
    pass(100);
    EXPECT_EQ(BASS_ChannelIsActive(rec(1).hPlay), BASS_ACTIVE_PLAYING);
    EXPECT_EQ(BASS_ChannelIsActive(rec(2).hPlay), BASS_ACTIVE_STOPPED);
    EXPECT_EQ(BASS_ChannelIsActive(rec(3).hPlay), BASS_ACTIVE_PLAYING);
    EXPECT_EQ(rec(1).Pressed + rec(2).Pressed + rec(3).Pressed, 2);
}

TEST_F(PressTest, anOptionIsArmedOnceAndSpentByOnePress) {
    load(1, 300);
    load(2, 300, "Seq_2=1\r\nLoopOut_2=1000\r\n");
    const struct {
        void (*arm)();
        Control& key;
        Colour shaded;
        const char* code;
        PlayMode mode;
    } cases[] = {{ckAutoRepI_MouseDown, frmMain().options.ckAutoRepI, Shaded.ar, "ar", PlayMode::autoRepeat},
                 {ckTouchI_MouseDown, frmMain().options.ckTouchI, Shaded.tc, "tc", PlayMode::touch},
                 {ckPlayStopI_MouseDown, frmMain().options.ckPlayStopI, Shaded.ps, "ps", PlayMode::playStop},
                 {ckNoStopI_MouseDown, frmMain().options.ckNoStopI, Shaded.ns, "ns", PlayMode::noStop}};
    for (const auto& c : cases) {
        c.arm();
        EXPECT_TRUE(SelectorsOn);
        EXPECT_EQ(OptionCode, c.code);
        EXPECT_EQ(button(1).backColor, c.shaded);
        EXPECT_EQ(button(2).backColor, BtnFaceColor);  // a sequence has no play mode
        EXPECT_EQ(button(5).backColor, BtnFaceColor);  // nor has an empty button
        pass(200);                                     // the tick leaves the highlight alone
        EXPECT_EQ(button(1).backColor, c.shaded);
        press(2);
        EXPECT_EQ(rec(2).PlayMod, PlayMode::global);
        EXPECT_TRUE(Armed(c.key));
        press(1);
        EXPECT_EQ(rec(1).PlayMod, c.mode);  // replaces the one before
        EXPECT_FALSE(Armed(c.key));
        EXPECT_FALSE(SelectorsOn);
        EXPECT_EQ(OptionCode, "");
        EXPECT_EQ(button(1).backColor, BtnFaceColor);
        EXPECT_TRUE(Button(1)->pm_Jingle.visible);
        EXPECT_EQ(rec(1).State, PlayState::idle);
        EXPECT_TRUE(PalToSave);
        release(1);
    }
    ckNoStopI_MouseDown();
    press(1);
    EXPECT_EQ(rec(1).PlayMod, PlayMode::global);  // the same option again takes it away
    EXPECT_FALSE(Button(1)->pm_Jingle.visible);
    ckNoStopI_MouseDown();
    ckTouchI_MouseDown();  // arming one disarms the other
    EXPECT_FALSE(Armed(frmMain().options.ckNoStopI));
    EXPECT_TRUE(Armed(frmMain().options.ckTouchI));
    ckTouchI_MouseDown();
    EXPECT_FALSE(Armed(frmMain().options.ckTouchI));
    EXPECT_FALSE(SelectorsOn);
}

TEST_F(PressTest, theLoopToggleHasThreeSteps) {
    load(1, 300);
    const Control& key = frmMain().options.ckLoopI;
    ckLoopITog();
    EXPECT_EQ(LoopToggleStep, 1);
    EXPECT_EQ(key.caption(), Ln("mmnuLoop"));
    EXPECT_EQ(button(5).backColor, Shaded.lp);  // empty ones too
    press(1);
    EXPECT_EQ(rec(1).Loop, 1);
    EXPECT_EQ(LoopToggleStep, 0);
    EXPECT_TRUE(Button(1)->lp_Jingle.visible);
    ckLoopITog();
    ckLoopITog();
    EXPECT_EQ(LoopToggleStep, 2);
    EXPECT_EQ(OptionCode, "sq");
    rec(1).PlayMod = PlayMode::touch;
    press(1);
    EXPECT_EQ(rec(1).Loop, 0);
    EXPECT_EQ(rec(1).Seq, 1);
    EXPECT_EQ(rec(1).PlayMod, PlayMode::global);
    EXPECT_FALSE(Button(1)->lp_Jingle.visible);
    EXPECT_TRUE(Button(1)->sq_Jingle.visible);
    for (int i = 0; i < 3; ++i) {
        ckLoopITog();
    }
    EXPECT_EQ(LoopToggleStep, 0);
    EXPECT_FALSE(SelectorsOn);
    EXPECT_EQ(key.caption(), Ln("mckLoopI"));
}

TEST_F(PressTest, aTabChangeDisarmsEverything) {
    load(1, 300);
    CkAssignTog();
    EXPECT_EQ(OptionCode, "ass");
    EXPECT_EQ(button(1).backColor, Shaded.ass);
    ckTab_MouseDown(3);
    EXPECT_FALSE(Armed(frmMain().palettes.ckAssign));
    EXPECT_FALSE(SelectorsOn);
    EXPECT_EQ(button(1).backColor, BtnFaceColor);
    EXPECT_EQ(ActiveTab, 3);
}

TEST_F(PressTest, globalTogglesExcludeEachOtherAndAreKept) {
    CkTouchTog();
    EXPECT_EQ(ToggleTouch, 1);
    EXPECT_TRUE(Armed(frmMain().keys.ckTouch));
    CkAutoRepTog();
    EXPECT_EQ(ToggleTouch, 0);
    EXPECT_EQ(ToggleAutoRep, 1);
    EXPECT_FALSE(Armed(frmMain().keys.ckTouch));
    EXPECT_NE(read("zv.ini").find("Autorepeat=1"), std::string::npos);
    EXPECT_NE(read("zv.ini").find("Touch=0"), std::string::npos);
    for (const int mode : {1, 2, 0}) {
        CkAutoMixTog();
        EXPECT_EQ(settings.AutoMix, mode);
        EXPECT_EQ(Armed(frmMain().keys.ckAutoMix), mode != 0);
    }
    MIDILearnActive = true;
    CkAutoMixTog();
    EXPECT_EQ(settings.AutoMix, 0);
    MIDILearnActive = false;
}

TEST_F(PressTest, messagesOfTheModifierKeys) {
    load(1, 300);
    const DisplayControls& d = frmMain().display;
    const struct {
        int held;
        const char* key;  ///< empty: date and time
    } cases[] = {{kCtrlMask, "mlblSelJtomove"},
                 {kCtrlMask | kShiftMask, "mlblSelJtocopy"},
                 {kShiftMask, "mlblSelJtorename"},
                 {kAltMask, "mlblSelJtodelete"},
                 {kCtrlMask | kAltMask, "mlblSelJFtodelete"},
                 {0, ""},
                 {kShiftMask | kAltMask, ""},
                 {kCtrlMask | kShiftMask | kAltMask, ""}};
    for (const auto& c : cases) {
        hold(c.held);
        const bool message = c.key[0] != '\0';
        EXPECT_EQ(d.lblDispMessage.visible, message) << c.held;
        EXPECT_EQ(d.lblDate.visible, !message);
        EXPECT_EQ(d.lblTime.visible, !message);
        if (message) {
            EXPECT_EQ(d.lblDispMessage.caption(), Ln(c.key));
        }
    }
    hold(kCtrlMask);
    EXPECT_TRUE(Button(1)->ckJingSel.visible);
    EXPECT_FALSE(Button(2)->ckJingSel.visible);
    press(1);  // the source of a move
    EXPECT_EQ(MoveSrcJ, 1);
    EXPECT_EQ(desktop().clipboard, "sound 1");
    hold(kCtrlMask);
    EXPECT_EQ(d.lblDispMessage.caption(), Ln("mlblSelBtarget"));
    hold(0);  // letting go abandons it
    EXPECT_EQ(MoveSrcJ, -1);
    EXPECT_FALSE(Button(1)->ckJingSel.visible);
}

TEST_F(PressTest, keysOfTheWindow) {
    const auto key = [](int code, int shift = 0) {
        KeyEvent e{static_cast<Key>(code), shift};
        Form_KeyDown(e);
        return e.consumed;
    };
    EXPECT_FALSE(key(static_cast<int>(Key::space)));  // nothing was played yet
    load(2, 1000);
    press(2);
    release(2);
    EXPECT_EQ(LastPlayedJ, 2);
    EXPECT_TRUE(key(static_cast<int>(Key::space)));
    EXPECT_EQ(rec(2).State, PlayState::stopping);
    pass(100);
    EXPECT_TRUE(key(static_cast<int>(Key::escape)));
    EXPECT_TRUE(key('T'));
    EXPECT_EQ(ToggleTouch, 1);
    EXPECT_TRUE(key('R'));
    EXPECT_EQ(ToggleAutoRep, 1);
    EXPECT_FALSE(key(static_cast<int>(Key::f6)));
    EXPECT_EQ(ActiveTab, 1);
    EXPECT_TRUE(key('L'));
    EXPECT_EQ(ActiveTab, 3);
    EXPECT_EQ(LoopToggleStep, 1);
    key(static_cast<int>(Key::f9), kAltMask);
    EXPECT_EQ(settings.JoinedJButtons, 1);
    EXPECT_EQ(JGap, 0);
    EXPECT_EQ(JOuterGap, 60);
    for (const int position : {0, 1, 2}) {
        key(static_cast<int>(Key::f10));
        EXPECT_EQ(settings.HotJinglesPos, position);
    }
    // While a text is typed, letters belong to it.
    desktop().focus = &frmMain().palettes.txtSave;
    EXPECT_FALSE(key('T'));
    EXPECT_EQ(ToggleTouch, 0);
    settings.InhibSpBar = 1;
    desktop().focus = nullptr;
    EXPECT_TRUE(key(static_cast<int>(Key::space)));
    EXPECT_EQ(rec(2).State, PlayState::idle);
}

}  // namespace zv::test
