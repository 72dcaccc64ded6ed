/// The VU meters. [control]
#pragma once

namespace zv {

inline constexpr int VuFallStep = 300;  ///< hundredths of a unit lost per 10 ms
extern int VuHoldL, VuHoldR;            ///< bar values while VUpersist is 1
extern bool VuTestOn;                   ///< the settings window shows both bars full

/// The tick: both bars, the mark of what was cut off, the trigger of the auto-duck.
void TimerVUTick();
void TimerVUFDTick();
/// Another pair of channels on an output that has more than two; nothing on any other.
void ChangeVUchan();
/// Gives both meters the look of the settings.
void ApplyMeterLook();

}  // namespace zv
