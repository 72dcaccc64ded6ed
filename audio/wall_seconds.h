/// Which seconds of the wall clock have begun since they were asked for last, each once: also when the question comes
/// late because the machine was busy, but not those that were jumped over because the clock was set. [control]
#pragma once

#include <cstdint>

#include "platform/clock.h"

namespace zv {

/// Milliseconds of wall time since 1970 in the user's zone.
std::int64_t WallMs(const WallTime& time);

class WallSeconds {
  public:
    /// Whole seconds of wall time since 1970; none when `last` is before `first`.
    struct Span {
        std::int64_t first = 0, last = -1;
    };
    /// @param wallMs       wall time now, as WallMs tells it
    /// @param monotonicMs  a clock that nobody sets
    Span begun(std::int64_t wallMs, std::int64_t monotonicMs);

  private:
    bool asked_ = false;
    std::int64_t wallMs_ = 0, monotonicMs_ = 0, last_ = 0;
};

}  // namespace zv
