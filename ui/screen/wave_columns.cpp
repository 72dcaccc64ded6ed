#include "ui/screen/wave_columns.h"

#include <algorithm>
#include <cmath>

namespace zv {

namespace {

constexpr double kRmsFrames = 8;  ///< a column of fewer frames has no level of its own
constexpr double kDotPixels = 6;  ///< between samples, from which each is marked

struct Column {
    float low = 0, high = 0;
    double squares = 0;
    double frames = 0;

    void take(float from, float to) {
        low = frames == 0 ? from : std::min(low, from);
        high = frames == 0 ? to : std::max(high, to);
    }
};

struct Collected {
    std::vector<WaveColumn> peaks, rms;

    void add(const Column& column, bool level) {
        const auto held = [](float v) { return std::clamp(v, -1.0F, 1.0F); };
        peaks.emplace_back(held(column.low), held(column.high));
        if (!level) return;
        const auto mean = static_cast<float>(std::sqrt(column.squares / std::max(1.0, column.frames)));
        rms.emplace_back(-held(mean), held(mean));
    }
};

void fromBins(const WaveView& view, const Waveform& outline, std::size_t side, Collected& into) {
    const double perColumn = view.perPixel() * view.rate;
    const std::size_t level = outline.levelFor(perColumn);
    const auto& bins = outline.bins[level][side];
    const auto size = static_cast<double>(Waveform::framesPerBin(level));
    const auto columns = static_cast<int>(view.width);
    for (int c = 0; c < columns; ++c) {
        const double from = (view.first * view.rate + c * perColumn) / size;
        const auto first = static_cast<std::size_t>(std::max(0.0, from));
        const auto last = std::max(first + 1, static_cast<std::size_t>(from + perColumn / size));
        if (first >= bins.size()) return;
        Column column;
        for (std::size_t b = first; b < std::min(last, bins.size()); ++b) {
            column.take(bins[b].low, bins[b].high);
            column.squares += static_cast<double>(bins[b].rms) * bins[b].rms;
            ++column.frames;
        }
        into.add(column, true);
    }
}

/// The value between two samples, on a straight line.
float between(const SampleStretch& s, std::size_t side, double frame) {
    const double last = static_cast<double>(s.frames.size()) - 1;
    const double at = std::clamp(frame - static_cast<double>(s.first), 0.0, last);
    const auto left = static_cast<std::size_t>(at);
    const std::size_t right = std::min(left + 1, s.frames.size() - 1);
    const auto part = static_cast<float>(at - static_cast<double>(left));
    return s.frames[left][side] * (1 - part) + s.frames[right][side] * part;
}

void fromSamples(const WaveView& view, const SampleStretch& s, std::size_t side, Collected& into) {
    const double perColumn = view.perPixel() * view.rate;
    const auto columns = static_cast<int>(view.width);
    for (int c = 0; c < columns; ++c) {
        const double from = view.first * view.rate + c * perColumn, to = from + perColumn;
        if (from >= static_cast<double>(s.end())) return;
        Column column;
        const auto end = std::min(s.end(), static_cast<std::int64_t>(std::ceil(to)));
        for (auto at = std::max(s.first, static_cast<std::int64_t>(std::ceil(from))); at < end; ++at) {
            const float value = s.frames[static_cast<std::size_t>(at - s.first)][side];
            column.take(value, value);
            column.squares += static_cast<double>(value) * value;
            ++column.frames;
        }
        // From edge to edge, so that neighbouring columns touch.
        const auto [low, high] = std::minmax({between(s, side, from), between(s, side, to)});
        column.take(low, high);
        into.add(column, perColumn >= kRmsFrames);
    }
}

}  // namespace

std::pair<std::int64_t, std::int64_t> ShownFrames(const WaveView& view) {
    return {static_cast<std::int64_t>(std::floor(view.first * view.rate)),
            static_cast<std::int64_t>(std::ceil((view.first + view.shown) * view.rate))};
}

bool NeedsSamples(const WaveView& view, const Waveform& outline) {
    return view.perPixel() * view.rate < static_cast<double>(Waveform::framesPerBin(outline.finest()));
}

WaveShape ShapeOf(const WaveView& view, const Outline& outline, const SampleStretch& samples) {
    WaveShape shape;
    if (!outline || view.shown <= 0 || view.width < 1) return shape;
    const auto [from, to] = ShownFrames(view);
    const bool close = NeedsSamples(view, *outline) && samples.rate > 0 && samples.first <= from &&
                       samples.end() >= std::min(to, static_cast<std::int64_t>(outline->frames));
    for (std::size_t side = 0; side < 2; ++side) {
        Collected found;
        if (close)
            fromSamples(view, samples, side, found);
        else
            fromBins(view, *outline, side, found);
        shape.peaks[side] = std::make_shared<const std::vector<WaveColumn>>(std::move(found.peaks));
        shape.rms[side] = std::make_shared<const std::vector<WaveColumn>>(std::move(found.rms));
    }
    shape.dots = close && view.perPixel() * view.rate * kDotPixels < 1;
    return shape;
}

}  // namespace zv
