#include "midi/settings_commands.h"

#include <algorithm>

#include "midi/assignments.h"
#include "midi/devices.h"
#include "midi/feedback.h"
#include "midi/state.h"
#include "midi/upcalls.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/settings/midi_settings.h"
#include "startup/stores.h"
#include "startup/upcalls.h"

namespace zv {
namespace {

constexpr const char* kTitle = "Zentrova";
constexpr int kLastChannel = 16, kLargestVelocity = 127;

void showLists() { callUp(midiUpcalls.listsChanged); }

/// Input and fixed output may not be one device. True after telling so.
bool SameMIDIDevices(const std::string& name) {
    if (cmbInDevsGUI.selected <= 0 || cmbMIDIOutFixedDevsGUI.selected <= 0 ||
        cmbInDevsGUI.text() != cmbMIDIOutFixedDevsGUI.text())
        return false;
    messageBox(LnBox("sSameDevices") + "\r\n" + name, kTitle, BoxKind::warning, BoxButtons::ok);
    return true;
}

void switchInput(bool on) {
    callUp(midiUpcalls.enableGroup, MidiGroup::in, on);
    if (on) {
        midiSettings.MIDIEnabled = 1;
        if (cmbInDevsGUI.selected == 0) return;
        // Boxes that were never filled are filled by the rescan itself.
        MIDIDevicePicked = !cmbInDevsGUI.rows.empty();
        if (MIDIDevicePicked) ListMidiInDevices(lstInDevs);
        TimerMIDIDevices_Timer();
        MIDIOutRefresh(-1);
        return;
    }
    MIDIOut(midiOut.OutReset, hMidiOut);
    CloseMidiInDevice();
    CloseFileMIDI(midiSettings.MIDIDevice);
    midiSettings.MIDIEnabled = 0;
    MIDIInOpen = false;
    midiTimers().TimerMIDI.stop();
}

}  // namespace

void ckMIDIEnable_Click(MidiSwitch item, bool on) {
    guarded("frmSett.ckMIDIEnable_Click", [&] {
        switch (item) {
            case MidiSwitch::input:
                switchInput(on);
                break;
            case MidiSwitch::autoHide:
                midiSettings.MIDIAutoHide = on ? 1 : 0;
                if (!on) MIDIHidden = false;
                break;
            case MidiSwitch::fixedOutput:
                midiSettings.MIDIOutFixedEnabled = on ? 1 : 0;
                callUp(midiUpcalls.enableGroup, MidiGroup::out, on);
                if (on) SetMIDIOutFixedDevice();
                break;
        }
        processEvents();
        if (midiSettings.MIDIEnabled == 1 || midiSettings.MIDIAutoHide == 1) {
            midiTimers().TimerMIDIDevices.start();
            TimerMIDIDevices_Timer();
        } else {
            midiTimers().TimerMIDI.stop();
            midiTimers().TimerMIDIDevices.stop();
        }
        callUp(midiUpcalls.layoutAll);
    });
}

void cmbInDevsGUI_Click(int row) {
    guarded("frmSett.cmbInDevsGUI_Click", [&] {
        cmbInDevsGUI.selected = row;
        const std::string name = cmbInDevsGUI.text();
        if (MIDIDevicePicked || name == midiSettings.MIDIDevice) return;
        midiTimers().TimerMIDIDevices.stop();
        processEvents();
        if (SameMIDIDevices(name)) {
            cmbInDevsGUI.selected = 0;
            showLists();
            return;
        }
        MIDIOut(midiOut.OutReset, hMidiOut);
        CloseMidiOutDevice(hMidiOut);
        MIDIOutIndex = kNoMidiIndex;
        CloseMidiInDevice();
        midiSettings.MIDIDevice.clear();
        if (row != 0) {
            midiSettings.MIDIDevice = name;
            MIDIDevicePicked = true;
            midiTimers().TimerMIDIDevices.start();
            TimerMIDIDevices_Timer();
        } else {
            MIDIInOpen = false;
            midiTimers().TimerMIDI.stop();
            MIDIDeviceLabel.clear();
            MIDIStatusText.clear();
            callUp(midiUpcalls.showStatus, true);
        }
        showLists();
    });
}

void cmbMIDIOutFixedDevsGUI_Click(int row) {
    guarded("frmSett.cmbMIDIOutFixedDevsGUI_Click", [&] {
        cmbMIDIOutFixedDevsGUI.selected = row;
        const std::string name = cmbMIDIOutFixedDevsGUI.text();
        if (SameMIDIDevices(name)) {
            cmbMIDIOutFixedDevsGUI.selected = 0;
            showLists();
            return;
        }
        MIDIOut(midiOut.OutReset, hMidiOutFixed);
        if (row <= 0) {
            CloseMidiOutDevice(hMidiOutFixed);
            MIDIOutFixedDeviceLabel.clear();
        } else {
            OpenMidiOutDevice(row - 1, hMidiOutFixed);
            midiSettings.MIDIOutFixedDevice = name;
            MIDIOutFixedDeviceLabel = name;
            LoadMIDIOutFixeddatas();
        }
        SetMIDIOutFixedDevice();
        showLists();
    });
}

void cmbMIDIOutFixedChan_Click(int channel) {
    midiSettings.MIDIOutFixedChan = std::clamp(channel, 1, kLastChannel);
    LoadMIDIOutFixeddatas();
}

void txtMIDIOutVel_Change(int velocity) {
    midiSettings.MIDIOutFixedVel = std::clamp(velocity, 0, kLargestVelocity);
    LoadMIDIOutFixeddatas();
}

void cmbMIDIpresets_Click(int row) {
    cmbMIDIpresets.selected = row;
    showLists();
}

bool MIDICopyEnabled() {
    const std::string preset = cmbMIDIpresets.text();
    return !midiSettings.MIDIDevice.empty() && !preset.empty() && preset != midiSettings.MIDIDevice;
}

bool MIDIDeleteEnabled() { return !cmbMIDIpresets.text().empty(); }

void btMIDICopy_Click() {
    guarded("frmSett.btMIDICopy_Click", [] {
        if (!MIDICopyEnabled()) return;
        CopySection(cmbMIDIpresets.text(), midiSettings.MIDIDevice, MIDIFile);
        cmbMIDIpresets.selected = 0;
        CloseMidiInDevice();
        LoadMIDI();
        MIDIInOpen = hMidiIn != 0;
        LoadMIDIPresets();
        MIDIOutRefresh(0);
        showLists();
    });
}

void btMIDIDelete_Click() {
    guarded("frmSett.btMIDIDelete_Click", [] {
        if (!MIDIDeleteEnabled()) return;
        const std::string text = cmbMIDIpresets.text() + "\r\n" + LnBox("sMIDIClear");
        if (messageBox(text, kTitle, BoxKind::question, BoxButtons::yesNo,
                       Verbs("vbDelete", "vbKeep", true)) != BoxAnswer::yes)
            return;
        MIDIStore.DeleteSection(cmbMIDIpresets.text());
        cmbMIDIpresets = {};
        LoadMIDIPresets();
        showLists();
    });
}

}  // namespace zv
