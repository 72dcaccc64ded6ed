// The jingle editor: what its controls do to the record and to the channel that plays.

#include "startup/settings/editor_settings.h"
#include "tests/support/approved.h"
#include "tests/ui/approved.h"
#include "ui/edit/jingle_editor.h"
#include "ui/edit/positions_page.h"
#include "ui/windows/jingle_window.h"

namespace zv::test {

namespace {

constexpr int kEdited = 3;
constexpr double kSecond = kBytesPerMs * 1000;

void setTime(const TimeFields& t, int seconds, int hundredths) {
    t.min->value = 0;
    t.sec->value = seconds;
    t.cs->value = hundredths;
    t.cs->onChange();
}

void set(Control& control, int value) {
    control.value = value;
    control.onChange();
}

}  // namespace

class EditorTest : public WindowTest {
  protected:
    void open(const std::string& keys = {}) {
        load(kEdited, 8000, keys);
        clFXSet(kEdited);
        ASSERT_TRUE(FxOpen);
        PalToSave = false;
    }
    JingleWindow& w = frmFX();
    JingleRecord& j = rec(kEdited);
};

TEST_F(EditorTest, whatANumberPushesWhileItIsTypedComesBack) {
    open("Seq=1 LoopIn=2000 LoopOut=4000");
    const auto type = [&](const TimeFields& t, std::initializer_list<int> values) {
        desktop().focus = t.cs;
        t.cs->onFocus();
        for (const int hundredths : values) setTime(t, hundredths / 100, hundredths % 100);
        desktop().focus = nullptr;
    };
    type(w.TxtLO, {100, 550});
    EXPECT_NEAR(j.LoopIn, 2 * kSecond, kBytesPerFrame);
    EXPECT_NEAR(j.LoopOut, 5.5 * kSecond, kBytesPerFrame);
    type(w.TxtLI, {700, 300});
    EXPECT_NEAR(j.LoopOut, 5.5 * kSecond, kBytesPerFrame);
    type(w.TxtLI, {700});
    EXPECT_EQ(j.LoopOut, j.LoopIn + 5280);
}

/// The jingle is a second of each tone from a to e; positions in ms.
TEST_F(EditorTest, whatIsListenedToIsHeard) {
    const struct {
        const char *name, *keys, *acts, *heard;
    } rows[] = {
        {"from the start and stopped", "CueStart=500", "0 play 1000 play", "a0-500 b500-1010"},
        {"to its stop", "CueStart=500 StopPos=1500", "0 play", "a0-500 b500-1000"},
        {"its stop fades", "CueStart=500 StopPos=1500 FadeOut=500", "0 play", "a0-500 b500-1000~1490"},
        {"from the start again", "CueStart=500", "0 play 1200 from",
         "a0-500 b500-1210 a1220-1720 b1720-2720 c2720-"},
        {"the last half second", "StopPos=3500", "0 stop 0 from", "d0-500"},
        {"without a stop the file's", "", "0 stop 0 from", "e0-500"},
        {"the loop goes round", "Seq=1 LoopIn=1000 LoopOut=2500", "0 loop", "b0-1000 c1000-1500 b1500-"},
        {"its turn", "Seq=1 LoopIn=1000 LoopOut=2500", "0 turn", "b0-500 c500-1000 b1000-2000 c2000-"},
        {"a start that moves", "", "0 play 500 to3", "a0-500 d500-1500 e1500-2500"},
        {"a playhead that moves", "", "0 play 500 at4", "a0-500 e500-1500"},
        {"a loop that moves under it", "Seq=1 LoopIn=1000 LoopOut=2500", "0 loop 500 in0.5",
         "b0-1000 c1000-1500 a1500-2000 b2000-"},
        {"a stop ahead of it", "", "0 play 500 stop 600 to2 2200 play",
         "a0-1000 b1000-2000 a2200-3200 b3200-4200"},
        {"closing ends it", "", "0 play 700 ok", "a0-710"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        load(kEdited, tones("a1000 b1000 c1000 d1000 e1000"), row.keys);
        clFXSet(kEdited);
        w.TabFX.listIndex = 1;
        w.optStartEnd[0]->onChange();
        heard();
        perform(row.acts, [&](const std::string& act) {
            const auto seconds = [&](std::size_t from) { return std::atof(act.c_str() + from); };
            if (act == "play") w.ckPlay.onClick();
            if (act == "from") w.PlayFromStart.onClick();
            if (act == "loop") w.PlayFromLoopIn.onClick();
            if (act == "turn") w.TestLoopOut.onClick();
            if (act == "stop") w.optStartEnd[1]->onChange();
            if (act == "ok") w.btOK.onClick();
            if (act.starts_with("to")) setTime(w.TxtPos, static_cast<int>(seconds(2)), 0);
            if (act.starts_with("in")) setTime(w.TxtLI, 0, static_cast<int>(100 * seconds(2)));
            if (act.starts_with("at")) set(w.SlidePos, static_cast<int>(100 * seconds(2)));
        });
        pass(2500);
        EXPECT_EQ(whatIsHeard(heard()), row.heard);
        OKfx();
        pass(200);
        EXPECT_EQ(BASS_ChannelIsActive(j.hPlay), BASS_ACTIVE_STOPPED);
        EXPECT_EQ(j.State, PlayState::idle);
    }
}

TEST_F(ApprovedTest, PositionsAndPictureDoWhatWasApproved) {
    JingleWindow& fx = frmFX();
    clFXSet(kSlot), OKfx();  // its handlers are there from now on
    const auto at = [](const TimeFields& field, int seconds, int hundredths) {
        field.show({0, seconds, hundredths});
        field.cs->onChange();
    };
    const auto points = [&](const char* what, const std::function<void()>& set) {
        act(what, [&] {
            editorSettings.ActiveFXTab = 1, fx.ckLinkLILO.value = 0, fx.optStartEnd[0]->onChange();
            clFXSet(kSlot), fx.optStartEnd[0]->onChange(), pass(1000), watch->changes();
            set();
        });
    };
    points("a step beyond the hundredths carries", [&] { at(fx.TxtPos, 1, 100); });
    points("a step below the seconds", [&] { at(fx.TxtPos, -1, 20); });
    points("a start behind the end", [&] { at(fx.TxtPos, 59, 0); });
    points("loop in pushes loop out", [&] { at(fx.TxtLI, 5, 0); });
    points("loop in keeps the length",
           [&] { fx.ckLinkLILO.value = 1, fx.ckLinkLILO.onChange(), at(fx.TxtLI, 2, 0); });
    points("the slider's end is the length",
           [&] { fx.sldLO.value = fx.sldLO.maximum(), fx.sldLO.onChange(); });
    points("loop out leaves the end",
           [&] { fx.sldLO.value = fx.sldLO.maximum(), fx.sldLO.onChange(), at(fx.TxtLO, 5, 0); });
    points("its fade otherwise", [&] {
        for (const int on : {0, 1})
            fx.ckLogFadeOut.value = on, fx.ckLogFadeOut.onChange(), note("fade " + std::to_string(on));
    });
    points("a start copied", [&] { at(fx.TxtPos, 3, 0), fx.btCopyStartPos.onClick(); });
    const auto hit = [&](Key which, Control* focus = nullptr, int shift = 0) {
        desktop().focus = focus;
        key(fx.form.window, which, shift), pass(500);
    };
    const Key in = static_cast<Key>('I'), out = static_cast<Key>('O');
    points("keys that others take", [&] {
        hit(in), hit(Key::space, fx.TxtPos.sec), hit(Key::space, &fx.btOK);
        hit(Key::space, nullptr, kCtrlMask), hit(out, fx.TxtPos.sec);
    });
    points("the blank plays", [&] { hit(Key::space); });
    points("once more stops", [&] { hit(Key::space), hit(Key::space); });
    points("start where it is", [&] { hit(Key::space), hit(in, &fx.btOK); });
    points("stop where it is", [&] { hit(Key::space), hit(out); });
    points("a field takes letters",
           [&] { hit(Key::space), hit(in, fx.TxtPos.sec), hit(out, fx.TxtPos.sec); });

    text += "== the picture of the editor\n";
    const auto place = [](int x, int y, MouseButton button = MouseButton::left, int shift = 0) {
        return MouseEvent{button, shift, x * kTwipsPerPixel, y * kTwipsPerPixel};
    };
    const auto turned = [&](const char* what, std::initializer_list<std::function<void()>> steps) {
        points(what, [&] {
            for (const auto& step : steps) step(), note(what);
        });
    };
    Control& pic = fx.picWave;
    turned("a handle", {[&] { pic.onMouseMove(place(13, 40)); }, [&] { pic.onMouseMove(place(300, 40)); },
                        [&] { pic.onMouseDown(place(13, 40)); }, [&] { pic.onMouseMove(place(60, 40)); },
                        [&] { pic.onMouseMove(place(90, 40, MouseButton::left, kShiftMask)); },
                        [&] { pass(200), pic.onMouseUp(place(90, 40)); }});
    turned("the playhead", {[&] { pic.onMouseDown(place(200, 60)); }, [&] { pic.onMouseUp(place(201, 60)); },
                            [&] { fx.ckPlay.onClick(); },
                            [&] { pic.onMouseDown(place(400, 60)), pic.onMouseUp(place(400, 60)); }});
    turned("near and far", {[&] { pic.onWheel(3, 0); }, [&] { pic.onWheel(-1, kShiftMask); },
                            [&] { pic.onMouseDown(place(400, 60, MouseButton::right)); },
                            [&] { pic.onMouseMove(place(300, 60)); }, [&] { pic.onMouseUp(place(300, 60)); },
                            [&] { pic.onWheel(30, 0), pass(300); }, [&] { pic.onDoubleClick({}); }});
    const auto keys = [&](const char* what, std::initializer_list<std::pair<Key, int>> all) {
        points(what, [&] {
            desktop().focus = &pic;
            for (const auto& [one, shift] : all) key(pic, one, shift), note(what);
        });
    };
    keys("by keys", {{Key::right, 0},
                     {Key::left, kCtrlMask},
                     {Key::down, 0},
                     {Key::left, 0},
                     {Key::down, 0},
                     {Key::up, 0},
                     {Key::pageUp, 0},
                     {Key::right, kShiftMask},
                     {Key::pageDown, 0},
                     {Key::pageUp, 0},
                     {Key::home, 0},
                     {Key::f5, 0}});
    turned("near, at a crossing",
           {[&] { pic.onWheel(30, 0), pass(300), key(pic, Key::right, kShiftMask); },
            [&] { at(fx.TxtPos, 2, 0); }, [&] { pic.onWheel(-20, 0), pic.onWheel(15, 0), pass(300); }});
    for (const BoxAnswer answer : {BoxAnswer::yes, BoxAnswer::no})
        points("a preset replaced", [&, answer] {
            desktop().answers = {answer}, fx.txtFXpreset.caption = "bass", fx.btAddFXpreset.onClick();
        });
    points("effects as they come", [&] {
        fx.TabFX.listIndex = 0, fx.TabFX.onChange(), note("without its sequence"), fx.btReset.onClick();
    });
    points("another one's editor",
           [&] { fx.TabFX.listIndex = 1, fx.TabFX.onChange(), note("their page"), clFXSet(0); });
    points("a range that holds less", [&] {
        fx.btMaxVol.onClick(), note("the safe volume"), OKfx(), clFXSet(kSlot), note("opened again");
        fx.cmbRange.listIndex = 0, fx.cmbRange.onChange();
    });
    points("another file in its place", [&] {
        writeWav(path("new.wav"), sine(2 * 44'100, 440)),
            std::filesystem::rename(path("new.wav"), path("Audio_Sample/A1.wav"));
        pass(1500), note("it is shorter"), fx.btUndoAll.onClick(), note("all undone"), OKfx();
    });
    expectApproved("ui/editor.txt", lined());
}

}  // namespace zv::test
