#include "platform/qt/view/jingle_marks.h"

#include <QFont>
#include <QPainter>

#include "platform/qt/view/theme.h"

namespace zv::shell {
namespace {

constexpr double kLeastGlyph = 9;   // pixels of a chip
constexpr double kHeavyBelow = 14;  // of a chip: below it the glyph has the heavier lines
constexpr double kGlyphShare = 0.92, kGlyphWidth = 0.8, kGlyphHeight = 0.72;  // of the font's size
constexpr double kRounding = 0.25;
constexpr double kDeep = 0.85;  // of the glyph towards black or white

}  // namespace

void paintMark(QPainter& p, const QRectF& place, const QString& glyph, const QColor& colour,
               const QColor& face) {
    const QColor away = lightness(face) < 0.5 ? QColor(Qt::black) : QColor(0x30, 0x34, 0x3A);
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    // A thin ring in the opposite lightness, so that a mark is seen on a face of its own colour.
    p.setPen(QPen(mixed(face, away, 0.55), 1));
    p.setBrush(colour.isValid() ? QBrush(colour) : QBrush(Qt::NoBrush));
    const double side = place.width();
    const QRectF inside = place.adjusted(0.5, 0.5, -0.5, -0.5);
    if (side < kLeastGlyph) {
        p.drawEllipse(inside);
        p.restore();
        return;
    }
    p.drawRoundedRect(inside, side * kRounding, side * kRounding);
    const QColor ground = colour.isValid() ? colour : face;
    QFont font = symbolFont(side * kGlyphShare);
    if (side < kHeavyBelow) font.setFamily(QStringLiteral("MSSSMod"));
    p.setFont(font);
    p.setPen(legible(mixed(ground, lightness(ground) < 0.5 ? QColor(Qt::white) : QColor(Qt::black), kDeep),
                     ground));
    const double size = font.pixelSize();
    p.drawText(
        QPointF(place.center().x() - size * kGlyphWidth / 2, place.center().y() + size * kGlyphHeight / 2),
        glyph);
    p.restore();
}

}  // namespace zv::shell
