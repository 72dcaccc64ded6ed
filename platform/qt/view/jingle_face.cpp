#include "platform/qt/view/jingle_face.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QPixmapCache>
#include <algorithm>
#include <map>
#include <tuple>

#include "platform/qt/view/jingle_text.h"
#include "platform/qt/view/style.h"
#include "platform/qt/view/theme.h"

namespace zv::shell {
namespace {

constexpr double kFrameShare = 0.07, kFrameMin = 3, kFrameMax = 4;  ///< of the shorter side, and pixels
constexpr double kEdge = 1;                                         ///< pixels of the line around a frame
constexpr double kRing = 3;  ///< pixels of a border that an option or a carried jingle has
constexpr double kSignShare = 0.2, kSignMin = 9, kSignMax = 24;
constexpr int kLowest = 40;     ///< pixels of height below which there is no room for a sign
constexpr int kNarrowest = 76;  ///< and of width

void paintWhole(QPainter& p, const QSize& size, const JingleFace& face) {
    const QRectF rect(QPointF(), size);
    if (!sounds(face.state)) {
        drawFace(p, rect, face.colour, face.ring.isValid() ? face.ring : face.border);
        if (!face.ring.isValid()) return;
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(QPen(face.ring, kRing));
        p.setBrush(Qt::NoBrush);
        constexpr double in = kRing / 2;
        p.drawRoundedRect(rect.adjusted(in, in, -in, -in), kRadius - 1, kRadius - 1);
        return;
    }
    const double line = std::clamp(std::min(rect.width(), rect.height()) * kFrameShare, kFrameMin, kFrameMax);
    const FrameColours on = frameColours(face.colour, face.dark);
    drawFace(p, rect, on.edge, on.edge);
    drawFace(p, rect.adjusted(kEdge, kEdge, -kEdge, -kEdge), face.colour,
             face.state == JingleState::sounding ? on.frame : face.border, kRadius - kEdge);
    QPen pen(on.frame, line);
    if (face.state == JingleState::otherPalette) {
        pen.setDashPattern({3, 1.6});
        pen.setCapStyle(Qt::FlatCap);
    }
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(pen);
    p.setBrush(Qt::NoBrush);
    const double in = kEdge + line / 2;
    p.drawRoundedRect(rect.adjusted(in, in, -in, -in), kRadius - 1, kRadius - 1);
}

}  // namespace

JingleTones tonesOf(const Control& record, const Theme& theme, bool empty, bool othersSound) {
    constexpr double kDim = 0.1, kDurationShare = 0.22, kNumberShare = 0.42;
    const bool playing = sounds(static_cast<JingleState>(record.value()));
    // Where an armed option can go the option's colour is the border's, around a plain face.
    const bool awaits = record.borderColor() >= 0 && record.borderColor() == record.backColor();
    const QColor given = colourOf(record.backColor, theme.face);
    JingleTones tones;
    if (playing) {
        tones.face = given;
    } else if (isNeutral(record, record.backColor) || awaits) {
        tones.face = empty ? theme.ground : theme.face;
    } else {
        tones.face = record.borderColor() >= 0 ? given : shadedFace(given, theme);  // what is marked glows
    }
    if (othersSound && !playing && !empty)
        tones.face = mixed(tones.face, theme.dark ? theme.ground : QColor(Qt::black), kDim);
    // Black or white was chosen for the colour that the record has: on another face it is the theme's.
    const QColor own = colourOf(record.foreColor, theme.text);
    const bool grey = own.hsvSaturation() < 30;
    const bool unread = contrast(own, tones.face) < kTextContrast;
    tones.ink = legible(grey && unread && !playing ? theme.text : own, tones.face);
    tones.duration = legible(mixed(tones.ink, tones.face, kDurationShare), tones.face);
    tones.number = legible(mixed(tones.ink, tones.face, kNumberShare), tones.face);
    return tones;
}

FrameColours frameColours(const QColor& face, bool dark) {
    constexpr int kBlue = 200, kVivid = 230, kFull = 255;  // blue: the hue of a face that has none
    // Beside black or white a contrast of 9 leaves no third colour within 3 of both. A dark window's idle faces are
    // deep, so that its frames may be bright.
    constexpr double kDeepContrast = 9.2, kBrightContrast = 3.1, kEdgeContrast = 3;
    const int hue = face.hsvSaturation() < 20 ? kBlue : face.hsvHue();
    const QColor white(Qt::white), black(Qt::black);
    FrameColours on;
    on.frame = contrast(white, face) > contrast(black, face) ? white : black;
    for (int tone = 0; tone < kFull + kVivid; ++tone) {  // from the vivid one down to black, then up to white
        const int paler = std::max(0, tone - kFull + 1);
        const QColor tried = QColor::fromHsv(hue, kVivid - paler, paler > 0 ? kFull : kFull - tone);
        if (contrast(tried, face) >= (dark ? kBrightContrast : kDeepContrast)) {
            on.frame = tried;
            break;
        }
    }
    on.edge = contrast(white, on.frame) >= kEdgeContrast ? white : black;
    return on;
}

void paintJingleFace(QPainter& p, const QSize& size, double ratio, const JingleFace& face) {
    // A hundred of them are painted at each tick: numbers are compared, no text is made for a key.
    using FaceKey = std::tuple<int, int, double, QRgb, QRgb, QRgb, int, bool>;
    static std::map<FaceKey, QPixmapCache::Key> known;
    constexpr std::size_t kMostKnown = 1000;
    if (known.size() > kMostKnown) known.clear();
    QPixmapCache::Key& key =
        known[{size.width(), size.height(), ratio, face.colour.rgb(), face.border.rgb(),
               face.ring.isValid() ? face.ring.rgb() : 0, static_cast<int>(face.state), face.dark}];
    QPixmap whole;
    if (!QPixmapCache::find(key, &whole)) {
        whole = QPixmap((QSizeF(size) * ratio).toSize());
        whole.setDevicePixelRatio(ratio);
        whole.fill(Qt::transparent);
        QPainter inside(&whole);
        paintWhole(inside, size, face);
        inside.end();
        key = QPixmapCache::insert(whole);
    }
    p.drawPixmap(0, 0, whole);
}

CaptionLayout layOutHint(const QSize& size, const QString& hint) {
    constexpr double kShare = 0.17, kLeast = 10, kMost = 32;  // of the height, and pixels
    return layOutCaption(hint, textFont(std::clamp(size.height() * kShare, kLeast, kMost)),
                         QRectF(QPointF(), size).adjusted(6, 3, -6, -3));
}

void paintHint(QPainter& p, const QSize& size, const QString& hint, const Theme& theme) {
    if (hint.isEmpty()) return;
    const CaptionLayout set = layOutHint(size, hint);
    p.setFont(set.font);
    p.setPen(legible(theme.muted, theme.ground));
    for (qsizetype i = 0; i < set.lines.size(); ++i)
        p.drawText(set.starts[static_cast<std::size_t>(i)], set.lines[i]);
}

QRectF stateSignPlace(const QSize& size, JingleState state, double margin) {
    if (state == JingleState::rest || size.height() < kLowest || size.width() < kNarrowest) return {};
    const double side = std::clamp(size.height() * kSignShare, kSignMin, kSignMax);
    const double x = sounds(state) ? margin + 1 : size.width() - margin - side;
    return {x, size.height() - margin - side, side, side};
}

void paintStateSign(QPainter& p, const QRectF& place, JingleState state, const QColor& ink,
                    const QColor& ground) {
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    const double u = place.width();
    QPainterPath sign;
    if (sounds(state)) {
        sign.moveTo(place.topLeft());
        sign.lineTo(place.right() - u * 0.08, place.center().y());
        sign.lineTo(place.bottomLeft());
        sign.closeSubpath();
        const bool hollow = state == JingleState::otherPalette;
        p.setPen(QPen(ink, hollow ? std::max(1.4, u * 0.12) : 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.setBrush(hollow ? QBrush(Qt::NoBrush) : QBrush(ink));
        p.drawPath(sign);
    } else {
        sign.moveTo(place.center().x(), place.top());
        sign.lineTo(place.bottomRight() + QPointF(u * 0.06, 0));
        sign.lineTo(place.bottomLeft() - QPointF(u * 0.06, 0));
        sign.closeSubpath();
        p.setPen(QPen(ink, std::max(1.0, u * 0.1), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.setBrush(ink);
        p.drawPath(sign);
        p.setPen(QPen(ground, std::max(1.2, u * 0.13), Qt::SolidLine, Qt::RoundCap));
        const double x = place.center().x();
        p.drawLine(QPointF(x, place.top() + u * 0.34), QPointF(x, place.top() + u * 0.64));
        p.drawPoint(QPointF(x, place.top() + u * 0.86));
    }
    p.restore();
}

}  // namespace zv::shell
