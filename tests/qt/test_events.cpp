// What the user does reaches the handlers: once, in order, and only where it was done.
#include <gtest/gtest.h>

#include <QAbstractButton>

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QWheelEvent>

#include "platform/qt/view/keys.h"
#include "platform/waiting.h"
#include "tests/qt/stage.h"

namespace zv::test {
namespace {

using namespace shell;

TEST(Mouse, PressesReachTheHandlersInOrder) {
    Stage s;
    Control& jingle = s.families[0]->button;
    for (Control* c : {&jingle, &s.key, &s.label, &s.window}) s.listen(*c);
    struct Case {
        const char* what;
        bool (*act)(Stage&);
        const char* told;
    };
    const Case cases[]{
        {"jingle", [](Stage& t) { return click(t.families[0]->button); },
         "b_Jingle(0):down b_Jingle(0):up b_Jingle(0):click"},
        {"jingle, right", [](Stage& t) { return click(t.families[0]->button, MouseButton::right); },
         "b_Jingle(0):downR b_Jingle(0):upR"},
        {"jingle, middle", [](Stage& t) { return click(t.families[0]->button, MouseButton::middle); },
         "b_Jingle(0):downM b_Jingle(0):upM"},
        {"key", [](Stage& t) { return click(t.key); }, "btKey:down btKey:up btKey:click"},
        {"a label does not pass its press to the window", [](Stage& t) { return click(t.label); },
         "lblText:down lblText:up lblText:click"},
        {"each press of a double click is a press",
         [](Stage& t) { return doubleClick(t.families[0]->button); },
         "b_Jingle(0):down b_Jingle(0):up b_Jingle(0):click b_Jingle(0):down b_Jingle(0):double "
         "b_Jingle(0):up "
         "b_Jingle(0):click"},
    };
    for (const Case& c : cases) {
        EXPECT_TRUE(c.act(s)) << c.what;
        EXPECT_EQ(s.told(), c.told) << c.what;
    }
}

TEST(Mouse, NothingReachesWhatIsHiddenDisabledOrCovered) {
    Stage s;
    Control cover("fraCover", ControlKind::frame, &s.window);
    place(cover, 0, 200, 800, 60);
    for (Control* c : {&s.key, &s.families[0]->button}) s.listen(*c);
    EXPECT_FALSE(click(s.key)) << "a frame made later lies over it";
    cover.visible = false;
    EXPECT_TRUE(click(s.key));
    s.told();
    s.key.enabled = false;
    EXPECT_FALSE(click(s.key));
    s.block.visible = false;
    EXPECT_FALSE(click(s.families[0]->button)) << "its frame is hidden";
    hideWindow(s.window);
    s.key.enabled = true;
    EXPECT_FALSE(click(s.key));
    EXPECT_EQ(s.told(), "");
}

TEST(Mouse, TheReleaseGoesToWhatWasPressed) {
    Stage s;
    Control& first = s.families[0]->button;
    s.listen(first);
    s.listen(s.families[1]->button);
    ASSERT_TRUE(mouseDown(first));
    EXPECT_TRUE(mouseUp(first, MouseButton::left, 0, {twips(208 + 50), twips(20)})) << "over the neighbour";
    EXPECT_EQ(s.told(), "b_Jingle(0):down b_Jingle(0):up") << "no click: it was let go elsewhere";
}

TEST(Mouse, TheSelectionBoxTakesItsOwnPress) {
    Stage s;
    Family& f = *s.families[2];
    s.listen(f.button);
    f.box.visible = true;
    f.box.onChange = [&] { s.label.caption = "ticked"; };
    EXPECT_TRUE(setTicked(f.box, true));
    EXPECT_EQ(f.box.value(), 1);
    EXPECT_EQ(s.label.caption(), "ticked");
    EXPECT_EQ(s.told(), "");
    EXPECT_TRUE(click(f.button, MouseButton::left, 0, {twips(150), twips(60)}));
    EXPECT_EQ(s.told(), "b_Jingle(2):down b_Jingle(2):up b_Jingle(2):click");
}

TEST(Mouse, WhatIsKeptFromARecordReachesNobody) {
    Stage s;
    for (Control* c : {&s.key, &s.list, &s.families[0]->button}) s.listen(*c);
    worksMeanwhile = [](const Control& record, const MouseEvent& press) {
        return press.button == MouseButton::left && record.kind == ControlKind::jingle;
    };
    const Waiting waiting(Waiting::For::answer, nullptr, {});
    click(s.key);
    click(s.list);
    click(s.families[0]->button, MouseButton::right);
    setFocus(s.key);
    keyDown(Key::space);
    EXPECT_EQ(s.told(), "");
    click(s.families[0]->button);
    EXPECT_EQ(s.told(), "b_Jingle(0):down b_Jingle(0):up b_Jingle(0):click");
    worksMeanwhile = nullptr;
}

TEST(Touch, FingersPressAndLeaveEachForItself) {
    Stage s;
    Control& a = s.families[0]->button;
    Control& b = s.families[4]->button;
    s.listen(a);
    s.listen(b);
    ASSERT_TRUE(touchDown(a, 0));
    ASSERT_TRUE(touchDown(b, 1));
    EXPECT_EQ(s.told(), "b_Jingle(0):down b_Jingle(4):down");
    EXPECT_TRUE(touchUp(a, 0));
    EXPECT_EQ(s.told(), "b_Jingle(0):up b_Jingle(0):click");
    EXPECT_TRUE(touchDown(a, 2)) << "a third finger while the second is down";
    EXPECT_TRUE(touchUp(b, 1));
    EXPECT_TRUE(touchUp(a, 2));
    EXPECT_EQ(s.told(), "b_Jingle(0):down b_Jingle(4):up b_Jingle(4):click b_Jingle(0):up b_Jingle(0):click");
}

TEST(Keys, TheWindowSeesThemOnceAndFirst) {
    Stage s;
    s.listen(s.window);
    s.listen(s.text);
    setFocus(s.text);
    ASSERT_EQ(focusedControl(), &s.text);
    keyDown(static_cast<Key>('A'));
    keyUp(static_cast<Key>('A'));
    EXPECT_EQ(s.told(), "frmStage:key65 txtName:key65 txtName:change frmStage:keyup65 txtName:keyup65");
    EXPECT_EQ(s.text.caption(), "a");

    s.window.onKeyDown = [](KeyEvent& e) { e.consumed = e.key == static_cast<Key>('B'); };
    keyDown(static_cast<Key>('B'));
    keyDown(static_cast<Key>('C'));
    EXPECT_EQ(s.text.caption(), "ac") << "a consumed key does not reach the field";
    EXPECT_EQ(s.told(), "txtName:key67 txtName:change");
}

TEST(Keys, CarryTheirNumberModifiersAndRepeat) {
    Stage s;
    KeyEvent seen;
    s.window.onKeyDown = [&](KeyEvent& e) { seen = e; };
    struct Case {
        Key key;
        int shift;
        bool repeat;
    };
    for (const Case c :
         {Case{Key::f9, kAltMask, false}, Case{Key::pageDown, 0, true}, Case{Key::escape, 0, false},
          Case{static_cast<Key>('C'), kCtrlMask | kShiftMask, false}, Case{Key::space, 0, true},
          Case{Key::del, 0, false}, Case{Key::f12, kShiftMask, false}}) {
        seen = {};
        EXPECT_TRUE(keyDown(c.key, c.shift, c.repeat));
        EXPECT_EQ(seen.key, c.key);
        EXPECT_EQ(seen.shift, c.shift);
        EXPECT_EQ(seen.repeat, c.repeat);
        EXPECT_TRUE(isKeyDown(c.key));
        keyUp(c.key);
        EXPECT_FALSE(isKeyDown(c.key));
    }
}

TEST(Keys, EveryControlCanBeReachedAndPressed) {
    Stage s;
    s.listen(s.key);
    s.listen(s.families[1]->button);
    setFocus(s.families[0]->button);
    keyDown(Key::right);
    EXPECT_EQ(focusedControl(), &s.families[1]->button);
    keyDown(Key::enter);
    EXPECT_EQ(s.told(), "b_Jingle(1):down") << "held as long as the key";
    keyUp(Key::enter);
    EXPECT_EQ(s.told(), "b_Jingle(1):up");
    QContextMenuEvent menu(QContextMenuEvent::Keyboard, QPoint(5, 5), QPoint(5, 5));
    QCoreApplication::sendEvent(&viewOf(s.families[1]->button)->widget, &menu);
    EXPECT_EQ(s.told(), "b_Jingle(1):downR b_Jingle(1):upR") << "the menu key";
    keyDown(Key::down);
    EXPECT_EQ(focusedControl(), &s.families[4]->button);
    std::vector<const Control*> reached;
    for (int i = 0; i < 16; ++i) {
        keyDown(Key::tab);
        reached.push_back(focusedControl());
    }
    for (const Control* c : {&s.key, &s.list, &s.text, &s.slide, &s.tick}) {
        EXPECT_NE(std::find(reached.begin(), reached.end(), c), reached.end()) << c->name;
    }
    setFocus(s.key);
    keyDown(Key::enter);
    keyDown(Key::space);
    EXPECT_EQ(s.told(), "btKey:key13 btKey:click btKey:key32 btKey:click");
}

TEST(Fields, TheUserChangesThemAndTheLogicHears) {
    Stage s;
    for (Control* c : {&s.list, &s.slide, &s.tick, &s.text})
        c->onChange = [&s, c] { s.label.caption = c->name; };
    EXPECT_TRUE(selectRow(s.list, 2));
    EXPECT_EQ(s.list.text(), "Sample Radio");
    EXPECT_EQ(s.label.caption(), "lstRows");
    EXPECT_TRUE(moveSlider(s.slide, 70));
    EXPECT_EQ(s.slide.value(), 70);
    EXPECT_EQ(s.label.caption(), "SlideVol");
    EXPECT_TRUE(setTicked(s.tick, true));
    EXPECT_EQ(s.tick.value(), 1);
    EXPECT_TRUE(typeText(s.text, "Morgen früh"));
    EXPECT_EQ(s.text.caption(), "Morgen früh");
    EXPECT_EQ(s.label.caption(), "txtName");
    EXPECT_FALSE(selectRow(s.list, 9));
}

TEST(Fields, WhatTheLogicSetsIsNoChangeOfTheUser) {
    Stage s;
    for (Control* c : {&s.list, &s.slide, &s.tick, &s.text}) s.listen(*c);
    s.list.listIndex = 1;
    s.slide.value = 33;
    s.tick.value = 1;
    s.text.caption = "set";
    s.list.items = std::vector<std::string>{"one", "two", "three"};
    flushChanged();
    deliverEvents();
    EXPECT_EQ(s.told(), "");
    EXPECT_EQ(s.list.listIndex(), 1);
}

TEST(Fields, OneOptionOfSeveralIsOnAndLongTextsHaveLines) {
    Stage s;
    Control first("optFirst", ControlKind::option, &s.block, 0),
        second("optFirst", ControlKind::option, &s.block, 1),
        lines("txtLines", ControlKind::textBox, &s.window);
    place(first, 640, 10, 60, 20);
    place(second, 640, 40, 60, 20);
    place(lines, 420, 340, 200, kManyLines);
    s.listen(lines);
    flushChanged();
    for (Control* option : {&first, &second, &first}) {
        EXPECT_TRUE(setTicked(*option, true));
        EXPECT_EQ(first.value() + second.value(), 1);
        EXPECT_EQ(option->value(), 1);
    }
    EXPECT_TRUE(viewOf(lines)->widget.inherits("QPlainTextEdit"));
    EXPECT_TRUE(typeText(lines, "two words"));
    EXPECT_EQ(lines.caption(), "two words");
    EXPECT_NE(s.told(), "");
}

TEST(Window, FillsTheScreenAndComesBack) {
    Stage s;
    for (const bool full : {true, true, false}) {
        setFullScreen(s.window, full);
        EXPECT_EQ(viewOf(s.window)->widget.isFullScreen(), full);
    }
}

TEST(Window, AsksBeforeItCloses) {
    Stage s;
    int asked = -1;
    bool closed = false;
    s.window.onQueryClose = [&](int reason) {
        asked = reason;
        return false;
    };
    s.window.onClose = [&] { closed = true; };
    EXPECT_FALSE(closeWindow(s.window));
    EXPECT_EQ(asked, 0);
    EXPECT_FALSE(closed);
    EXPECT_TRUE(isShown(s.key));
    s.window.onQueryClose = [](int) { return true; };
    EXPECT_TRUE(closeWindow(s.window));
    EXPECT_TRUE(closed);
}

TEST(Window, TellsItsNewSizeAndKeepsItsSmallest) {
    Stage s;
    int calls = 0;
    s.window.onResize = [&] { ++calls; };
    setMinimumSize(s.window, 700, 300);
    EXPECT_TRUE(resizeWindow(s.window, 1000, 500));
    EXPECT_EQ(s.window.width(), twips(1000));
    EXPECT_EQ(s.window.height(), twips(500));
    EXPECT_EQ(calls, 1);
    resizeWindow(s.window, 100, 100);
    EXPECT_EQ(s.window.width(), twips(700));
}

TEST(Drop, OneFileGoesToTheControlUnderIt) {
    Stage s;
    s.listen(s.families[3]->button);
    EXPECT_TRUE(dropFiles(s.families[3]->button, {"/tmp/a b.wav"}));
    EXPECT_EQ(s.told(), "b_Jingle(3):drop /tmp/a b.wav");
    EXPECT_FALSE(dropFiles(s.label, {"/tmp/a b.wav"})) << "nobody there takes files";
}

TEST(Mouse, APressThatOpenedAWindowEndsWithIt) {
    Stage s;
    Control other("frmOther", ControlKind::window);
    other.width = twips(100);
    other.height = twips(100);
    for (Control* pressed : {&s.families[0]->button, &s.key}) {
        s.listen(*pressed);
        pressed->onMouseDown = [&](const MouseEvent&) { showWindow(other); };
        EXPECT_TRUE(mouseDown(*pressed));
        EXPECT_FALSE(isHeld(*pressed)) << pressed->name;
        const auto* key = qobject_cast<QAbstractButton*>(&viewOf(*pressed)->widget);
        EXPECT_FALSE(key != nullptr && key->isDown()) << "nor is it painted pressed";
        EXPECT_EQ(s.told(), pressed->name + (pressed->index < 0 ? "" : "(0)") + ":up");
        mouseUp(*pressed);
        EXPECT_EQ(s.told(), "") << "its release has counted already";
        hideWindow(other);
    }
    dropWindow(other);
}

}  // namespace
}  // namespace zv::test
