#include "engine/dsp/peak_eq.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "engine/dsp/lanes.h"

namespace zv::dsp {
namespace {
namespace plain {
#include "engine/dsp/peak_eq_kernels.h"
}
#if defined(__x86_64__)
#pragma GCC push_options
#pragma GCC target("avx2")
namespace wide {
#include "engine/dsp/peak_eq_kernels.h"
}
#pragma GCC pop_options
#else
namespace wide = plain;
#endif

constexpr double kRampSeconds = 0.02;
constexpr double kSettleSeconds = 0.3;    // longer than any band of the program rings
constexpr std::size_t kRunFrames = 4096;  // most frames of one run of a kernel

bool sensible(const PeakBand& band, double rate) {
    return std::isfinite(band.gainDb) && std::isfinite(band.octaves) && std::isfinite(band.q) &&
           band.centreHz > 0 && band.centreHz < rate / 2 && (band.q > 0 || band.octaves > 0);
}

void setLane(std::array<EqGroup::Lanes, EqGroup::kCoefficients>& lanes, std::size_t lane,
             const Biquad& biquad) {
    lanes[EqGroup::kB0][lane] = biquad.b0;
    lanes[EqGroup::kB1][lane] = biquad.b1;
    lanes[EqGroup::kB2][lane] = biquad.b2;
    lanes[EqGroup::kA1][lane] = biquad.a1;
    lanes[EqGroup::kA2][lane] = biquad.a2;
}

bool sameLane(const std::array<EqGroup::Lanes, EqGroup::kCoefficients>& a,
              const std::array<EqGroup::Lanes, EqGroup::kCoefficients>& b, std::size_t lane) {
    for (std::size_t k = 0; k < a.size(); ++k)
        if (a[k][lane] != b[k][lane]) return false;
    return true;
}

}  // namespace

bool isFlat(const PeakBand& band, double rate) { return band.gainDb == 0 || !sensible(band, rate); }

Biquad designPeak(const PeakBand& band, double rate) {
    if (!sensible(band, rate)) return {};
    constexpr double kMostExponent = 50;  // just below half the rate the bandwidth formula runs to infinity
    const double w0 = 2 * std::numbers::pi * band.centreHz / rate;
    const double sine = std::sin(w0);
    const double alpha =
        band.q > 0
            ? sine / (2 * band.q)
            : sine * std::sinh(std::min(std::numbers::ln2 / 2 * band.octaves * w0 / sine, kMostExponent));
    const double a = std::pow(10.0, std::clamp(band.gainDb, -120.0, 120.0) / 40);
    const double a0 = 1 + alpha / a;
    const auto cut = [a0](double v) { return static_cast<float>(v / a0); };
    const float middle = cut(-2 * std::cos(w0));
    return {cut(1 + alpha * a), middle, cut(1 - alpha * a), middle, cut(1 - alpha / a)};
}

PeakEq::PeakEq(double rate, std::size_t bands)
    : rate_(rate),
      rampFrames_(static_cast<std::uint32_t>(std::max(1.0, rate * kRampSeconds))),
      settleFrames_(static_cast<std::uint32_t>(std::max(1.0, rate * kSettleSeconds))),
      groups_(std::max<std::size_t>(1, (bands + 7) / 8)) {
    for (EqGroup& group : groups_) {
        for (std::size_t lane = 0; lane < kLaneCount; ++lane) {
            setLane(group.now, lane, {});
            setLane(group.target, lane, {});
            group.flat[lane] = true;
        }
    }
}

void PeakEq::setBand(std::size_t index, const PeakBand& band) {
    if (index >= capacity()) return;
    EqGroup& group = groups_[index / kLaneCount];
    const std::size_t lane = index % kLaneCount;
    const auto before = group.target;
    group.flat[lane] = isFlat(band, rate_);
    // At rest a flat band has no memory to keep alive; in a group that runs it keeps its poles and fades to b
    // = a.
    setLane(group.target, lane,
            group.flat[lane] && !(group.active && passed_) ? Biquad{} : designPeak(band, rate_));
    if (sameLane(before, group.target, lane)) return;

    const bool flat = std::all_of(group.flat.begin(), group.flat.end(), [](bool f) { return f; });
    if (!passed_ || (!group.active && flat)) {
        group.now = group.target;
        group.active = !flat;
    } else {
        if (!group.active && sameLane(group.now, before, lane)) {
            PeakBand start = band;
            start.gainDb = 0;
            setLane(group.now, lane, designPeak(start, rate_));
        }
        for (std::size_t k = 0; k < group.now.size(); ++k)
            for (std::size_t l = 0; l < kLaneCount; ++l)
                group.step[k][l] = (group.target[k][l] - group.now[k][l]) / static_cast<float>(rampFrames_);
        group.rampLeft = rampFrames_;
        group.active = true;
    }
    group.settleLeft = flat ? settleFrames_ : 0;
    active_ = static_cast<std::size_t>(
        std::count_if(groups_.begin(), groups_.end(), [](auto& g) { return g.active; }));
}

void PeakEq::run(EqGroup& group, float* stereo, std::size_t frames) {
    const bool w = wideChosen();
    while (frames > 0) {
        std::size_t part = std::min(frames, kRunFrames);
        if (group.rampLeft > 0) {
            part = std::min<std::size_t>(part, group.rampLeft);
            (w ? wide::filter<true> : plain::filter<true>)(group, stereo, part);
            group.rampLeft -= static_cast<std::uint32_t>(part);
            if (group.rampLeft == 0) group.now = group.target;
        } else {
            if (group.settleLeft > 0) part = std::min<std::size_t>(part, group.settleLeft);
            (w ? wide::filter<false> : plain::filter<false>)(group, stereo, part);
            if (group.settleLeft > 0) {
                group.settleLeft -= static_cast<std::uint32_t>(part);
                if (group.settleLeft == 0) return settle(group);
            }
        }
        stereo += 2 * part;
        frames -= part;
    }
}

/// The group changes nothing any more: out of the path with it.
void PeakEq::settle(EqGroup& group) {
    for (std::size_t lane = 0; lane < kLaneCount; ++lane) setLane(group.target, lane, {});
    group.now = group.target;
    group.left = group.right = {};
    group.active = false;
    --active_;
}

void PeakEq::process(float* stereo, std::size_t frames) {
    if (frames == 0) return;
    passed_ = true;
    if (active_ == 0) return;
    for (EqGroup& group : groups_)
        if (group.active) run(group, stereo, frames);
}

void PeakEq::reset() {
    if (!passed_) return;
    passed_ = false;
    for (EqGroup& group : groups_) {
        if (!group.active) continue;
        group.left = group.right = {};
        group.rampLeft = group.settleLeft = 0;
        group.now = group.target;
        if (std::all_of(group.flat.begin(), group.flat.end(), [](bool f) { return f; })) settle(group);
    }
}

}  // namespace zv::dsp
