/// What the program asks of the system's MIDI service. platform/rtmidi answers on a desktop, platform/rehearsal from
/// a script. The driver's own thread writes a queue of kMidiWaiting messages and wakes the interface; everything
/// here runs on the interface thread. [control]
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zv {

/// A device that is open; 0 is none.
using MidiHandle = std::uint32_t;

/// Kinds of messages that an input brings, by the numbers that drivers use.
inline constexpr std::uint32_t kMidiData = 963;      ///< a short message: status, data 1, data 2
inline constexpr std::uint32_t kMidiLongData = 964;  ///< a system-exclusive message; its bytes are dropped

/// Messages that an open input keeps until they are delivered.
inline constexpr int kMidiWaiting = 1024;

/// Takes one message. `first` is the short message, status in the low byte, data 1 and data 2 above it;
/// `second` is the time it came, in ms since the input was opened.
using MidiInCallback = void (*)(std::uint32_t code, std::uint32_t first, std::uint32_t second);

/// Names of the devices there are now, in the driver's order; the position is the index for opening. Numbers that
/// a system gives anew at each start are not in a name, both directions of a device bear one name, and the
/// second device of a name ends in " (2)".
std::vector<std::string> midiInputs();
std::vector<std::string> midiOutputs();

/// Opens an input, not yet started. It takes at most `longMessages` long messages until it is closed.
/// 0 when it cannot be opened; `error` says why.
MidiHandle openMidiInput(int index, MidiInCallback callback, int longMessages, std::string& error);
/// Messages come from now on. The timing clock (0xF8) never does.
bool startMidiInput(MidiHandle input);
/// Hands at most `most` waiting messages to the callback, oldest first. Returns how many.
int deliverMidi(MidiHandle input, int most);
/// Ends an input; what waits is dropped.
void closeMidiInput(MidiHandle input);
/// False when the device of an open input or output has gone since it was opened, even if it is back.
bool midiConnected(MidiHandle device);
/// True when devices may have come or gone since this was asked last. The interface is woken then; where the
/// system tells nothing it is never true, and the lists have to be looked at.
bool midiDevicesChanged();
/// Messages lost since the program began because kMidiWaiting others were waiting. [any]
std::uint64_t midiMessagesDropped();

/// 0 when it cannot be opened; `error` says why.
MidiHandle openMidiOutput(int index, std::string& error);
/// Sends a short message, packed as in MidiInCallback. False when it was not taken.
bool sendMidi(MidiHandle output, std::uint32_t message);
void closeMidiOutput(MidiHandle output);

}  // namespace zv
