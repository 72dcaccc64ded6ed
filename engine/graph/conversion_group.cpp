#include "engine/graph/conversion_group.h"

#include <algorithm>
#include <span>

#include "engine/dsp/mix.h"

namespace zv::engine {

ConversionGroups::ConversionGroups() : made_(std::size_t{kBlock} * 2) {}

void ConversionGroups::begin(std::uint32_t frames) {
    frames_ = frames;
    count_ = 0;
}

std::size_t ConversionGroups::groupOf(const dsp::Resampler& resampler) const {
    std::size_t k = 0;
    const dsp::ResamplerPhase phase = resampler.phase();
    while (k < count_ && groups_[k].phase != phase) ++k;
    return k;
}

bool ConversionGroups::takes(const dsp::Resampler& resampler) const {
    return groupOf(resampler) < kGroups && resampler.span(frames_) <= kSpan &&
           frames_ <= resampler.mostAtOnce();
}

void ConversionGroups::add(dsp::Resampler& resampler, float gain) {
    const std::size_t k = groupOf(resampler);
    if (k == count_) {
        groups_[k].phase = resampler.phase();
        std::ranges::fill(groups_[k].sum, 0.0F);
        ++count_;
    }
    resampler.addWindow(groups_[k].sum.data(), kSpan, frames_, gain);
    resampler.advance(frames_);
}

void ConversionGroups::finish(float* out) {
    for (Group& group : std::span(groups_.data(), count_)) {
        const std::span<float> made(made_.data(), std::size_t{frames_} * 2);
        dsp::Resampler::convertWindow(group.phase, group.sum.data(), kSpan, made);
        dsp::mixStereo(out, made.data(), frames_, 1);
    }
}

}  // namespace zv::engine
