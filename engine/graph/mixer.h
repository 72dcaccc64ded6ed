/// Adding up what sounds in a mixer or on an output.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "engine/graph/conversion.h"
#include "engine/graph/conversion_group.h"
#include "engine/graph/playback.h"
#include "engine/graph/timed_slides.h"

namespace zv::engine {

class Mixer final : public Mixing {
  public:
    Mixer(Pull& pull, Conversion& conversion, Playback& playback, Positions& positions, TimedSlides& timed,
          const RenderTime& time)
        : pull_(pull),
          conversion_(conversion),
          playback_(playback),
          positions_(positions),
          timed_(timed),
          time_(time) {}

    void mixInputs(Channel* const& first, float* out, std::uint32_t frames) override;

  private:
    void mixPart(Channel* first, float* out, std::uint32_t frames, ConversionGroups& groups);
    std::uint32_t evenPart(Channel* const& first, std::uint32_t frames);
    std::uint32_t stretchOf(Channel* first, std::uint64_t part);
    bool joinGroup(Channel& channel, std::uint32_t frames, ConversionGroups& groups);
    void mixInput(Channel& channel, float* out, std::uint32_t frames, View begun);

    Pull& pull_;
    Conversion& conversion_;
    Playback& playback_;
    Positions& positions_;
    TimedSlides& timed_;
    const RenderTime& time_;
    static constexpr std::size_t kMostNested = 6;
    std::array<ConversionGroups, kMostNested> groups_;  ///< of the mixer that is mixed, of the one in it ...
    std::size_t nested_ = 0;
};

}  // namespace zv::engine
