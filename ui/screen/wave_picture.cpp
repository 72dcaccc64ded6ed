#include "ui/screen/wave_picture.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "startup/text_codec.h"
#include "ui/screen/wave_columns.h"

namespace zv {

namespace {

constexpr double kTagPoints = 7.5, kTagLetter = 5.7, kTagSides = 10;
constexpr double kRulerPoints = 8, kRulerLetter = 5.6;
constexpr double kLeastTick = 84;  // pixels
constexpr int kShadeOpacity = 72, kLoopOpacity = 14;
constexpr double kLine = 1, kChosenLine = 3;
constexpr int kFadePieces = 24;
constexpr double kFadeDecibels = 60;  // of a logarithmic fade, as it is heard
constexpr double kDot = 4;
constexpr double kSide = 0.94;  // of half the height that full scale takes

constexpr Colour rgb(int red, int green, int blue) { return red + 256 * green + 65536 * blue; }

struct Painter {
    const WaveView& view;
    Drawing out;

    void area(double x, double y, double width, double height, Colour colour, int opacity = 100) {
        const double from = std::max(0.0, x), to = std::min(view.width, x + width);
        if (to <= from) return;
        out.push_back({.what = Stroke::What::area,
                       .x = from,
                       .y = y,
                       .width = to - from,
                       .height = height,
                       .colour = colour,
                       .opacity = opacity});
    }
    void line(double x, double y, double width, double height, Colour colour, double thickness) {
        out.push_back({.what = Stroke::What::line,
                       .x = x,
                       .y = y,
                       .width = width,
                       .height = height,
                       .colour = colour,
                       .thickness = thickness});
    }
    void text(double x, double y, double width, double height, Colour colour, const std::string& said,
              double points, bool bold) {
        out.push_back({.what = Stroke::What::text,
                       .x = x,
                       .y = y,
                       .width = width,
                       .height = height,
                       .colour = colour,
                       .text = said,
                       .bold = bold,
                       .points = points});
    }
    void columns(const WaveColumns& columns, double y, double height, Colour colour) {
        if (!columns || columns->empty()) return;
        out.push_back({.what = Stroke::What::peaks,
                       .x = 0,
                       .y = y,
                       .width = static_cast<double>(columns->size()),
                       .height = height,
                       .colour = colour,
                       .peaks = columns});
    }
};

/// Middle and half height of a side.
struct SidePlace {
    double middle, half;
};
SidePlace placeOf(const WaveView& view, std::size_t side) {
    const double half = view.soundHeight() / 4;
    return {half * (side == 0 ? 1 : 3), half * kSide};
}

void drawSamples(Painter& p, const SampleStretch& samples, Colour colour) {
    const auto [from, to] = ShownFrames(p.view);
    for (std::int64_t at = std::max(from, samples.first); at < std::min(to, samples.end()); ++at) {
        const auto& both = samples.frames[static_cast<std::size_t>(at - samples.first)];
        const double x = p.view.xOf(static_cast<double>(at) / p.view.rate);
        for (std::size_t side = 0; side < 2; ++side) {
            const SidePlace place = placeOf(p.view, side);
            const double y =
                place.middle - place.half * std::clamp(static_cast<double>(both[side]), -1.0, 1.0);
            p.area(x - kDot / 2, y - kDot / 2, kDot, kDot, colour);
        }
    }
}

/// A step of 1, 2, 5 by a power of ten below a second, of clock steps above.
double tickStep(double perPixel) {
    constexpr std::array kSteps{1.0, 2.0, 5.0, 10.0, 15.0, 30.0, 60.0, 120.0, 300.0, 600.0, 1800.0, 3600.0};
    const double least = perPixel * kLeastTick;
    if (least > 1) {
        const auto* step = std::ranges::find_if(kSteps, [&](double s) { return s >= least; });
        return step == kSteps.end() ? std::ceil(least / kSteps.back()) * kSteps.back() : *step;
    }
    const double power = std::pow(10, std::floor(std::log10(std::max(least, 1e-7))));
    for (const double times : {1.0, 2.0, 5.0})
        if (power * times >= least) return power * times;
    return power * 10;
}

void drawRuler(Painter& p, const WaveLook& look) {
    if (p.view.shown <= 0) return;
    const double step = tickStep(p.view.perPixel()), top = p.view.soundHeight();
    p.line(0, top, p.view.width, 0, look.axis, kLine);
    for (auto tick = static_cast<std::int64_t>(std::ceil(p.view.first / step));; ++tick) {
        const double at = static_cast<double>(tick) * step, x = p.view.xOf(at);
        const std::string said = WaveTime(at, step);
        const double width = kRulerLetter * static_cast<double>(said.size());
        if (x + width > p.view.width || at > p.view.length) return;
        p.line(x, top, 0, 4, look.axis, kLine);
        p.text(x + 4, top, width + kTagSides, kWaveRuler, look.text, said, kRulerPoints, false);
    }
}

void drawFade(Painter& p, const WaveMarks& marks, const WaveLook& look) {
    if (marks.fade <= 0) return;
    const double foot = p.view.soundHeight(), from = p.view.xOf(marks[CuePoint::stop]);
    const double width = p.view.xOf(marks[CuePoint::stop] + marks.fade) - from;
    const auto level = [&](double part) {
        if (!marks.logFade) return 1 - part;
        return part >= 1 ? 0 : std::pow(10, -kFadeDecibels * part / 20);
    };
    const int pieces = marks.logFade ? kFadePieces : 1;
    for (int i = 0; i < pieces; ++i) {
        const double a = static_cast<double>(i) / pieces, b = static_cast<double>(i + 1) / pieces;
        p.line(from + width * a, foot * (1 - level(a)), width * (b - a), foot * (level(a) - level(b)),
               look.fade, 2);
    }
}

void drawHandle(Painter& p, const WaveMarks& marks, CuePoint point, const std::string& name, Colour colour,
                const WaveLook& look) {
    const double x = p.view.xOf(marks[point]);
    const bool chosen = marks.chosen == point;
    if (x < -kChosenLine || x > p.view.width + kChosenLine) return;
    const double line = chosen ? kChosenLine : 2, left = std::clamp(x - line / 2, 0.0, p.view.width - line);
    p.area(left, 0, line, p.view.soundHeight(), colour);
    const WaveTag tag = TagOf(p.view, marks, point);
    p.area(tag.x, tag.y, tag.width, kWaveTag, colour);
    p.text(tag.x + kTagSides / 2, tag.y, tag.width - kTagSides / 2, kWaveTag, look.tagText, name, kTagPoints,
           true);
}

}  // namespace

WaveLook WaveLookOf(bool dark) {
    if (dark)
        return {.ground = rgb(0x0E, 0x11, 0x14),
                .peaks = rgb(0x2C, 0x6B, 0x80),
                .rms = rgb(0x7F, 0xD6, 0xEA),
                .axis = rgb(0x2C, 0x33, 0x3A),
                .shade = rgb(0x0E, 0x11, 0x14),
                .start = rgb(0x84, 0xF5, 0x8F),
                .stop = rgb(0xFF, 0x8B, 0x85),
                .loop = rgb(0xFF, 0xC0, 0x7A),
                .fade = rgb(0xFF, 0x9A, 0x3C),
                .playhead = rgb(0xFF, 0xFF, 0xFF),
                .text = rgb(0x9B, 0xA1, 0xA9),
                .tagText = rgb(0x10, 0x14, 0x18)};
    return {.ground = rgb(0xFF, 0xFF, 0xFF),
            .peaks = rgb(0xA3, 0xCA, 0xDD),
            .rms = rgb(0x2D, 0x6E, 0x92),
            .axis = rgb(0xC3, 0xC7, 0xCD),
            .shade = rgb(0xF0, 0xF1, 0xF3),
            .start = rgb(0x1F, 0x8A, 0x45),
            .stop = rgb(0xC4, 0x31, 0x2A),
            .loop = rgb(0xB8, 0x69, 0x0C),
            .fade = rgb(0xD9, 0x6A, 0x00),
            .playhead = rgb(0x16, 0x18, 0x1B),
            .text = rgb(0x67, 0x6D, 0x75),
            .tagText = rgb(0xFF, 0xFF, 0xFF)};
}

double TagWidth(const std::string& name) {
    return kTagLetter * static_cast<double>(characterCount(name)) + kTagSides;
}

std::string WaveTime(double seconds, double step) {
    int decimals = 0;
    for (double s = step; s < 1 - 1e-9 && decimals < 6; s *= 10) ++decimals;
    const double unit = std::pow(10, decimals);
    const auto units = std::llround(seconds * unit);
    const auto whole = static_cast<std::int64_t>(static_cast<double>(units) / unit);
    char text[64];
    std::snprintf(text, sizeof text, "%lld:%02lld", static_cast<long long>(whole / 60),
                  static_cast<long long>(whole % 60));
    std::string said = text;
    if (decimals > 0) {
        std::snprintf(text, sizeof text, ".%0*lld", decimals,
                      static_cast<long long>(units - whole * std::llround(unit)));
        said += text;
    }
    return said;
}

Drawing DrawWave(const WaveView& view, const WaveMarks& marks, const WaveShape& shape,
                 const SampleStretch& samples, const std::array<std::string, kCuePoints>& names,
                 const WaveLook& look) {
    Painter p{view, {}};
    const double foot = view.soundHeight();
    const auto x = [&](CuePoint point) { return view.xOf(marks[point]); };
    if (marks.loop)
        p.area(x(CuePoint::loopIn), 0, x(CuePoint::loopOut) - x(CuePoint::loopIn), foot, look.loop,
               kLoopOpacity);
    for (std::size_t side = 0; side < 2; ++side) {
        const SidePlace place = placeOf(view, side);
        p.line(0, place.middle, view.width, 0, look.axis, kLine);
        p.columns(shape.peaks[side], place.middle - place.half, 2 * place.half, look.peaks);
        p.columns(shape.rms[side], place.middle - place.half, 2 * place.half, look.rms);
    }
    if (shape.dots) drawSamples(p, samples, look.rms);
    p.area(0, 0, x(CuePoint::start), foot, look.shade, kShadeOpacity);
    const double silent = view.xOf(marks[CuePoint::stop] + marks.fade);
    p.area(silent, 0, view.width - silent, foot, look.shade, kShadeOpacity);
    drawRuler(p, look);
    drawFade(p, marks, look);
    if (marks.loop)
        for (const CuePoint point : {CuePoint::loopIn, CuePoint::loopOut})
            drawHandle(p, marks, point, names[static_cast<std::size_t>(point)], look.loop, look);
    drawHandle(p, marks, CuePoint::start, names[0], look.start, look);
    drawHandle(p, marks, CuePoint::stop, names[1], look.stop, look);
    // The last stroke, so that only its own places change while it moves.
    if (marks.playhead) p.area(std::round(view.xOf(*marks.playhead)), 0, 2, foot, look.playhead);
    return std::move(p.out);
}

}  // namespace zv
