#include "engine/dsp/stretcher.h"

#include <algorithm>
#include <cmath>

#include "engine/dsp/lanes.h"

namespace zv::engine::dsp {
namespace {

#define ZV_KERNELS "engine/dsp/stretcher_kernels.h"
#include "engine/dsp/two_paths.h"

constexpr double kOverlapSeconds = 0.008;
// Slow sound needs long sequences, or its tones flutter; fast sound needs short ones, or its beats are doubled.
constexpr double kSlow = 0.5, kFast = 2;  ///< tempos between which the lengths change
constexpr double kSlowSequence = 0.09, kFastSequence = 0.04, kSlowSearch = 0.02, kFastSearch = 0.015;
constexpr double kBias = 0.01,
                 kEdgeLoss = 0.25;  ///< towards the middle of the search, where nothing is alike

std::size_t framesOf(double seconds, std::uint32_t rate) { return static_cast<std::size_t>(seconds * rate); }
std::size_t eights(std::size_t frames) { return std::max<std::size_t>(1, frames / kLaneCount) * kLaneCount; }

/// Between the values for slow and for fast sound, to the millisecond.
double between(double tempo, double slow, double fast) {
    const double way = (std::clamp(tempo, kSlow, kFast) - kSlow) / (kFast - kSlow);
    return std::round((slow + (fast - slow) * way) * 1000) / 1000;
}

}  // namespace

Stretcher::Stretcher(std::uint32_t rate, std::uint32_t channels)
    : rate_(rate), channels_(channels), overlap_(eights(framesOf(kOverlapSeconds, rate))) {
    end_.resize(overlap_ * channels_);
    setTempo(1);
}

void Stretcher::setTempo(double ratio) {
    tempo_ = ratio;
    const std::size_t whole = framesOf(between(ratio, kSlowSequence, kFastSequence), rate_);
    sequence_ = std::max(whole, 2 * overlap_ + 1) - overlap_;
    search_ = eights(framesOf(between(ratio, kSlowSearch, kFastSearch), rate_));
}

/// The frame from first_ on at which the search begins: half of it lies before the place.
std::size_t Stretcher::windowStart() const {
    return static_cast<std::size_t>(std::max(0.0, std::round(place_) - static_cast<double>(search_ / 2)));
}

std::size_t Stretcher::lacking() const {
    const std::size_t held = (held_.size() - first_) / channels_;
    const std::size_t needed = begun_ ? windowStart() + search_ + sequence_ + overlap_ : sequence_;
    return skip_ + needed - std::min(needed, held);
}

void Stretcher::put(std::span<const float> in) {
    const std::size_t skipped = std::min(skip_, in.size() / channels_);
    skip_ -= skipped;
    in = in.subspan(skipped * channels_);
    if (held_.size() + in.size() > held_.capacity()) {
        held_.erase(held_.begin(), held_.begin() + static_cast<std::ptrdiff_t>(first_));
        first_ = 0;
    }
    held_.insert(held_.end(), in.begin(), in.end());
}

/// The frame from first_ on, within the search that begins at frame `window`, where the sound is most like end_.
std::size_t Stretcher::bestStart(std::size_t window) {
    const float* const from = held_.data() + first_ + window * channels_;
    const std::size_t samples = overlap_ * channels_;
    alike_.resize(search_);
    (wideChosen() ? wide::correlate : plain::correlate)(alike_.data(), end_.data(), samples, from, channels_,
                                                        search_);
    const auto power = [](const float* sample, std::size_t count) {
        double sum = 0;
        for (const float* const last = sample + count; sample != last; ++sample)
            sum += static_cast<double>(*sample) * *sample;
        return sum;
    };
    const double own = power(end_.data(), samples);
    double there = power(from, samples), best = 0;
    std::size_t place = search_ / 2;
    for (std::size_t i = 0; i < search_; ++i) {
        const double both = own * there;
        const double likeness = both > 0 ? alike_[i] / std::sqrt(both) : 0;
        const double aside = 2 * static_cast<double>(i) / static_cast<double>(search_) - 1;
        const double score = (likeness + kBias) * (1 - kEdgeLoss * aside * aside);
        if (score > best) {
            best = score;
            place = i;
        }
        const float* const gone = from + i * channels_;
        there = std::max(0.0, there + power(gone + samples, channels_) - power(gone, channels_));
    }
    return window + place;
}

/// Moves the place of the next sequence on by `frames` of output, and drops the source frames before its search.
void Stretcher::pass(std::size_t frames) {
    place_ += tempo_ * static_cast<double>(frames);
    const double widest = std::ceil(kSlowSearch * rate_ / 2);
    const auto done = static_cast<std::size_t>(std::max(0.0, std::floor(place_) - widest));
    const std::size_t here = std::min(done, (held_.size() - first_) / channels_);
    place_ -= static_cast<double>(done);
    first_ += here * channels_;
    skip_ = done - here;
}

std::size_t Stretcher::make() {
    if (ready() > 0 || lacking() > 0) return 0;
    const std::size_t fade = begun_ ? overlap_ : 0, frames = sequence_ - (overlap_ - fade);
    const float* const from = held_.data() + first_ + (begun_ ? bestStart(windowStart()) : 0) * channels_;
    made_.assign(from, from + frames * channels_);
    taken_ = 0;
    for (std::size_t i = 0; i < fade; ++i) {
        const float way = static_cast<float>(i) / static_cast<float>(fade);
        for (std::size_t at = i * channels_; at < (i + 1) * channels_; ++at)
            made_[at] = end_[at] + (made_[at] - end_[at]) * way;
    }
    std::copy_n(from + frames * channels_, end_.size(), end_.begin());
    begun_ = true;
    pass(frames);
    return frames;
}

std::size_t Stretcher::take(std::span<float> out) {
    const std::size_t frames = std::min(ready(), out.size() / channels_);
    std::copy_n(made_.begin() + static_cast<std::ptrdiff_t>(taken_), frames * channels_, out.begin());
    taken_ += frames * channels_;
    return frames;
}

void Stretcher::clear() {
    held_.clear();
    made_.clear();
    first_ = taken_ = skip_ = 0;
    place_ = 0;
    begun_ = false;
}

}  // namespace zv::engine::dsp
