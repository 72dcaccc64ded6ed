// What the records say is what is painted, and no more is painted than changed.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QFontMetricsF>
#include <QHelpEvent>
#include <QSlider>

#include "platform/qt/view/jingle_places.h"
#include "platform/qt/view/jingle_text.h"
#include "platform/qt/view/painted.h"
#include "platform/qt/view/segments.h"
#include "platform/qt/view/theme.h"
#include "tests/qt/stage.h"

namespace zv::test {
namespace {

using namespace shell;

QWidget& widgetFor(const Control& c) { return viewOf(c)->widget; }

PaintedWidget& paintedFor(const Control& c) { return dynamic_cast<PaintedWidget&>(*viewOf(c)); }

TEST(Records, StandWhereTheyWerePlacedAndFollow) {
    Stage s;
    EXPECT_EQ(widgetFor(s.key).geometry(), QRect(8, 210, 100, 40));
    s.key.left = twips(20);
    s.key.width = twips(120);
    s.key.toolTip = "tip";
    s.key.enabled = false;
    s.list.visible = false;
    s.slide.maximum = 200;
    s.slide.value = 150;
    flushChanged();
    EXPECT_EQ(widgetFor(s.key).geometry(), QRect(20, 210, 120, 40));
    EXPECT_EQ(widgetFor(s.key).toolTip(), "tip");
    EXPECT_FALSE(widgetFor(s.key).isEnabled());
    EXPECT_FALSE(widgetFor(s.list).isVisible());
    EXPECT_EQ(qobject_cast<QSlider*>(&widgetFor(s.slide))->value(), 150);

    Control late("lblLate", ControlKind::label, &s.block);
    place(late, 700, 10, 50, 20);
    late.caption = "late";
    flushChanged();
    ASSERT_NE(viewOf(late), nullptr) << "a record made after its window";
    EXPECT_TRUE(widgetFor(late).isVisible());
}

TEST(Jingle, OnlyWhatChangedIsPaintedAgain) {
    Stage s;
    Family& f = *s.families[0];
    f.bar.visible = true;
    s.picture();
    PaintedWidget& w = paintedFor(f.button);
    PaintedWidget& neighbour = paintedFor(s.families[1]->button);
    w.takeAsked();
    neighbour.takeAsked();

    f.bar.width = twips(150);
    flushChanged();
    EXPECT_TRUE(QRect(0, 0, 200, 10).contains(w.takeAsked().boundingRect())) << "the bar's rows only";
    f.bar.width = twips(140);
    flushChanged();
    const int end = w.takeAsked().boundingRect().width();
    EXPECT_TRUE(end >= 10 && end < 20) << "the end of a bar that is shorter, all of it: " << end;
    f.bar.width = twips(150);
    f.bar.backColor = 0x00FF00;
    flushChanged();
    EXPECT_GE(w.takeAsked().boundingRect().width(), 150) << "all of a bar of another colour";
    f.bar.width = twips(150);
    f.button.backColor = f.button.backColor();
    flushChanged();
    EXPECT_TRUE(w.takeAsked().isEmpty()) << "the same value asks for nothing";
    f.lp.foreColor = 0x123456;
    flushChanged();
    EXPECT_TRUE(w.takeAsked().isEmpty()) << "a hidden mark asks for nothing";
    f.lp.visible = true;
    flushChanged();
    EXPECT_TRUE(QRect(172, 4, 26, 26).contains(w.takeAsked().boundingRect()))
        << "its place and what is around it";
    f.button.backColor = 0xFFFFFF;
    flushChanged();
    EXPECT_EQ(w.takeAsked().boundingRect(), w.rect());
    EXPECT_TRUE(neighbour.takeAsked().isEmpty());
}

TEST(Jingle, MarksAreToldByTheirSignsAndShrinkBeforeTheNameMoves) {
    Stage s;
    Family& f = *s.families[0];
    f.button.caption = "Name";
    f.lp.visible = true;
    f.lp.foreColor = 0x80C0FF;
    f.lp.caption = "l";
    const QImage loop = s.picture();
    f.lp.caption = "s";
    EXPECT_NE(s.picture(), loop) << "another sign in the same colour";
    JinglePlaces places(f.button);
    double before = 100;
    for (const MarkSize marks : {MarkSize::full, MarkSize::compact, MarkSize::dot}) {
        places.settle(QSize(200, 76), 15, {true, true, marks});
        EXPECT_LT(places.placeOf(f.lp).width(), before);
        before = places.placeOf(f.lp).width();
    }
}

TEST(Jingle, ScreenRepaintsGiveTheSamePictureAsAFreshOne) {
    Stage s;
    Family& f = *s.families[1];
    const QImage before = s.picture();
    f.button.backColor = 0x80FF80;
    f.bar.visible = true;
    f.lp.visible = true;
    EXPECT_NE(s.picture(), before);
    f.button.backColor = kNoColour;
    f.bar.visible = false;
    f.lp.visible = false;
    EXPECT_EQ(s.picture(), before);
}

TEST(Caption, IsTakenApartAndSetInTheRoomThereIs) {
    struct Case {
        const char* text;
        const char* duration;
        const char* name;
    };
    for (const Case& c :
         {Case{"News", "", "News"}, Case{"1:04.2\r\nNews", "1:04.2", "News"},
          Case{"3,4\nTop 40", "3,4", "Top 40"}, Case{"News\r\nNot found", "", "News\nNot found"},
          Case{"[3.4]\r\nNews", "[3.4]", "News"}, Case{"Top 40\na\nb", "", "Top 40\na\nb"},
          Case{"", "", ""}}) {
        const CaptionParts parts = splitCaption(c.text);
        EXPECT_EQ(parts.duration, c.duration) << c.text;
        EXPECT_EQ(parts.name, c.name) << c.text;
    }
    const QFont font = textFont(15, QFont::DemiBold);
    const QRectF room(0, 0, 180, 72);
    const std::vector<QRectF> corners{QRectF(0, 0, 16, 12), QRectF(130, 57, 50, 14)};
    const auto set = [&](const char* name) { return layOutCaption(name, font, room, corners); };
    EXPECT_EQ(set("News Sting").lines.size(), 1);
    const CaptionLayout two = set("The Long Morning Show Opener");
    EXPECT_EQ(two.lines.size(), 2);
    EXPECT_FALSE(two.cut);
    const CaptionLayout cut =
        set("The very long name of a jingle that nobody could ever read on a button in time");
    EXPECT_TRUE(cut.cut);
    EXPECT_TRUE(cut.lines.last().endsWith(QChar(0x2026)));
    const CaptionLayout smaller = set("Mittagsnachrichtenmusik");
    EXPECT_EQ(smaller.lines.size(), 1) << "a word is set smaller before it is torn";
    EXPECT_LT(smaller.font.pixelSize(), font.pixelSize());
    const CaptionLayout word = set("Donaudampfschifffahrtsgesellschaft");
    EXPECT_EQ(word.lines.join(QString()).remove(QLatin1Char('-')), "Donaudampfschifffahrtsgesellschaft");
    EXPECT_TRUE(word.lines.first().endsWith(QLatin1Char('-'))) << "torn with a hyphen";
    for (const CaptionLayout* l : {&two, &cut, &word, &smaller}) {
        for (const QString& line : l->lines)
            EXPECT_LE(QFontMetricsF(l->font).horizontalAdvance(line), room.width() + 1);
        EXPECT_TRUE(room.adjusted(-3, -3, 3, 3).contains(l->box));
    }
    Stage s;
    s.families[0]->button.caption =
        "The very long name of a jingle that nobody could ever read on a button in time";
    flushChanged();
    EXPECT_EQ(widgetFor(s.families[0]->button).toolTip(), textOf(s.families[0]->button.caption()));
}

TEST(Meter, ItsPeakStaysForItsDelayAndFalls) {
    Stage s;
    MeterLook look;
    look.gradient = false;
    look.peakDelayMs = 500;
    s.meter.meterLook = look;
    setNow(1000);
    s.meter.value = 50;
    const auto at = [&](int percent) {
        return s.picture().pixelColor(650, 210 + 150 - 150 * percent / 100 + 1);
    };
    EXPECT_EQ(at(25), QColor(Qt::green));
    EXPECT_NE(at(60), QColor(Qt::green));
    s.meter.value = 0;
    EXPECT_EQ(at(50), QColor(Qt::yellow)) << "the line at the highest level";
    setNow(1400);
    EXPECT_EQ(at(50), QColor(Qt::yellow));
    setNow(1900);
    EXPECT_NE(at(50), QColor(Qt::yellow));
    setNow(4000);
    const QImage silent = s.picture();
    for (int y = 210; y < 360; ++y) EXPECT_NE(silent.pixelColor(650, y), QColor(Qt::yellow)) << y;
}

TEST(Display, FiguresHaveTheirSegments) {
    std::string picture;
    for (const double y : {3.0, 25.0, 30.0, 50.0, 70.0, 75.0, 97.0}) {
        picture += "\n";
        for (const char figure : std::string("0123456789:. ")) {
            const QPainterPath lit = litSegments(QLatin1Char(figure), QRectF(0, 0, 47, 100));
            for (const double x : {3.0, 23.5, 44.0}) picture += lit.contains({x, y}) ? '#' : ' ';
            picture += figure == ' ' ? '|' : ' ';
        }
    }
    EXPECT_EQ(picture, R"(
 #       #   #       #   #   #   #   #             |
# #   #   #   # # # #   #     # # # # #  #         |
# #   #   #   # # # #   #     # # # # #  #         |
         #   #   #   #   #       #   #             |
# #   # #     #   #   # # #   # # #   #  #         |
# #   # #     #   #   # # #   # # #   #  #         |
 #       #   #       #   #       #   #       #     |)");
    EXPECT_EQ(figureBox({0, 0, 100, 100}), QRectF(26.5, 0, 47, 100));
    EXPECT_EQ(figureBox({0, 0, 23.5, 100}), QRectF(1.88, 58, 19.74, 42));
}

TEST(Meter, ASolidBarHasTheColourOfItsLevelAndItsEndIsMarkedWhereItWasCut) {
    Stage s;
    MeterLook look;
    look.solid = true;
    look.peak = false;
    look.clipped = true;
    s.meter.meterLook = look;
    const std::pair<int, QColor> zones[] = {{50, Qt::green}, {80, Qt::yellow}, {95, Qt::red}};
    for (const auto& [value, colour] : zones) {
        s.meter.value = value;
        EXPECT_EQ(s.pixel(650, 350), colour) << value;
        EXPECT_EQ(s.pixel(650, 212), QColor(Qt::red)) << "cut off a moment ago";
    }
    look.clipped = false;
    s.meter.meterLook = look;
    s.meter.value = 50;
    EXPECT_NE(s.pixel(650, 212), QColor(Qt::red));
}

TEST(Display, TellsTheTipOfThePartUnderTheMouse) {
    Stage s;
    s.digit.toolTip = "seconds";
    s.display.toolTip = "display";
    QWidget& w = widgetFor(s.display);
    for (const auto& [at, tip] :
         {std::pair{QPoint(110, 40), "seconds"}, std::pair{QPoint(10, 10), "display"}}) {
        QHelpEvent help(QEvent::ToolTip, at, w.mapToGlobal(at));
        QCoreApplication::sendEvent(&w, &help);
        EXPECT_EQ(w.toolTip(), tip);
    }
}

TEST(Theme, TextIsMadeLegibleOnlyWhereItIsNot) {
    const QColor dark(0x2B, 0x2D, 0x31);
    EXPECT_EQ(legible(Qt::white, dark), QColor(Qt::white));
    EXPECT_EQ(legible(QColor(0xC0, 0, 0), Qt::white), QColor(0xC0, 0, 0));
    const QColor red = legible(Qt::red, dark);
    EXPECT_GT(lightness(red), lightness(Qt::red));
    EXPECT_EQ(red.red(), 255) << "still red";
    EXPECT_LT(red.green(), 128);
    EXPECT_LT(lightness(legible(Qt::white, QColor(0xFF, 0xFF, 0xA0))), 0.7);
}

TEST(Pictures, LockedUpdatesPaintOnceWhenAllLocksAreGone) {
    Stage s;
    QWidget& w = widgetFor(s.window);
    lockUpdates();
    lockUpdates();
    s.key.caption = "Locked";
    flushChanged();
    EXPECT_FALSE(w.updatesEnabled());
    unlockUpdates();
    EXPECT_FALSE(w.updatesEnabled());
    unlockUpdates();
    EXPECT_TRUE(w.updatesEnabled());
    unlockUpdates();
    lockUpdates();
    EXPECT_FALSE(w.updatesEnabled()) << "one unlock too many does not count";
    unlockUpdates();
}

/// The press comes after the reader's call has ended: one that asks a question does not hold it up.
void pressAsReader(Stage& s, QAccessibleInterface& button) {
    button.actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(s.told(), "");
    QCoreApplication::processEvents();
}

TEST(ScreenReader, HearsNameStateAndCanPress) {
    Stage s;
    Family& f = *s.families[0];
    f.button.caption = "2.5\r\nNews Sting";
    f.button.onDescribe = [] { return std::string("playing, 1.2 seconds left"); };
    s.listen(f.button);
    flushChanged();
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&widgetFor(f.button));
    ASSERT_NE(spoken, nullptr);
    EXPECT_EQ(spoken->role(), QAccessible::Button);
    EXPECT_EQ(spoken->text(QAccessible::Name), "News Sting");
    EXPECT_EQ(spoken->text(QAccessible::Description), "playing, 1.2 seconds left");
    ASSERT_NE(spoken->actionInterface(), nullptr);
    pressAsReader(s, *spoken);
    EXPECT_EQ(s.told(), "b_Jingle(0):click");
    f.button.onClick = nullptr;
    pressAsReader(s, *spoken);
    EXPECT_EQ(s.told(), "b_Jingle(0):down b_Jingle(0):up");
    f.button.enabled = false;
    flushChanged();
    pressAsReader(s, *spoken);
    EXPECT_EQ(s.told(), "");
    QAccessibleInterface* key = QAccessible::queryAccessibleInterface(&widgetFor(s.key));
    EXPECT_EQ(key->role(), QAccessible::PushButton);
    EXPECT_EQ(key->text(QAccessible::Name), "Key");
    const auto spokenOf = [](const Control& c) {
        return QAccessible::queryAccessibleInterface(&widgetFor(c));
    };
    s.digit.caption = "7";
    flushChanged();
    EXPECT_EQ(spokenOf(s.display)->text(QAccessible::Name), "7") << "the counter is told as it stands";
    Control naming("lblName", ControlKind::label, &s.window);
    place(naming, px(s.text.left), px(s.text.top) - 20, 100, 18);
    naming.caption = "Name of the palette";
    s.text.touch();
    flushChanged();
    EXPECT_EQ(spokenOf(s.text)->text(QAccessible::Name), "Name of the palette");
    Control on("ckOn", ControlKind::toggle, &s.window);
    place(on, 700, 300, 60, 20);
    flushChanged();
    EXPECT_TRUE(spokenOf(on)->state().checkable);
    EXPECT_FALSE(spokenOf(on)->state().checked);
    on.backColor = 0x00FF00;  // armed
    flushChanged();
    EXPECT_TRUE(spokenOf(on)->state().checked);
    s.listen(s.key);
    for (const bool clicks : {true, false}) {
        if (!clicks) s.key.onClick = nullptr;
        pressAsReader(s, *key);
        EXPECT_EQ(s.told(), clicks ? "btKey:click" : "btKey:down btKey:up")
            << "a key that is worked by its press";
    }
}

}  // namespace
}  // namespace zv::test
