#include "ui/screen/wave_view.h"

#include <algorithm>
#include <cmath>

namespace zv {

namespace {

constexpr double kZoomStep = 1.5;
constexpr double kReach = 5;  ///< pixels beside a line that still take it

bool isAbove(CuePoint point) { return point == CuePoint::start || point == CuePoint::stop; }

}  // namespace

void WaveView::showAll() {
    first = 0;
    shown = length;
}

void WaveView::hold() {
    const double least = rate > 0 ? width / kMostPixels / rate : length;
    shown = std::min(std::max(shown, least), length);
    first = std::max(0.0, std::min(first, length - shown));
}

void WaveView::zoom(double x, int steps) {
    const double pinned = secondsAt(x);
    shown *= std::pow(kZoomStep, -steps);
    hold();
    first = pinned - x * perPixel();
    hold();
}

void WaveView::moveBy(double seconds) {
    first += seconds;
    hold();
}

void WaveView::reveal(double seconds) {
    if (seconds < first || seconds > first + shown) first = seconds - shown / 2;
    hold();
}

WaveTag TagOf(const WaveView& view, const WaveMarks& marks, CuePoint point) {
    const double width = marks.tagWidths[static_cast<std::size_t>(point)];
    const double line = view.xOf(marks[point]);
    const bool opens = point == CuePoint::start || point == CuePoint::loopIn;
    double x = opens ? line : line - width;
    // At the edge of the picture a name stays within it.
    if (line >= 0 && line <= view.width) x = std::clamp(x, 0.0, std::max(0.0, view.width - width));
    return {x, isAbove(point) ? 0 : view.soundHeight() - kWaveTag, width};
}

std::optional<CuePoint> HandleAt(const WaveView& view, const WaveMarks& marks, double x, double y) {
    std::optional<CuePoint> found;
    double best = 0;
    if (y < 0 || y > view.soundHeight()) return found;
    for (int i = 0; i < kCuePoints; ++i) {
        const auto point = static_cast<CuePoint>(i);
        const bool ofLoop = !isAbove(point);
        if (ofLoop && !marks.loop) continue;
        const WaveTag tag = TagOf(view, marks, point);
        const bool onTag = x >= tag.x && x < tag.x + tag.width && y >= tag.y && y < tag.y + kWaveTag;
        const double off = std::abs(x - view.xOf(marks[point]));
        if (!onTag && off > kReach) continue;
        const bool ownHalf = isAbove(point) == (y < view.soundHeight() / 2);
        const double cost = (onTag ? 0 : off + 1) + (ownHalf ? 0 : kReach);
        if (found && cost >= best) continue;
        found = point;
        best = cost;
    }
    return found;
}

}  // namespace zv
