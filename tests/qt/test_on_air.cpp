// What sounds is told from what is idle: by the contrast of its frame, in grey and out of focus; and every text on
// a face can be read.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QGraphicsBlurEffect>
#include <QGraphicsPixmapItem>
#include <QGraphicsScene>
#include <QMouseEvent>
#include <QPainter>
#include <fstream>
#include <set>

#include "platform/qt/view/jingle_face.h"
#include "platform/qt/view/theme.h"
#include "tests/qt/stage.h"
#include "tests/support/places.h"

namespace zv::test {
namespace {

using namespace shell;

constexpr Colour kPlaying = 0xC0FFC0, kForeign = 0xFFFFFF, kDark = 0x312D2B, kLight = -1;
constexpr int kPlayingHue = 120;  // degrees: green

/// The colours of the sample set, and none.
std::set<Colour> sampleFaces() {
    std::set<Colour> all{kNoColour};
    for (const char* file : {"/data/palette.ini", "/data/HotJingles.ini"}) {
        std::ifstream in(sourceDir() + file);
        for (std::string line; std::getline(in, line);) {
            if (!line.starts_with("BTNCol_")) continue;
            const int rgb = std::stoi(line.substr(line.find('=') + 1, 6), nullptr, 16);
            all.insert(((rgb & 0xFF) << 16) | (rgb & 0xFF00) | (rgb >> 16));
        }
    }
    return all;
}

TEST(OnAir, FramesAndTextsHaveTheirContrastOnEveryFace) {
    const std::set<Colour> faces = sampleFaces();
    EXPECT_GE(faces.size(), 6U);
    for (const Colour face : faces) {
        const QColor idle(face & 0xFF, face >> 8 & 0xFF, face >> 16 & 0xFF);
        EXPECT_TRUE(face == kNoColour || std::abs(idle.hue() - kPlayingHue) >= 45)
            << idle.name().toStdString();
    }
    for (const Colour back : {kLight, kDark}) {
        Stage s(back);
        const Theme theme = themeFor(s.window);
        Control& button = s.families[0]->button;
        const auto tones = [&](Colour face, Colour fore, JingleState state, bool othersSound) {
            button.backColor = face;
            button.foreColor = fore;
            button.value = static_cast<int>(state);
            return tonesOf(button, theme, false, othersSound);
        };
        const auto readable = [](const JingleTones& t) {
            for (const QColor& text : {t.ink, t.duration, t.number}) {
                EXPECT_GE(contrast(text, t.face), 4.5)
                    << text.name().toStdString() << " on " << t.face.name().toStdString();
            }
        };
        for (const Colour playing : {kPlaying, kForeign}) {
            const auto state = playing == kPlaying ? JingleState::sounding : JingleState::otherPalette;
            const JingleTones loud = tones(playing, 0, state, true);
            readable(loud);
            const QColor frame = frameColour(loud.face, theme.dark);
            EXPECT_GE(contrast(frame, loud.face), 3);
            for (const Colour face : faces) {
                for (const Colour fore : {Colour{0}, Colour{0xFFFFFF}, Colour{0xFF}}) {
                    readable(tones(face, fore, JingleState::rest, false));
                    const JingleTones idle = tones(face, fore, JingleState::rest, true);
                    readable(idle);
                    EXPECT_GE(contrast(frame, idle.face), 3) << idle.face.name().toStdString();
                }
            }
        }
    }
}

TEST(OnAir, APressIsNotHeldWhileWhatItOpenedWaits) {
    Stage s;
    Control& button = s.families[0]->button;
    bool before = false, after = true;
    button.onMouseDown = [&](const MouseEvent&) {
        before = isHeld(button);
        noteOpened();
        after = isHeld(button);
    };
    s.picture();
    QWidget& w = viewOf(button)->widget;
    const QPointF at(30, 30);
    QMouseEvent press(QEvent::MouseButtonPress, at, w.mapToGlobal(at), Qt::LeftButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&w, &press);
    EXPECT_TRUE(before);
    EXPECT_FALSE(after);
}

QImage blurredGrey(const QImage& picture) {
    constexpr int kBlur = 12;
    QGraphicsScene scene;
    auto* item = scene.addPixmap(QPixmap::fromImage(picture.convertToFormat(QImage::Format_Grayscale8)));
    auto* blur = new QGraphicsBlurEffect;
    blur->setBlurRadius(kBlur);
    item->setGraphicsEffect(blur);
    QImage out(picture.size(), QImage::Format_RGB32);
    out.fill(Qt::gray);
    QPainter p(&out);
    scene.render(&p, QRectF(out.rect()), QRectF(out.rect()));
    return out;
}

TEST(OnAir, IsSeenInGreyAndOutOfFocus) {
    for (const Colour back : {kLight, kDark}) {
        for (const Colour face : sampleFaces()) {
            Stage s(back);
            ASSERT_GE(s.families.size(), 2U);
            Control& loud = s.families[0]->button;
            Control& idle = s.families[1]->button;
            idle.backColor = face;
            for (Control* b : {&loud, &idle}) {
                b->caption = "1.0\nJingle";
                b->foreColor = 0;
                for (Control* part : b->children()) part->visible = false;
            }
            loud.backColor = kPlaying;
            loud.value = static_cast<int>(JingleState::sounding);
            const QImage grey = blurredGrey(s.picture());
            // How much darker the edge is than the face, and the face itself, beside the caption.
            const auto at = [&](const Control& b, int x) {
                const QRect place = placeOf(b).translated(placeOf(s.block).topLeft());
                return qGray(grey.pixel(place.left() + x, place.center().y()));
            };
            const auto told = [&](const Control& b) { return at(b, 36) - at(b, 2) + at(b, 36) / 8; };
            EXPECT_GE(told(loud) - told(idle), 25) << (back == kDark ? "dark" : "light") << " face " << face
                                                   << ": " << told(loud) << " " << told(idle);
        }
    }
}

}  // namespace
}  // namespace zv::test
