/// The VU meters. [control]
#pragma once

namespace zv {

inline constexpr int VuFallStep = 300;  ///< hundredths of a unit lost per 10 ms
extern int VuHoldL, VuHoldR;            ///< bar values while VUpersist is 1

void TimerVUTick();
void TimerVUFDTick();
void ChangeVUchan();
/// Gives both meters the look of the settings.
void ApplyMeterLook();

}  // namespace zv
