#include "midi/devices.h"

#include <algorithm>

#include "midi/assignments.h"
#include "midi/feedback.h"
#include "midi/ring.h"
#include "midi/state.h"
#include "midi/upcalls.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/settings/midi_settings.h"
#include "startup/upcalls.h"

namespace zv {
namespace {

constexpr int kLongMessages = 31;               ///< that an open input takes in all
constexpr const char* kErrorTitle = "Fehler:";  ///< in every language

int position(const std::vector<std::string>& names, const std::string& name) {
    const auto found = std::ranges::find(names, name);
    return found == names.end() ? kNoMidiIndex : static_cast<int>(found - names.begin());
}

int rowsBut(const ShownList& box) { return static_cast<int>(box.rows.size()) - 1; }
int count(const std::vector<std::string>& names) { return static_cast<int>(names.size()); }

bool lostIts(MidiHandle handle) { return handle != 0 && !midiConnected(handle); }

/// The output of the surface is there now; it was not when the input was opened.
bool outputCame() {
    if (hMidiIn == 0 || hMidiOut != 0 || MIDIOutIndex != kNoMidiIndex) return false;
    std::vector<std::string> outputs;
    ListMidiOutDevices(outputs);
    return position(outputs, midiSettings.MIDIDevice) >= 0;
}

void showLists() { callUp(midiUpcalls.listsChanged); }

void loseDevice() {
    CloseMidiInDevice();
    CloseMidiOutDevice(hMidiOut);
    MIDIDeviceLabel = Ln(cmbInDevsGUI.rows.size() <= 1 ? "sMIDINoDev" : "sMIDIOtherDev");
}

std::string caption() {
    const std::string in = midiSettings.MIDIEnabled == 1 && !MIDIHidden ? MIDIDeviceLabel : std::string();
    const std::string out = midiSettings.MIDIOutFixedEnabled == 1 ? MIDIOutFixedDeviceLabel : std::string();
    return in.empty() || out.empty() ? in + out : in + " / " + out;
}

}  // namespace

void ListMidiInDevices(std::vector<std::string>& list) { list = midiInputs(); }
void ListMidiOutDevices(std::vector<std::string>& list) { list = midiOutputs(); }

void OpenMidiInDevice(int index) {
    CloseMidiInDevice();
    std::string error;
    hMidiIn = openMidiInput(index, MidiInProc, kLongMessages, error);
    if (hMidiIn != 0) ResetRing();
}

void CloseMidiInDevice() {
    if (hMidiIn == 0) return;
    closeMidiInput(hMidiIn);
    hMidiIn = 0;
}

void OpenMidiOutDevice(int index, MidiHandle& handle) {
    CloseMidiOutDevice(handle);
    std::string error;
    handle = openMidiOutput(index, error);
    if (handle == 0)
        messageBox("OpenMidiOutDevice:  " + std::to_string(index) + "  : " + error, kErrorTitle,
                   BoxKind::stop, BoxButtons::ok);
}

void CloseMidiOutDevice(MidiHandle& handle) {
    if (handle != 0) closeMidiOutput(handle);
    handle = 0;
}

void LoadMIDI() {
    const int index = position(lstInDevs, midiSettings.MIDIDevice);
    if (index < 0) return;
    OpenMidiInDevice(index);
    startMidiInput(hMidiIn);
    LoadMIDIdatas(midiSettings.MIDIDevice);
}

void SetMIDIDevice() {
    guarded("modMidiFunctions.SetMIDIDevice", [] {
        if (cmbInDevsGUI.selected == 0) return;
        if (!MIDIDevicePicked) ListMidiInDevices(lstInDevs);
        const bool lost = lostIts(hMidiIn) || lostIts(hMidiOut);
        if (!MIDIDevicePicked && !lost && rowsBut(cmbInDevsGUI) == count(lstInDevs) && !outputCame()) return;
        if (lost) {
            // A cable that was pulled and put back between two ticks: open both anew.
            CloseMidiInDevice();
            CloseMidiOutDevice(hMidiOut);
            MIDIOutIndex = kNoMidiIndex;
        }
        if (!MIDIDevicePicked) {
            ListMidiOutDevices(lstOutDevs);
            cmbInDevsGUI.fill(lstInDevs);
        }
        MIDIDevicePicked = false;
        const int input = position(lstInDevs, midiSettings.MIDIDevice);
        int output = kNoMidiIndex;
        if (input >= 0) {
            ListMidiOutDevices(lstOutDevs);
            output = position(lstOutDevs, midiSettings.MIDIDevice);
        } else {
            loseDevice();
        }
        if (hMidiIn == 0 && input >= 0) OpenMidiInDevice(input);
        MIDIInOpen = hMidiIn != 0;
        if (!MIDIInOpen) {
            MIDIOutIndex = kNoMidiIndex;
            midiTimers().TimerMIDI.stop();
            showLists();
            return;
        }
        cmbInDevsGUI.select(midiSettings.MIDIDevice);
        MIDIDeviceLabel = midiSettings.MIDIDevice;
        LoadMIDI();
        MIDIInOpen = hMidiIn != 0;
        midiTimers().TimerMIDI.start();
        showLists();
        if (output == kNoMidiIndex || output == MIDIOutIndex) return;
        OpenMidiOutDevice(output, hMidiOut);
        MIDIOutRefresh(-1);
        MIDIOutIndex = output;
    });
}

void SetMIDIOutFixedDevice() {
    guarded("modMidiFunctions.SetMIDIOutFixedDevice", [] {
        if (midiSettings.MIDIOutFixedEnabled == 0) return;
        ListMidiOutDevices(lstOutDevs);
        if (!lostIts(hMidiOutFixed) && rowsBut(cmbMIDIOutFixedDevsGUI) == count(lstOutDevs)) return;
        cmbMIDIOutFixedDevsGUI.fill(lstOutDevs);
        const int output = position(lstOutDevs, midiSettings.MIDIOutFixedDevice);
        if (output >= 0) {
            cmbMIDIOutFixedDevsGUI.select(midiSettings.MIDIOutFixedDevice);
            OpenMidiOutDevice(output, hMidiOutFixed);
            LoadMIDIOutFixeddatas();
            MIDIOutFixedDeviceLabel = midiSettings.MIDIOutFixedDevice;
        } else {
            CloseMidiOutDevice(hMidiOutFixed);
            cmbMIDIOutFixedDevsGUI.selected = 0;
            MIDIOutFixedDeviceLabel.clear();
        }
        showLists();
    });
}

void TimerMIDIDevices_Timer() {
    guarded(".TimerMIDIDevices_Timer", [] {
        if (midiSettings.MIDIOutFixedEnabled == 1) SetMIDIOutFixedDevice();
        if (midiSettings.MIDIEnabled == 1) {
            SetMIDIDevice();
            if (const std::string text = caption(); text != MIDIStatusText) {
                MIDIStatusText = text;
                callUp(midiUpcalls.showStatus, true);
            }
        }
        const bool pumping = midiTimers().TimerMIDI.enabled();
        if (pumping && midiSettings.MIDIAutoHide == 1 && MIDIHidden) {
            MIDIHidden = false;
            callUp(midiUpcalls.showStatus, true);
        }
        callUp(midiUpcalls.faderLearning, pumping);
    });
}

void TimerMIDIPorts_Timer() {
    midiTimers().TimerMIDIPorts.stop();
    if (midiTimers().TimerMIDIDevices.enabled()) TimerMIDIDevices_Timer();
}

bool MIDIStatusVisible() {
    return (midiSettings.MIDIAutoHide == 0 && midiSettings.MIDIEnabled == 1) || hMidiIn != 0;
}

}  // namespace zv
