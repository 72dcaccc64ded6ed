/// The pump: takes the messages out of the ring and does what they are assigned to. [control]
#pragma once

#include <string>

namespace zv {

/// Of the message that is looked at.
extern std::string MIDIFull, MIDIShort;  ///< its six digits, the first four of them
extern int MIDIVelocity;                 ///< data 2
extern int MIDIPlayVelocity;             ///< what clPlay was given last

/// Drains the queue of the platform through the ring, every 10 ms and whenever the driver's side wakes the
/// interface. A press on a palette key that cannot be done yet stays and is tried again.
void TimerMIDI_Timer();

}  // namespace zv
