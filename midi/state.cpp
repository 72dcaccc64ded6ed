#include "midi/state.h"

#include <algorithm>

#include "midi/upcalls.h"

namespace zv {

MidiHandle hMidiIn = 0, hMidiOut = 0, hMidiOutFixed = 0;
std::string MIDIDeviceLabel, MIDIOutFixedDeviceLabel, MIDIStatusText;
bool MIDIInOpen = false, MIDIDevicePicked = false, MIDIHidden = false, MIDIReady = false;
int MIDIOutIndex = kNoMidiIndex;
std::vector<std::string> lstInDevs, lstOutDevs;
ShownList cmbInDevsGUI, cmbMIDIOutFixedDevsGUI, cmbMIDIpresets;
MidiUpcalls midiUpcalls;

namespace {
constexpr int kPumpMs = 10, kRescanMs = 2000;
/// A surface has several ports; they come one after the other.
constexpr int kSettleMs = 200;
}  // namespace

std::string ShownList::text() const {
    return selected >= 0 && static_cast<std::size_t>(selected) < rows.size()
               ? rows[static_cast<std::size_t>(selected)]
               : std::string();
}

void ShownList::select(const std::string& name) {
    const auto found = std::ranges::find(rows, name);
    selected = found == rows.end() ? -1 : static_cast<int>(found - rows.begin());
}

void ShownList::fill(const std::vector<std::string>& names) {
    rows.assign(1, std::string());
    rows.insert(rows.end(), names.begin(), names.end());
    selected = -1;
}

MidiTimers::MidiTimers()
    : TimerMIDI("TimerMIDI", kPumpMs, {}),
      TimerMIDIDevices("TimerMIDIDevices", kRescanMs, {}),
      TimerMIDIPorts("TimerMIDIPorts", kSettleMs, {}) {}

MidiTimers& midiTimers() {
    static MidiTimers all;
    return all;
}

}  // namespace zv
