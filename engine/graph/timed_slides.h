/// Slides of VOL that are tied to a sync: each begins with the very frame of its sync, whatever the period is.
#pragma once

#include <cstdint>

#include "engine/graph/slides.h"
#include "engine/graph/syncs.h"

namespace zv::engine {

class TimedSlides {
  public:
    TimedSlides(Syncs& syncs, Slides& slides) : syncs_(syncs), slides_(slides) {}
    /// Frames of the mixer before the channel's slide is to begin; kBlock where it is farther off or none can be
    /// told. The slide begins here when its frame is the next one. [audio]
    std::uint64_t until(Channel& channel);

  private:
    void begin(Channel& channel);

    Syncs& syncs_;
    Slides& slides_;
};

}  // namespace zv::engine
