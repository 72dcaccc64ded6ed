#include "engine/dsp/peak_eq.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "engine/dsp/lanes.h"

namespace zv::engine::dsp {
namespace {
#define ZV_KERNELS "engine/dsp/peak_eq_kernels.h"
#include "engine/dsp/two_paths.h"

constexpr double kRampSeconds = 0.02;
constexpr std::size_t kRunFrames = 4096;  // most frames of one run of a kernel

bool sensible(const PeakBand& band, double rate) {
    return band.centreHz > 0 && band.centreHz < rate / 2 && (band.q > 0 || band.octaves > 0);
}

/// alpha of the cookbook.
double alphaOf(const PeakBand& band, double w0) {
    constexpr double kMostExponent = 50;  // just below half the rate the bandwidth formula runs to infinity
    const double sine = std::sin(w0);
    if (band.q > 0) return sine / (2 * band.q);
    return sine * std::sinh(std::min(std::numbers::ln2 / 2 * band.octaves * w0 / sine, kMostExponent));
}

double amplitudeOf(const PeakBand& band) {
    return std::pow(10.0, std::clamp(band.gainDb, -120.0, 120.0) / 40);
}

/// The lane of a band in its group: four lanes for the even numbers, then four for the odd ones.
std::size_t laneOf(std::size_t band) { return band % 2 * (kLaneCount / 2) + band % kLaneCount / 2; }

void setFlat(EqGroup::Table& table, std::size_t lane) {
    table[EqGroup::kG][lane] = 1;
    table[EqGroup::kC1][lane] = table[EqGroup::kC2][lane] = 0;
}

void setLane(EqGroup::Table& table, std::size_t lane, const PeakBand& band, double rate) {
    const double w0 = 2 * std::numbers::pi * band.centreHz / rate, a = amplitudeOf(band);
    const double g = std::tan(w0 / 2), k = 2 * alphaOf(band, w0) / (std::sin(w0) * a), m = k * (a * a - 1);
    const double a1 = 1 / (1 + g * (g + k)), a2 = g * a1, a3 = g * a2;
    const auto set = [&](EqGroup::Coefficient c, double v) { table[c][lane] = static_cast<float>(v); };
    set(EqGroup::kP, 2 * a1 - 1);
    set(EqGroup::kQ, 2 * a2);
    set(EqGroup::kB, 2 * a3);
    set(EqGroup::kG, 1 + m * a2);
    set(EqGroup::kC1, m * a1);
    set(EqGroup::kC2, m * a2);
}

bool allFlat(const EqGroup& group) {
    return std::all_of(group.flat.begin(), group.flat.end(), [](bool f) { return f; });
}

}  // namespace

bool isFlat(const PeakBand& band, double rate) { return band.gainDb == 0 || !sensible(band, rate); }

PeakEq::PeakEq(double rate, std::size_t bands)
    : rate_(rate),
      rampFrames_(static_cast<std::uint32_t>(std::max(1.0, rate * kRampSeconds))),
      groups_(std::max<std::size_t>(1, (bands + 7) / 8)) {
    for (EqGroup& group : groups_) {
        group.flat.fill(true);
        for (std::size_t lane = 0; lane < kLaneCount; ++lane) {
            setFlat(group.now, lane);
            setFlat(group.target, lane);
        }
    }
}

void PeakEq::setBand(std::size_t index, const PeakBand& band) {
    EqGroup& group = groups_[index / kLaneCount];
    const std::size_t lane = laneOf(index);
    const bool flat = isFlat(band, rate_), wasFlat = group.flat[lane];
    if (band == group.bands[lane] || (flat && wasFlat)) return;
    group.bands[lane] = flat ? PeakBand{} : band;
    group.flat[lane] = flat;
    if (flat) {
        setFlat(group.target, lane);  // the poles stay until the gain is there
    } else {
        setLane(group.target, lane, band, rate_);
        if (wasFlat && group.now[EqGroup::kC1][lane] == 0) {  // a flat band takes the new poles at once
            for (const auto c : {EqGroup::kP, EqGroup::kQ, EqGroup::kB})
                group.now[c][lane] = group.target[c][lane];
            group.left.i1[lane] = group.left.i2[lane] = group.right.i1[lane] = group.right.i2[lane] = 0;
        }
    }
    if (!passed_) {
        group.now = group.target;
    } else {
        for (std::size_t k = 0; k < group.now.size(); ++k)
            for (std::size_t l = 0; l < kLaneCount; ++l)
                group.step[k][l] = (group.target[k][l] - group.now[k][l]) / static_cast<float>(rampFrames_);
        group.rampLeft = rampFrames_;
    }
    const bool active = group.rampLeft > 0 || !allFlat(group);
    if (active != group.active) active_ = active ? active_ + 1 : active_ - 1;
    group.active = active;
}

void PeakEq::run(EqGroup& group, float* stereo, std::size_t frames) {
    const bool w = wideChosen();
    while (frames > 0) {
        std::size_t part = std::min(frames, kRunFrames);
        if (group.rampLeft > 0) {
            part = std::min<std::size_t>(part, group.rampLeft);
            (w ? wide::filter<true> : plain::filter<true>)(group, stereo, part);
            group.rampLeft -= static_cast<std::uint32_t>(part);
            if (group.rampLeft == 0) {
                group.now = group.target;
                if (allFlat(group)) return rest(group);
            }
        } else {
            (w ? wide::filter<false> : plain::filter<false>)(group, stereo, part);
        }
        stereo += 2 * part;
        frames -= part;
    }
}

/// Takes a group that changes nothing any more out of the path.
void PeakEq::rest(EqGroup& group) {
    group.active = false;
    --active_;
}

void PeakEq::process(float* stereo, std::size_t frames) {
    passed_ = true;
    for (EqGroup& group : groups_)
        if (group.active) run(group, stereo, frames);
}

void PeakEq::prefetch() const {
    for (const EqGroup& group : groups_) {
        if (!group.active) continue;
        for (const EqGroup::Lanes& lanes : group.now) __builtin_prefetch(lanes.data());
        __builtin_prefetch(&group.left);
        __builtin_prefetch(&group.right);
    }
}

void PeakEq::reset() {
    passed_ = false;
    for (EqGroup& group : groups_) {
        if (!group.active) continue;
        group.left = group.right = {};
        group.rampLeft = 0;
        group.now = group.target;
        if (allFlat(group)) rest(group);
    }
}

}  // namespace zv::engine::dsp
