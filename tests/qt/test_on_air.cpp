// What sounds is told from what is idle: by the contrast of its frame, in grey and out of focus; and every text on
// a face can be read.
#include <gtest/gtest.h>

#include <set>

#include "platform/qt/view/jingle_face.h"
#include "platform/qt/view/theme.h"
#include "tests/qt/stage.h"

namespace zv::test {
namespace {

using namespace shell;

constexpr Colour kPlaying = 0xC0FFC0, kDark = 0x312D2B, kLight = -1;

TEST(OnAir, FramesAndTextsHaveTheirContrastOnEveryFace) {
    std::set<Colour> any{kNoColour};  // a presenter's own
    for (int i = 0; i < 125; ++i)
        any.insert(i % 5 * 255 / 4 | (i / 5 % 5 * 255 / 4) << 8 | (i / 25 * 255 / 4) << 16);
    for (const Colour back : {kLight, kDark}) {
        Stage s(back);
        const Theme theme = themeFor(s.window);
        Control& button = s.families[0]->button;
        const auto tones = [&](Colour face, Colour fore, JingleState state, bool othersSound) {
            button.backColor = face;
            button.foreColor = fore;
            button.value = static_cast<int>(state);
            const JingleTones t = tonesOf(button, theme, false, othersSound);
            const QColor own = colourOf(fore, theme.text);
            EXPECT_TRUE(contrast(own, t.face) < 4.5 || t.ink == own)
                << "changed only where it cannot be read";
            for (const QColor& text : {t.ink, t.duration, t.number}) {
                EXPECT_GE(contrast(text, t.face), 4.5)
                    << text.name().toStdString() << " on " << t.face.name().toStdString();
            }
            return t.face;
        };
        std::set<double> idle;  // luminances
        for (const Colour face : any) {
            for (const Colour fore : {Colour{0}, Colour{0xFFFFFF}, Colour{0xFF}}) {
                const QColor plain = tones(face, fore, JingleState::rest, false),
                             dimmed = tones(face, fore, JingleState::rest, true);
                EXPECT_EQ(dimmed, mixed(plain, theme.dark ? theme.ground : QColor(Qt::black), 0.1));
                idle.insert({luminance(plain), luminance(dimmed)});
            }
        }
        for (const Colour playing : any) {
            if (playing == kNoColour) continue;
            const QColor loud = tones(playing, 0, JingleState::sounding, true);
            const FrameColours on = frameColours(loud, theme.dark);
            EXPECT_GE(contrast(on.frame, loud), 3) << loud.name().toStdString();
            const auto stands = [](const QColor& line, double beside) {
                const double own = luminance(line);
                return (std::max(own, beside) + 0.05) / (std::min(own, beside) + 0.05) >= 3;
            };
            for (const double face : idle)
                EXPECT_TRUE(stands(on.frame, face) || stands(on.edge, face))
                    << loud.name().toStdString() << " " << face;
        }
    }
}

TEST(OnAir, WhatSoundsHasAFrameAndALineAroundIt) {
    for (const Colour back : {kLight, kDark}) {
        Stage s(back);
        Control& button = s.families[0]->button;
        button.backColor = kPlaying;
        const QRect place = placeOf(button).translated(placeOf(s.block).topLeft());
        const auto edge = [&](JingleState state) {
            button.value = static_cast<int>(state);
            return s.picture().pixelColor(place.left() + 2, place.center().y());
        };
        EXPECT_EQ(edge(JingleState::rest), s.pixel(place.left() + 30, place.top() + 10));
        EXPECT_GE(contrast(edge(JingleState::sounding), s.pixel(place.left() + 30, place.top() + 10)), 2.5);
        EXPECT_EQ(s.pixel(place.left(), place.center().y()), QColor(Qt::white)) << "the line around it";
    }
}

}  // namespace
}  // namespace zv::test
