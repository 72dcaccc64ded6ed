/// What the meters show and what triggers the auto-duck. [control]
#pragma once

#include <array>

namespace zv {

inline constexpr int kMeterMax = 100;  ///< Max of the bar control: full scale

/// Levels in units of the bar: duck left, right, meter left, right, then the trigger level and 0.
std::array<int, 6> GetLevels();

}  // namespace zv
