/// frmMIDISettings: which surface, its assignments, and the fixed output. Every change acts at once. [control]
#pragma once

#include <array>

#include "ui/windows/form_window.h"

namespace zv {

struct MidiSettingsWindow {
    MidiSettingsWindow();

    FormWindow form{"frmMIDISettings", "sMIDITitle"};
    std::array<Control*, 3> ckMIDIEnable{};  ///< the surface, hide its mark, the fixed output
    Control& cmbInDevsGUI = form.control("cmbInDevsGUI", ControlKind::comboBox);
    Control& lblMIDIpresets = form.control("lblMIDIpresets", ControlKind::label, "slblMIDIpresets");
    Control& cmbMIDIpresets = form.control("cmbMIDIpresets", ControlKind::comboBox);
    Control& btMIDICopy = form.control("btMIDICopy", ControlKind::button, "sbtMIDICopy");
    Control& btMIDIDelete = form.control("btMIDIDelete", ControlKind::button, "sbtMIDIDelete");
    Control& MIDIVol = form.control("MIDIVol", ControlKind::button, "slblGenVol");
    Control& MIDIAmix = form.control("MIDIAmix", ControlKind::button, "slblAmx");
    Control& btMIDIOutReset = form.control("btMIDIOutReset", ControlKind::button, "mMIDIOutReset");
    Control& cmbMIDIOutFixedDevsGUI = form.control("cmbMIDIOutFixedDevsGUI", ControlKind::comboBox);
    std::array<Control*, 2> lblMIDIOutFixed{};  ///< channel, velocity
    Control& cmbMIDIOutFixedChan = form.control("cmbMIDIOutFixedChan", ControlKind::comboBox);
    Control& txtMIDIOutVel = form.control("txtMIDIOutVel", ControlKind::number);
    Control& btOK = form.control("btOK", ControlKind::button, "sbtOK");

  private:
    void wire();
};

MidiSettingsWindow& frmMIDISettings();

void OpenMidiSettings();
/// The boxes show what there is and what is chosen; keys that can do nothing are grey.
void ShowMidiLists();

}  // namespace zv
