/// What the choices of devices in the mixer window do. [control]
#pragma once

namespace zv {

/// The lists of the devices that are there, with those in use selected.
void FillDeviceLists();
/// Another device for the main (0) or the auxiliary output: what sounds goes on there.
void OutputChosen(int output);
void InputChosen();
/// The microphone's input is opened or closed.
void InputSwitched();
/// Its controls are seen while it is in use.
void ShowInputControls();
/// Devices are remembered by number (0) or by name (1).
void RememberBy(int how);
/// The foot reminds of what waits for the next start.
void ShowPending();
/// These take effect at the next start, and say so.
void TopologyChosen();
void RateChosen();
void SystemChosen();

}  // namespace zv
