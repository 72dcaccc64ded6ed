/// The VU meters. [control]
#pragma once

#include <array>

namespace zv {

inline constexpr int kMeterMax = 100;   ///< Max of the bar control
inline constexpr int VuFallStep = 300;  ///< hundredths of a unit lost per 10 ms
extern int VuHoldL, VuHoldR;            ///< bar values while VUpersist is 1

/// Levels in units of the bar: duck left, right, meter left, right, then the trigger level and 0.
std::array<int, 6> GetLevels();
void TimerVUTick();
void TimerVUFDTick();
void ChangeVUchan();
/// Gives both meters the look of the settings.
void ApplyMeterLook();

}  // namespace zv
