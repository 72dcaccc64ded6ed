/// How the control surface comes and goes with the program. [control]
#pragma once

namespace zv {

/// After the settings are read and MIDI.ini is there: lists what there is and opens the chosen devices.
void StartMIDI();
/// The start is over: what ends may be told from now on.
void AllowMIDIFeedback();
/// First step of the end: the surface's lamps go out, all devices are closed.
void EndMIDI();

}  // namespace zv
