#include "engine/dsp/transposer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <mutex>
#include <numbers>

#include "engine/dsp/lanes.h"

namespace zv::engine::dsp {
namespace {

#define ZV_KERNELS "engine/dsp/transposer_kernels.h"
#include "engine/dsp/two_paths.h"

constexpr std::size_t kZeros =
    24;  ///< frames that the filter reaches to either side while nothing can fold over
constexpr double kLeastScale = 0.125;  ///< of the cutoff; at higher speeds some folding is accepted
constexpr double kAttenuation = 86, kCutoff = 0.47;
constexpr std::size_t kFine = 512;    ///< points of the filter's shape a frame
constexpr std::size_t kPhases = 256;  ///< rows of a table at full cutoff; fewer where the filter is wider
constexpr int kSteady = 4;            ///< calls after which a table of its own is worth making
constexpr std::size_t kSteps = 16;    ///< tables of moving cutoffs an octave
constexpr std::size_t kOctaves = 3;   ///< down to kLeastScale
constexpr std::size_t kRoom = 2048;

double scaleOf(double speed) { return speed <= 1 ? 1 : std::max(1 / speed, kLeastScale); }

std::size_t halfOf(double scale) {
    return static_cast<std::size_t>(std::ceil(static_cast<double>(kZeros) / scale));
}

std::size_t tapsOf(double scale) { return (2 * halfOf(scale) + 7) / 8 * 8; }

/// Modified Bessel function of the first kind, order 0.
double bessel0(double x) {
    double sum = 1, term = 1;
    for (int k = 1; term > sum * 1e-17; ++k) {
        term *= (x / (2 * k)) * (x / (2 * k));
        sum += term;
    }
    return sum;
}

/// One side of the filter.
const std::array<float, kZeros * kFine + 2>& shape() {
    static const auto made = [] {
        std::array<float, kZeros * kFine + 2> out{};
        const double beta = 0.1102 * (kAttenuation - 8.7), most = bessel0(beta);
        for (std::size_t i = 0; i < kZeros * kFine; ++i) {
            const double x = static_cast<double>(i) / kFine, angle = 2 * std::numbers::pi * kCutoff * x;
            const double place = x / static_cast<double>(kZeros);
            out[i] = static_cast<float>((i == 0 ? 1 : std::sin(angle) / angle) * 2 * kCutoff *
                                        bessel0(beta * std::sqrt(1 - place * place)) / most);
        }
        return out;
    }();
    return made;
}

/// The weights of the frames around a place `back` behind the middle one.
void weigh(std::span<float> row, double scale, double back) {
    const auto& fine = shape();
    const auto half = static_cast<double>(halfOf(scale));
    for (std::size_t k = 0; k < row.size(); ++k) {
        const double x = std::fabs(static_cast<double>(k) - half + 1 - back) * scale * kFine;
        const auto at = static_cast<std::size_t>(x);
        if (at >= kZeros * kFine) {
            row[k] = 0;
            continue;
        }
        const auto f = static_cast<float>(x - static_cast<double>(at));
        row[k] = static_cast<float>(scale) * (fine[at] + f * (fine[at + 1] - fine[at]));
    }
}

}  // namespace

struct TransposerRows {
    explicit TransposerRows(double forScale)
        : scale(forScale),
          half(halfOf(forScale)),
          taps(tapsOf(forScale)),
          phases(static_cast<std::size_t>(std::ceil(kPhases * forScale))),
          rows((phases + 1) * taps) {
        for (std::size_t p = 0; p <= phases; ++p)
            weigh({rows.data() + p * taps, taps}, scale,
                  static_cast<double>(p) / static_cast<double>(phases));
    }
    /// The sound `fraction` behind the frame that `middle` points to.
    float at(const float* middle, double fraction) const {
        const double phase = fraction * static_cast<double>(phases);
        const auto p = static_cast<std::size_t>(phase);
        const auto f = static_cast<float>(phase - static_cast<double>(p));
        const float *row = rows.data() + p * taps, *x = middle - static_cast<std::ptrdiff_t>(half) + 1;
        return wideChosen() ? wide::dotBetween(x, row, row + taps, taps, f)
                            : plain::dotBetween(x, row, row + taps, taps, f);
    }
    double scale;
    std::size_t half, taps, phases;
    std::vector<float> rows;
};

namespace {

/// The table of the cutoff `step` steps below the full one. Made once, for all.
const TransposerRows& stepRows(std::size_t step) {
    constexpr std::size_t kMost = kSteps * kOctaves;
    static std::array<std::once_flag, kMost + 1> made;
    static std::array<std::unique_ptr<const TransposerRows>, kMost + 1> all;
    step = std::min(step, kMost);
    std::call_once(made[step], [step] {
        all[step] = std::make_unique<TransposerRows>(std::exp2(-static_cast<double>(step) / kSteps));
    });
    return *all[step];
}

}  // namespace

Transposer::Transposer(std::uint32_t channels) : channels_(std::max(channels, 1u)) {
    const std::size_t most = tapsOf(kLeastScale);
    stride_ = 2 * most + kRoom;
    window_.resize(stride_ * channels_);
}

Transposer::~Transposer() = default;

std::size_t Transposer::reach(double speed) {
    const double scale = scaleOf(speed);
    // While the cutoff moves, as far as the next wider table.
    return scale == 1 ? kZeros : halfOf(std::max(scale * std::exp2(-1.0 / kSteps), kLeastScale)) + 1;
}

void Transposer::reset(std::size_t lead) {
    std::fill(window_.begin(), window_.end(), 0.0F);
    filled_ = halfOf(kLeastScale);  // the silence before everything
    first_ = -static_cast<std::int64_t>(filled_);
    whole_ = static_cast<std::int64_t>(lead);
    fraction_ = 0;
}

std::size_t Transposer::needed(std::size_t frames, double speed) const {
    if (frames == 0) return 0;
    const double last = fraction_ + static_cast<double>(frames - 1) * speed;
    const std::int64_t end =
        whole_ + static_cast<std::int64_t>(last) + static_cast<std::int64_t>(reach(speed)) + 1;
    return static_cast<std::size_t>(
        std::max<std::int64_t>(0, end - (first_ + static_cast<std::int64_t>(filled_))));
}

void Transposer::push(std::span<const float> in) {
    const std::size_t frames = in.size() / channels_, slack = tapsOf(kLeastScale);
    if (filled_ + frames + slack > stride_) {
        // Drop the frames that no filter reaches any more.
        const std::int64_t from = whole_ - static_cast<std::int64_t>(halfOf(kLeastScale));
        const auto gone = static_cast<std::size_t>(
            std::clamp<std::int64_t>(from - first_, 0, static_cast<std::int64_t>(filled_)));
        const std::size_t keep = filled_ - gone, wider = std::max(stride_, keep + frames + slack + kRoom);
        std::vector<float> wide(wider == stride_ ? 0 : wider * channels_, 0.0F);
        for (std::uint32_t c = 0; c < channels_; ++c) {
            const float* old = window_.data() + c * stride_ + gone;
            std::copy(old, old + keep, (wide.empty() ? window_.data() : wide.data()) + c * wider);
        }
        if (!wide.empty()) window_ = std::move(wide);
        stride_ = wider;
        filled_ = keep;
        first_ += static_cast<std::int64_t>(gone);
    }
    for (std::uint32_t c = 0; c < channels_; ++c) {
        float* to = window_.data() + c * stride_ + filled_;
        for (std::size_t i = 0; i < frames; ++i) to[i] = in[i * channels_ + c];
    }
    filled_ += frames;
}

/// A table, as soon as it is worth its making; null while the cutoff moves.
const TransposerRows* Transposer::rowsFor(double scale) {
    if (scale == 1) return &stepRows(0);
    if (own_ && own_->scale == scale) return own_.get();
    steady_ = scale == lastScale_ ? steady_ + 1 : 0;
    lastScale_ = scale;
    if (steady_ < kSteady) return nullptr;
    own_ = std::make_unique<TransposerRows>(scale);
    return own_.get();
}

void Transposer::make(std::span<float> out, double speed) {
    const double scale = scaleOf(speed);
    const TransposerRows* const own = rowsFor(scale);
    // A moving cutoff lies between those of two tables.
    const double step = own ? 0 : -std::log2(scale) * kSteps;
    const auto whole = static_cast<std::size_t>(step);
    const TransposerRows &table = own ? *own : stepRows(whole), &lower = own ? *own : stepRows(whole + 1);
    const auto part = static_cast<float>(step - static_cast<double>(whole));
    float* to = out.data();
    for (std::size_t i = 0; i < out.size() / channels_; ++i) {
        const float* x = window_.data() + (whole_ - first_);
        for (std::uint32_t c = 0; c < channels_; ++c, x += stride_) {
            const float here = table.at(x, fraction_);
            *to++ = own ? here : here + part * (lower.at(x, fraction_) - here);
        }
        fraction_ += speed;
        const double ahead = std::floor(fraction_);
        whole_ += static_cast<std::int64_t>(ahead);
        fraction_ -= ahead;
    }
}

}  // namespace zv::engine::dsp
