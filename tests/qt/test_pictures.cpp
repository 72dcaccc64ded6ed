// What the records say is what is painted, and no more is painted than changed.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QFontMetricsF>
#include <QPainter>
#include <QSlider>

#include "platform/qt/view/figures.h"
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
    const auto asked = [&] {
        flushChanged();
        return w.takeAsked().boundingRect();
    };
    f.bar.width = twips(150);
    EXPECT_TRUE(QRect(0, 0, 200, 10).contains(asked())) << "the bar's rows only";
    f.bar.width = twips(140);
    const int end = asked().width();
    EXPECT_TRUE(end >= 10 && end < 20) << "the end of a bar that is shorter, all of it: " << end;
    f.bar.width = twips(150);
    f.bar.backColor = 0x00FF00;
    EXPECT_GE(asked().width(), 150) << "all of a bar of another colour";
    f.button.backColor = f.button.backColor();
    f.lp.foreColor = 0x123456;
    EXPECT_TRUE(asked().isEmpty()) << "the same value and a hidden mark ask for nothing";
    f.lp.visible = true;
    EXPECT_TRUE(QRect(172, 4, 26, 26).contains(asked())) << "its place and what is around it";
    f.button.backColor = 0xFFFFFF;
    EXPECT_EQ(asked(), w.rect());
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

TEST(Caption, IsTakenApartAndSetInTheRoomThereIs) {
    std::string parts;
    for (const char* text :
         {"News", "1:04.2\r\nNews", "3,4\nTop 40", "News\r\nNot found", "[3.4]\r\nNews", ""}) {
        const CaptionParts apart = splitCaption(text);
        parts += (apart.duration + "|" + apart.name + "; ").toStdString();
    }
    EXPECT_EQ(parts, "|News; 1:04.2|News; 3,4|Top 40; |News\nNot found; [3.4]|News; |; ");
    const QFont font = textFont(15, QFont::DemiBold);
    const QRectF room(0, 0, 180, 72);
    const std::vector<QRectF> corners{QRectF(0, 0, 16, 12), QRectF(130, 57, 50, 14)};
    const char* const tooLong =
        "The very long name of a jingle that nobody could ever read on a button in time";
    const struct {
        const char* name;
        int lines;
        bool cut, smaller;
        const char* ends;  ///< of the first line
    } cases[] = {{"News Sting", 1, false, false, "Sting"},
                 {"The Long Morning Show Opener", 2, false, false, ""},
                 {tooLong, 2, true, true, ""},
                 {"Mittagsnachrichtenmusik", 1, false, true, "musik"},  // smaller before it is torn
                 {"Donaudampfschifffahrtsgesellschaft", 2, false, true, "-"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const CaptionLayout l = layOutCaption(c.name, font, room, corners);
        EXPECT_EQ(l.lines.size(), c.lines);
        EXPECT_EQ(l.cut, c.cut);
        EXPECT_EQ(l.lines.last().endsWith(QChar(0x2026)), c.cut);
        EXPECT_EQ(l.font.pixelSize() < font.pixelSize(), c.smaller);
        EXPECT_TRUE(l.lines.first().endsWith(QString(c.ends)));
        for (const QString& line : l.lines)
            EXPECT_LE(QFontMetricsF(l.font).horizontalAdvance(line), room.width() + 1);
        EXPECT_TRUE(room.adjusted(-3, -3, 3, 3).contains(l.box));
    }
    Stage s;
    s.families[0]->button.caption = tooLong;
    flushChanged();
    EXPECT_EQ(widgetFor(s.families[0]->button).toolTip(), QString(tooLong));
}

TEST(Meter, ItsPeakStaysForItsDelayAndFalls) {
    Stage s;
    MeterLook look;
    look.gradient = false;
    look.peakDelayMs = 500;
    s.meter.meterLook = look;
    setNow(1000);
    s.meter.value = 50;
    s.picture();
    s.meter.value = 0;
    const auto peakAt = [&](int now) {  // percent
        setNow(now);
        const QImage picture = s.picture();
        for (int y = 359; y >= 210; --y)
            if (picture.pixelColor(650, y) == QColor(Qt::yellow)) return (360 - y) * 100 / 150;
        return 0;
    };
    EXPECT_NEAR(peakAt(1000), 50, 1);
    EXPECT_NEAR(peakAt(1400), 50, 1);
    EXPECT_LT(peakAt(1900), 49);
    EXPECT_EQ(peakAt(4000), 0);
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
    for (const auto& [value, colour] :
         {std::pair{50, QColor(Qt::green)}, {80, QColor(Qt::yellow)}, {95, QColor(Qt::red)}}) {
        s.meter.value = value;
        look.clipped = value != 50;
        s.meter.meterLook = look;
        EXPECT_EQ(s.pixel(650, 350), colour) << value;
        EXPECT_EQ(s.pixel(650, 212) == QColor(Qt::red), look.clipped) << "cut off a moment ago";
    }
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
    Control naming("lblName", ControlKind::label, &s.window), on("ckOn", ControlKind::toggle, &s.window);
    place(naming, px(s.text.left), px(s.text.top) - 20, 100, 18);
    place(on, 700, 300, 60, 20);
    naming.caption = "Name of the palette";
    s.text.touch();
    s.digit.caption = "7";
    f.button.caption = "2.5\r\nNews Sting";
    f.button.onDescribe = [] { return std::string("playing, 1.2 seconds left"); };
    flushChanged();
    const auto spokenOf = [](const Control& c) {
        return QAccessible::queryAccessibleInterface(&widgetFor(c));
    };
    const struct {
        const Control& control;
        QAccessible::Role role;
        const char* name;
    } cases[] = {{f.button, QAccessible::Button, "News Sting"},
                 {s.key, QAccessible::PushButton, "Key"},
                 {s.display, spokenOf(s.display)->role(), "7"},  // the counter as it stands
                 {s.text, QAccessible::EditableText, "Name of the palette"}};
    for (const auto& c : cases) {
        EXPECT_EQ(spokenOf(c.control)->role(), c.role) << c.name;
        EXPECT_EQ(spokenOf(c.control)->text(QAccessible::Name), c.name);
    }
    EXPECT_EQ(spokenOf(f.button)->text(QAccessible::Description), "playing, 1.2 seconds left");
    for (const bool armed : {false, true}) {
        on.backColor = armed ? 0x00FF00 : kNoColour;
        flushChanged();
        EXPECT_TRUE(spokenOf(on)->state().checkable);
        EXPECT_EQ(spokenOf(on)->state().checked, armed);
    }
    for (Control* pressed : {&f.button, &s.key}) {
        const std::string name = pressed->name + (pressed->index < 0 ? "" : "(0)");
        s.listen(*pressed);
        pressAsReader(s, *spokenOf(*pressed));
        EXPECT_EQ(s.told(), name + ":click");
        pressed->onClick = nullptr;  // one that is worked by its press
        pressAsReader(s, *spokenOf(*pressed));
        EXPECT_EQ(s.told(), name + ":down " + name + ":up");
    }
    f.button.enabled = false;
    flushChanged();
    pressAsReader(s, *spokenOf(f.button));
    EXPECT_EQ(s.told(), "");
}

TEST(Figures, StandOneBehindAnother) {
    QFont font;
    font.setPixelSize(40);
    const auto inked = [&](const QString& text) {  // columns from the first to the last that is painted
        QImage image(400, 60, QImage::Format_ARGB32);
        image.fill(Qt::white);
        QPainter p(&image);
        p.setFont(font);
        drawFigures(p, QRectF(10, 0, 380, 60), Qt::AlignLeft | Qt::AlignVCenter, text);
        p.end();
        int first = 400, last = -1;
        for (int x = 0; x < 400; ++x)
            for (int y = 0; y < 60; ++y)
                if (image.pixel(x, y) != qRgb(255, 255, 255)) first = std::min(first, x), last = x;
        return std::pair(first, last);
    };
    for (const char* text : {"88", "08:08", "8.8", "8:08 h8"}) {
        const auto [first, last] = inked(text);
        const auto [alone, end] = inked("8");
        EXPECT_NEAR(first, alone, 2) << text;
        EXPECT_NEAR(last - end, figuresWidth(font, text) - figuresWidth(font, "8"), 1.5) << text;
    }
}

}  // namespace
}  // namespace zv::test
