/// The keys of microphone and talk-over, and what turning the input on and off does to them. [control]
#pragma once

namespace zv {

/// Opens or closes the microphone's input and keeps that in the settings. What a closed input had pushed down comes
/// back after InTORelease ms.
void SwitchInput(bool on);
void TimerTOreleaseTick();

}  // namespace zv
