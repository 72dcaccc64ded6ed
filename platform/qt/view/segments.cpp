#include "platform/qt/view/segments.h"

#include <QPolygonF>
#include <algorithm>
#include <array>

namespace zv::shell {
namespace {

// Bits of the segments in their customary order: a top, b and c right, d foot, e and f left, g middle.
constexpr int kA = 1, kB = 2, kC = 4, kD = 8, kE = 16, kF = 32, kG = 64;
constexpr int kAll = 127;

constexpr std::array<int, 10> kFigures{
    kA | kB | kC | kD | kE | kF, kB | kC,           kA | kB | kD | kE | kG,
    kA | kB | kC | kD | kG,      kB | kC | kF | kG, kA | kC | kD | kF | kG,
    kA | kC | kD | kE | kF | kG, kA | kB | kC,      kAll,
    kA | kB | kC | kD | kF | kG,
};

constexpr double kThickness = 0.185;  ///< of a segment, as a share of the figure's width
constexpr double kSlit = 0.028;       ///< between two segments, likewise
constexpr double kAspect = 0.47;      ///< width of a figure by its height
constexpr double kDot = 0.115;        ///< a point's side by the height

int segmentsOf(QChar c) { return c.isDigit() ? kFigures[static_cast<std::size_t>(c.digitValue())] : 0; }

QPainterPath outline(int segments, const QRectF& box) {
    const double x0 = box.left(), x1 = box.right(), y0 = box.top(), y1 = box.bottom(), m = box.center().y();
    const double t = box.width() * kThickness, s = box.width() * kSlit, h = t / 2;
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    const auto add = [&](int which, const QPolygonF& shape) {
        if (!(segments & which)) return;
        path.addPolygon(shape);
        path.closeSubpath();
    };
    // The outer edges are straight, the inner ends cut at 45 degrees, the middle ones pointed.
    add(kA, {{x0 + s, y0}, {x1 - s, y0}, {x1 - s - t, y0 + t}, {x0 + s + t, y0 + t}});
    add(kD, {{x0 + s + t, y1 - t}, {x1 - s - t, y1 - t}, {x1 - s, y1}, {x0 + s, y1}});
    add(kF, {{x0, y0 + s}, {x0 + t, y0 + t + s}, {x0 + t, m - h - s}, {x0 + h, m - s}, {x0, m - h - s}});
    add(kE, {{x0, m + h + s}, {x0 + h, m + s}, {x0 + t, m + h + s}, {x0 + t, y1 - t - s}, {x0, y1 - s}});
    add(kB, {{x1, y0 + s}, {x1, m - h - s}, {x1 - h, m - s}, {x1 - t, m - h - s}, {x1 - t, y0 + t + s}});
    add(kC, {{x1, m + h + s}, {x1, y1 - s}, {x1 - t, y1 - t - s}, {x1 - t, m + h + s}, {x1 - h, m + s}});
    add(kG, {{x0 + h + s, m},
             {x0 + t + s, m - h},
             {x1 - t - s, m - h},
             {x1 - h - s, m},
             {x1 - t - s, m + h},
             {x0 + t + s, m + h}});
    return path;
}

void addDot(QPainterPath& path, const QPointF& centre, double side) {
    path.addRoundedRect(QRectF(centre.x() - side / 2, centre.y() - side / 2, side, side), side * 0.12,
                        side * 0.12);
}

}  // namespace

QRectF figureBox(const QRectF& place) {
    const double height = std::min(place.height(), place.width() * 0.84 / kAspect);
    const double width = height * kAspect;
    return {place.center().x() - width / 2, place.bottom() - height, width, height};
}

QPainterPath allSegments(const QRectF& box) { return outline(kAll, box); }

QPainterPath litSegments(QChar figure, const QRectF& box) {
    if (figure == QLatin1Char(':') || figure == QLatin1Char('.') || figure == QLatin1Char(',')) {
        QPainterPath path;
        const double side = std::min(box.height() * kDot, box.width());
        if (figure == QLatin1Char(':')) {
            addDot(path, {box.center().x(), box.top() + box.height() * 0.3}, side);
            addDot(path, {box.center().x(), box.top() + box.height() * 0.7}, side);
        } else {
            addDot(path, {box.center().x(), box.bottom() - side / 2}, side);
        }
        return path;
    }
    return outline(segmentsOf(figure), box);
}

}  // namespace zv::shell
