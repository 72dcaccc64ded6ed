// Windows that are forms: laid out from their descriptions, worked by mouse, keyboard and wheel.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QWheelEvent>

#include "platform/forms.h"
#include "platform/qt/view/theme.h"
#include "tests/qt/stage.h"

namespace zv::test {
namespace {

using namespace shell;

/// A form with a control of each kind.
struct TestForm {
    Control window{"frmTest", ControlKind::window};
    Control tabs{"tabs", ControlKind::tabs, &window};
    Control canvas{"picWave", ControlKind::canvas, &window};
    Control lblCard{"lblCard", ControlKind::label, &window};
    Control lblName{"lblName", ControlKind::label, &window};
    Control lblVol{"lblVol", ControlKind::label, &window};
    Control lblVolVal{"lblVolVal", ControlKind::label, &window};
    Control txtName{"txtName", ControlKind::textBox, &window};
    Control slide{"SlideVol", ControlKind::slider, &window};
    Control rows{"udRows", ControlKind::number, &window};
    Control place{"cmbPlace", ControlKind::comboBox, &window};
    Control device{"cmbDevice", ControlKind::comboBox, &window};
    Control tick{"ckTick", ControlKind::checkBox, &window};
    Control swatch{"ColField", ControlKind::colourField, &window};
    Control list{"lstRows", ControlKind::listBox, &window};
    Control note{"lblNote", ControlKind::label, &window};
    Control btReset{"btReset", ControlKind::button, &window};
    Control btCancel{"btCancel", ControlKind::button, &window};
    Control btOK{"btOK", ControlKind::button, &window};

    explicit TestForm(bool dark = false) {
        window.backColor = dark ? 0x202020 : 0xF0F0F0;
        tabs.items = std::vector<std::string>{"Positions and loop", "Effects"};
        tabs.listIndex = 0;
        place.items = std::vector<std::string>{"None", "Above", "Below"};
        place.segmented = true;
        place.listIndex = 2;
        device.items = std::vector<std::string>{"Built-in Audio Analog Stereo", "Cue"};
        device.listIndex = 0;
        slide.value = 80;
        slide.standard = 100;
        slide.step = 5;
        rows.minimum = 4;
        rows.maximum = 12;
        rows.value = 6;
        swatch.backColor = 0x80FFFF;
        swatch.caption = "FFFF80";
        list.items = std::vector<std::string>{"One", "Two", "Three"};
        for (const auto& [control, text] : {std::pair{&lblCard, "Start and stop"},
                                            {&lblVol, "Volume of the jingle, which is heard at once"},
                                            {&lblName, "Name"},
                                            {&lblVolVal, "80 %"},
                                            {&tick, "Ducks under talk"},
                                            {&note, "Changes are heard at once. Space: hear"},
                                            {&btReset, "Reset tab"},
                                            {&btCancel, "Cancel"},
                                            {&btOK, "OK"}})
            control->caption = text;
        window.form = std::make_shared<const Form>(Form{
            .blocks = {{{.rows = {{.cells = {{&canvas, {}, kRestOfRow}}, .height = 120}}, .bare = true}}},
            .pager = &tabs,
            .pages = {{.name = "one",
                       .blocks = {{{.title = lblCard,
                                    .rows = {{.label = lblName, .cells = {{&txtName, {}, kRestOfRow}}},
                                             {.label = lblVol,
                                              .cells = {{.control = &slide, .unit = lblVolVal}}},
                                             {.cells = {{&rows}}}}},
                                   {.rows = {{.cells = {{&place}}},
                                             {.cells = {{&device, {}, kRestOfRow}}},
                                             {.cells = {{&tick}}},
                                             {.cells = {{&swatch}}}}}}}},
                      {.name = "two", .blocks = {{{.rows = {{.cells = {{&list}}, .grows = true}}}}}}},
            .note = note,
            .keysLeft = {{.control = &btReset, .role = KeyRole::destroy}},
            .keys = {{.control = &btCancel, .role = KeyRole::cancel},
                     {.control = &btOK, .role = KeyRole::accept}}});
    }
    ~TestForm() { dropWindow(window); }

    void open(int width = 1000, int height = 700) {
        layOutForm(window, width, height);
        showWindow(window);
        flushChanged();
        deliverEvents();
        deliverEvents();
    }
};

TEST(Forms, FitTheRoomThatTheScreenHasAndTellTheirPlaces) {
    for (const auto& [width, height] : {std::pair{1000, 900}, {1000, 420}, {784, 560}, {640, 400}}) {
        TestForm form;
        form.open(width, height);
        const std::string room = std::to_string(width) + " x " + std::to_string(height);
        EXPECT_LE(px(form.window.width), width) << room;
        EXPECT_LE(px(form.window.height), height) << room;
        EXPECT_EQ(clippedTexts(form.window), "") << room;
        // The foot stays, the key that Enter presses at the lower right; places are told in the records.
        EXPECT_EQ(form.btOK.left() + form.btOK.width(), form.window.width - twips(16)) << room;
        EXPECT_EQ(form.btOK.top() + form.btOK.height(), form.window.height - twips(16)) << room;
        EXPECT_GT(form.btOK.left(), form.btCancel.left() + form.btCancel.width()) << room;
        for (const Control* control : {&form.txtName, &form.slide, &form.rows, &form.place, &form.device}) {
            const QWidget& w = viewOf(*control)->widget;
            const QPoint at = w.mapTo(w.window(), QPoint());
            EXPECT_EQ(control->left(), twips(at.x())) << room << control->name;
            EXPECT_EQ(control->width(), twips(w.width())) << room << control->name;
            EXPECT_LE(px(control->left() + control->width()), px(form.window.width) - 16)
                << room << control->name;
        }
    }
}

TEST(Forms, AreWalkedByTabInReadingOrderAndShowWhereTheKeyboardIs) {
    for (const bool dark : {false, true}) {
        TestForm form(dark);
        form.tick.value = 1;
        form.open();
        setFocus(form.btOK);
        std::string order;
        for (int i = 0; i < 12; ++i) {
            keyDown(Key::tab), keyUp(Key::tab);
            const Control& at = *focusedControl();
            order += at.name + " ";
            QWidget& w = viewOf(at)->widget;
            const QImage with = w.grab().toImage();
            w.clearFocus();
            EXPECT_NE(with, w.grab().toImage()) << at.name << (dark ? ", dark" : "");
            setFocus(const_cast<Control&>(at));
        }
        EXPECT_EQ(
            order,
            "picWave tabs txtName SlideVol udRows cmbPlace cmbDevice ckTick ColField btReset btCancel btOK ");
    }
}

TEST(Forms, APictureShowsItsStrokes) {
    TestForm form;
    Drawing drawing{{.what = Stroke::What::area, .x = 200, .width = 20, .height = 100, .colour = 0x2040C0},
                    {.what = Stroke::What::frame, .x = 240, .width = 20, .height = 80, .colour = 0x00C0C0}};
    for (const int moved : {0, 10}) {
        drawing[0].x = 200 + moved;
        form.canvas.drawing = drawing;
        moved == 0 ? form.open() : flushChanged();
        const QImage picture = viewOf(form.canvas)->widget.grab().toImage();
        const QColor ground = picture.pixelColor(300, 90), area(0xC0, 0x40, 0x20);
        for (const auto& [x, colour] : {std::pair{195, ground},
                                        {205 + moved, area},
                                        {195 + moved, ground},
                                        {222 + moved, ground},
                                        {240, QColor(0xC0, 0xC0, 0)},
                                        {250, ground}})
            EXPECT_EQ(picture.pixelColor(x, 40), colour) << x << ", moved " << moved;
    }
}

TEST(Forms, SlidersAndPicturesTellInWordsWhatStandsThere) {
    TestForm form;
    form.canvas.caption = "Loop in 0:01.970";
    form.canvas.onDescribe = [] { return std::string("Start 0:00.250, Loop in 0:01.970"); };
    form.slide.minimum = -10;
    form.slide.maximum = 30;
    form.slide.value = -4;
    form.slide.alignment = 1;  // its least value stands at the right
    form.slide.onDescribe = [&] { return std::to_string(-form.slide.value()) + " dB"; };
    form.open();
    const QAccessibleInterface* canvas = QAccessible::queryAccessibleInterface(&viewOf(form.canvas)->widget);
    ASSERT_NE(canvas, nullptr);
    EXPECT_EQ(canvas->text(QAccessible::Name), "Loop in 0:01.970");
    EXPECT_EQ(canvas->text(QAccessible::Description), "Start 0:00.250, Loop in 0:01.970");
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&viewOf(form.slide)->widget);
    ASSERT_TRUE(spoken != nullptr && spoken->valueInterface() != nullptr);
    EXPECT_EQ(spoken->text(QAccessible::Value), "4 dB");
    EXPECT_EQ(spoken->valueInterface()->currentValue().toInt(), 24);
    spoken->valueInterface()->setCurrentValue(0);
    EXPECT_EQ(form.slide.value(), 20);
    EXPECT_EQ(spoken->text(QAccessible::Value), "-20 dB");
}

TEST(Forms, ControlsAreWorkedByMouseWheelAndKeys) {
    TestForm form;
    form.open();
    int changes = 0;
    for (Control* c : {&form.rows, &form.slide, &form.place, &form.tabs}) c->onChange = [&] { ++changes; };
    const auto wheel = [&](Control& c, int turns) {
        QWidget& w = viewOf(c)->widget;
        const QPointF at = w.rect().center();
        QWheelEvent e(at, w.mapToGlobal(at), {}, QPoint(0, 120 * turns), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&w, &e);
    };
    const auto at = [&](int x) { click(form.rows, MouseButton::left, 0, {x, twips(15)}); };
    struct Case {
        const char* what;
        std::function<void()> act;
        Control* control;
        int value, changes;
    };
    const Case cases[] = {
        {"minus", [&] { at(twips(10)); }, &form.rows, 5, 1},
        {"plus", [&] { at(form.rows.width - twips(10)); }, &form.rows, 6, 1},
        {"wheel", [&] { wheel(form.rows, 2); }, &form.rows, 8, 1},
        {"arrow", [&] { setFocus(form.rows), keyDown(Key::down); }, &form.rows, 7, 1},
        {"arrow up", [&] { keyDown(Key::up); }, &form.rows, 8, 1},
        {"page down", [&] { keyDown(Key::pageDown); }, &form.rows, 4, 1},
        {"page", [&] { keyDown(Key::pageUp); }, &form.rows, 12, 1},
        {"above the limit", [&] { wheel(form.rows, 1); }, &form.rows, 12, 0},
        {"typed", [&] { typeText(form.rows, "9"); }, &form.rows, 9, 1},
        {"typed too high", [&] { typeText(form.rows, "99"); }, &form.rows, 12, 1},
        {"typed nonsense", [&] { typeText(form.rows, "x"); }, &form.rows, 12, 0},
        {"slider's wheel", [&] { wheel(form.slide, -1); }, &form.slide, 75, 1},
        {"slider's arrow", [&] { setFocus(form.slide), keyDown(Key::right); }, &form.slide, 80, 1},
        {"slider's page", [&] { keyDown(Key::pageDown); }, &form.slide, 30, 1},
    };
    for (const Case& c : cases) {
        changes = 0;
        c.act();
        EXPECT_EQ(c.control->value(), c.value) << c.what;
        EXPECT_EQ(changes, c.changes) << c.what;
    }
    doubleClick(form.slide);
    EXPECT_EQ(form.slide.value(), 100) << "the default";
    int turned = 0;
    form.canvas.onWheel = [&](int turns, int) { turned += turns; };
    wheel(form.canvas, 2);
    EXPECT_EQ(turned, 2);
    EXPECT_TRUE(selectRow(form.place, 0));
    EXPECT_EQ(form.place.text(), "None");
    EXPECT_TRUE(selectRow(form.tabs, 1));
    flushChanged();
    deliverEvents();
    EXPECT_FALSE(typeText(form.txtName, "hidden page"));
    EXPECT_TRUE(selectRow(form.list, 1));
    EXPECT_EQ(form.list.text(), "Two");
}

TEST(Forms, RowsGoWithTheirControlsAndTextsAskForRoom) {
    TestForm form;
    form.open();
    const int below = form.rows.top;
    const auto settle = [] { flushChanged(), deliverEvents(); };
    form.slide.visible = false;
    settle();
    EXPECT_LT(form.rows.top(), below) << "a row without controls takes no room";
    EXPECT_FALSE(viewOf(form.lblVol)->widget.isVisible()) << "its label goes with it";
    form.btOK.caption = "A word that is longer than the key was";
    settle();
    form.window.width = form.window.width + twips(1);
    settle();
    EXPECT_EQ(clippedTexts(form.window), "");
}

}  // namespace
}  // namespace zv::test
