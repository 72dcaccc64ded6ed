// What the user does reaches the handlers: once, in order, and only where it was done.
#include <gtest/gtest.h>

#include <QAbstractButton>

#include <QApplication>
#include <QContextMenuEvent>
#include <QPointingDevice>
#include <QTouchEvent>

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
    click(jingle);
    EXPECT_EQ(s.told(), "b_Jingle(0):down b_Jingle(0):up b_Jingle(0):click");
    click(jingle, MouseButton::right), click(jingle, MouseButton::middle);
    EXPECT_EQ(s.told(), "b_Jingle(0):downR b_Jingle(0):upR b_Jingle(0):downM b_Jingle(0):upM");
    click(s.key), click(s.label);
    EXPECT_EQ(s.told(), "btKey:down btKey:up btKey:click lblText:down lblText:up lblText:click")
        << "a label does not pass its press to the window";
    doubleClick(jingle);
    EXPECT_EQ(s.told(),
              "b_Jingle(0):down b_Jingle(0):up b_Jingle(0):click b_Jingle(0):down b_Jingle(0):double "
              "b_Jingle(0):up b_Jingle(0):click")
        << "each press of a double click is a press";
    mouseDown(jingle), mouseUp(jingle, MouseButton::left, 0, {twips(208 + 50), twips(20)});
    EXPECT_EQ(s.told(), "b_Jingle(0):down b_Jingle(0):up") << "no click: it was let go over the neighbour";
}

TEST(Mouse, NothingReachesWhatIsHiddenDisabledOrCovered) {
    Stage s;
    Control cover("fraCover", ControlKind::frame, &s.window);
    place(cover, 0, 200, 800, 60);
    EXPECT_FALSE(click(s.key)) << "a frame made later lies over it";
    cover.visible = false;
    EXPECT_TRUE(click(s.key));
    s.key.enabled = false;
    EXPECT_FALSE(click(s.key));
    s.block.visible = false;
    EXPECT_FALSE(click(s.families[0]->button)) << "its frame is hidden";
    hideWindow(s.window);
    s.key.enabled = true;
    EXPECT_FALSE(click(s.key));
}

TEST(Mouse, TheSelectionBoxTakesItsOwnPress) {
    Stage s;
    Family& f = *s.families[2];
    s.listen(f.button);
    f.box.visible = true;
    int changes = 0;
    f.box.onChange = [&] { ++changes; };
    EXPECT_TRUE(setTicked(f.box, true));
    EXPECT_EQ(f.box.value() + changes, 2);
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
    touchDown(a, 0), touchDown(b, 1);
    EXPECT_EQ(s.told(), "b_Jingle(0):down b_Jingle(4):down");
    touchUp(a, 0), touchDown(a, 2);  // a third finger while the second is down
    EXPECT_EQ(s.told(), "b_Jingle(0):up b_Jingle(0):click b_Jingle(0):down");
    touchUp(b, 1), touchUp(a, 2);
    EXPECT_EQ(s.told(), "b_Jingle(4):up b_Jingle(4):click b_Jingle(0):up b_Jingle(0):click");
    touchDown(a, 0), touchDown(a, 1);
    s.told();
    QTouchEvent cancelled(QEvent::TouchCancel, QPointingDevice::primaryPointingDevice());
    QCoreApplication::sendEvent(&viewOf(a)->widget, &cancelled);
    EXPECT_EQ(s.told(), "b_Jingle(0):up b_Jingle(0):up") << "the desktop took the fingers away: no click";
    EXPECT_FALSE(isHeld(a));
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
    std::set<const Control*> reached;
    for (int i = 0; i < 16; ++i) keyDown(Key::tab), reached.insert(focusedControl());
    for (const Control* c : {&s.key, &s.list, &s.text, &s.slide, &s.tick})
        EXPECT_TRUE(reached.contains(c)) << c->name;
    Control red("Red", ControlKind::colourField, &s.window),
        blue("Blue", ControlKind::colourField, &s.window);
    place(red, 420, 340, 20, 20), place(blue, 450, 340, 20, 20);
    flushChanged();
    setFocus(red);
    for (const auto& [key, to] : {std::pair{Key::right, &blue}, {Key::left, &red}, {Key::up, &red}}) {
        keyDown(key);
        EXPECT_EQ(focusedControl(), to) << "arrows go among colours";
    }
    setFocus(s.key);
    keyDown(Key::enter);
    keyDown(Key::space);
    EXPECT_EQ(s.told(), "btKey:key13 btKey:click btKey:key32 btKey:click");
}

TEST(Fields, TheUserChangesThemAndTheLogicHears) {
    Stage s;
    for (Control* c : {&s.list, &s.slide, &s.tick, &s.text}) s.listen(*c);
    EXPECT_TRUE(selectRow(s.list, 2) && moveSlider(s.slide, 70) && setTicked(s.tick, true) &&
                typeText(s.text, "Morgen früh"));
    EXPECT_FALSE(selectRow(s.list, 9));
    EXPECT_EQ(s.list.text(), "Sample Radio");
    EXPECT_EQ(s.slide.value(), 70);
    EXPECT_EQ(s.tick.value(), 1);
    EXPECT_EQ(s.text.caption(), "Morgen früh");
    const std::string told = s.told();
    for (const char* heard : {"lstRows:change", "SlideVol:change", "ckTick:change", "txtName:change"})
        EXPECT_NE(told.find(heard), std::string::npos) << heard;
    // What the logic sets is no change of the user's.
    s.list.listIndex = 1;
    s.slide.value = 33;
    s.tick.value = 0;
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
    bool closed = false;
    s.window.onClose = [&] { closed = true; };
    for (const bool may : {false, true}) {
        s.window.onQueryClose = [&](int reason) {
            EXPECT_EQ(reason, 0);
            return may;
        };
        EXPECT_EQ(closeWindow(s.window), may);
        EXPECT_EQ(closed, may);
        EXPECT_EQ(isShown(s.key), !may);
    }
}

TEST(Window, TellsItsNewSizeAndKeepsItsSmallest) {
    Stage s;
    int calls = 0;
    s.window.onResize = [&] { ++calls; };
    setMinimumSize(s.window, 700, 300);
    for (const auto& [asked, width, height] : {std::tuple{1000, 1000, 500}, {100, 700, 300}}) {
        resizeWindow(s.window, asked, asked / 2);
        EXPECT_EQ(s.window.width(), twips(width));
        EXPECT_EQ(s.window.height(), twips(height));
    }
    EXPECT_EQ(calls, 2);
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
