#include "engine/tempo/curve.h"

#include <algorithm>
#include <cmath>

namespace zv::engine {
namespace {

constexpr double kFloorRatio = 0.001;  ///< 60 dB
constexpr double kWhole = 100;         ///< percent

}  // namespace

double TempoParameters::transposition() const { return pitch == 0 ? rate : rate * std::exp2(pitch / 12); }

double TempoLine::at(std::uint64_t time) const {
    if (!moves(time)) return to;
    const auto passed = static_cast<double>(static_cast<std::int64_t>(time - begin));
    const double way = std::max(0.0, passed / static_cast<double>(frames));
    if (!ratios) return from + (to - from) * way;
    const double last = to + zero, first = std::max(from + zero, last * kFloorRatio);
    return first * std::pow(std::max(last, first * kFloorRatio) / first, way) - zero;
}

TempoParameters TempoCurve::at(std::uint64_t time) const {
    return {lines[0].at(time), lines[1].at(time), lines[2].at(time)};
}

bool TempoCurve::moves(std::uint64_t time) const {
    return std::ranges::any_of(lines, [&](const TempoLine& l) { return l.moves(time); });
}

std::uint64_t TempoCurve::restsFrom(std::uint64_t time) const {
    std::uint64_t left = 0;
    for (const TempoLine& l : lines)
        if (l.moves(time)) left = std::max(left, l.frames - (time - l.begin));
    return time + left;
}

bool TempoCurve::stretches(std::uint64_t time) const {
    const auto off = [&](const TempoLine& l) { return l.moves(time) || l.to != 0; };
    return off(line(TempoPart::Tempo)) || off(line(TempoPart::Pitch));
}

bool TempoCurve::transposes(std::uint64_t time) const {
    const TempoLine &pitch = line(TempoPart::Pitch), &rate = line(TempoPart::Rate);
    return pitch.moves(time) || pitch.to != 0 || rate.moves(time) || rate.to != 1;
}

void TempoCurve::move(TempoPart part, double value, std::uint64_t time, std::uint64_t frames, bool ratios) {
    TempoLine& l = line(part);
    l.from = l.at(time);
    l.to = value;
    l.begin = time;
    l.frames = l.from == value ? 0 : frames;
    l.ratios = ratios && part != TempoPart::Pitch;  // equal steps of semitones are equal ratios already
    l.zero = part == TempoPart::Tempo ? kWhole : 0;
}

double cutTempo(TempoPart part, double value) {
    const auto in = [value](double low, double high, double fallback) {
        return std::isfinite(value) ? std::clamp(value, low, high) : fallback;
    };
    if (part == TempoPart::Tempo) return in(-95, 5000, 0);
    if (part == TempoPart::Pitch) return in(-60, 60, 0);
    return in(0.05, 20, 1);
}

}  // namespace zv::engine
