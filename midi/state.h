/// Devices, labels and lists of the control surface, shared by the files of this room. Touched on the interface
/// thread only. [control]
#pragma once

#include <string>
#include <vector>

#include "platform/midi.h"
#include "platform/timers.h"

namespace zv {

inline constexpr int kNoMidiIndex = -100;

extern MidiHandle hMidiIn, hMidiOut, hMidiOutFixed;  ///< 0: closed
extern std::string MIDIDeviceLabel;                  ///< the input's name, or why there is none
extern std::string MIDIOutFixedDeviceLabel;          ///< empty while the device is missing
extern std::string MIDIStatusText;                   ///< what lblMIDIDevice shows
extern bool MIDIInOpen;                              ///< hMidiIn was open after the last rescan
extern bool MIDIDevicePicked;  ///< the next rescan runs though the number of devices is the same
extern bool MIDIHidden;        ///< never set in this release; its tests stand
extern bool MIDIReady;         ///< the start is over: the display's tick may send
extern int MIDIOutIndex;       ///< index of the output that is open as hMidiOut, or kNoMidiIndex

/// Names of devices in the driver's order; position = index for opening.
extern std::vector<std::string> lstInDevs, lstOutDevs;

/// A combo box: its rows and the selected one, -1 for none. Row 0 is empty and stands for no device.
struct ShownList {
    std::vector<std::string> rows;
    int selected = -1;

    std::string text() const;
    /// Selects the row of that text; none when there is none.
    void select(const std::string& name);
    /// An empty row and `names`; nothing is selected.
    void fill(const std::vector<std::string>& names);
};

extern ShownList cmbInDevsGUI, cmbMIDIOutFixedDevsGUI, cmbMIDIpresets;

struct MidiTimers {
    MidiTimers();
    Timer TimerMIDI;         ///< 10 ms, while an input is open
    Timer TimerMIDIDevices;  ///< 2000 ms
    Timer TimerMIDIPorts;    ///< 200 ms after the system told that devices came or went; once
};
MidiTimers& midiTimers();

}  // namespace zv
