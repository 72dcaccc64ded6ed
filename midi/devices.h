/// Opening and closing the devices, and the rescans that follow what is plugged in and pulled out. An input and an
/// output of one name are one surface. [control]
#pragma once

#include <string>
#include <vector>

#include "platform/midi.h"

namespace zv {

void ListMidiInDevices(std::vector<std::string>& list);
void ListMidiOutDevices(std::vector<std::string>& list);

/// Opens the input, not yet started, after closing the one before; hMidiIn stays 0 when it cannot.
void OpenMidiInDevice(int index);
void CloseMidiInDevice();
/// A failure is told in a box.
void OpenMidiOutDevice(int index, MidiHandle& handle);
void CloseMidiOutDevice(MidiHandle& handle);

/// Opens and starts the input midiSettings.MIDIDevice and loads its assignments.
void LoadMIDI();
/// The rescans of the control input with its output, and of the fixed output: nothing happens while the number of
/// devices stays the same, unless one was picked.
void SetMIDIDevice();
void SetMIDIOutFixedDevice();
/// Both, and the label; every two seconds, and at once after a change.
void TimerMIDIDevices_Timer();

/// The same once, after the system told that devices came or went.
void TimerMIDIPorts_Timer();

/// True when lblMIDIDevice and its mark are to be seen.
bool MIDIStatusVisible();

}  // namespace zv
