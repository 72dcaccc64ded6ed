/// What the meters show and what triggers the auto-duck. [control]
#pragma once

#include <array>

namespace zv {

inline constexpr int kMeterMax = 100;  ///< Max of the bar control: full scale

/// Who reached the trigger level, where it was no jingle.
inline constexpr int kNobody = -1, kAnnouncer = -2, kLiveStream = -3;

/// The loudest level of each side at the last GetLevels, 1 is full scale; above it the sound is cut off.
extern std::array<float, 2> LoudestLevel;
/// Index of the jingle behind the trigger level of the last GetLevels, or one of the values above.
extern int LoudestTrigger;

/// Levels in units of the bar: duck left, right, meter left, right, then the trigger level and 0. Only jingles
/// that may trigger the auto-duck, the announcer, and the live stream where it does not duck itself, raise the
/// trigger level.
std::array<int, 6> GetLevels();

}  // namespace zv
