/// What the MIDI controls of the settings do. [control]
#pragma once

namespace zv {

/// Items of ckMIDIEnable.
enum class MidiSwitch { input, autoHide, fixedOutput };

void ckMIDIEnable_Click(MidiSwitch item, bool on);
/// Rows of the combo boxes; 0 is no device.
void cmbInDevsGUI_Click(int row);
void cmbMIDIOutFixedDevsGUI_Click(int row);
/// Channel 1 to 16 and velocity 0 to 127 of the fixed output.
void cmbMIDIOutFixedChan_Click(int channel);
void txtMIDIOutVel_Change(int velocity);
void cmbMIDIpresets_Click(int row);
/// The chosen preset over the device's own assignments; the preset goes, after a question.
void btMIDICopy_Click();
void btMIDIDelete_Click();
bool MIDICopyEnabled();
bool MIDIDeleteEnabled();

}  // namespace zv
