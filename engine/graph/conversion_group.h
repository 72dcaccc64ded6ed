/// Sounds of one rate in one mixer are converted together: what their converters hold is added up, and the sum is
/// converted once. It is the same sound as the sum of the conversions, for the price of one.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "engine/dsp/resampler.h"
#include "engine/graph/plug.h"

namespace zv::engine {

class ConversionGroups {
  public:
    ConversionGroups();
    /// Begins a stretch of `frames` output frames.
    void begin(std::uint32_t frames);
    /// Whether a group has its phase or is free. [audio]
    bool takes(const dsp::Resampler& resampler) const;
    /// Adds the next frames of `resampler` times `gain` to the group of its phase and advances it. Its input must
    /// have been taken in, and takes() be true. [audio]
    void add(dsp::Resampler& resampler, float gain);
    /// Adds the sounds of all groups to `out`. [audio]
    void finish(float* out);

  private:
    std::size_t groupOf(const dsp::Resampler& resampler) const;
    static constexpr std::size_t kGroups = 4, kSpan = 2048;
    struct Group {
        dsp::ResamplerPhase phase;
        std::vector<float> sum = std::vector<float>(2 * kSpan);
    };
    std::array<Group, kGroups> groups_;
    std::size_t count_ = 0;
    std::uint32_t frames_ = 0;
    std::vector<float> made_;
};

}  // namespace zv::engine
