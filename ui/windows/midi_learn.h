/// Which learn window is open, and how it comes and goes. [control]
#pragma once

#include <string>

namespace zv {

/// Opens the window that teaches a control ("b_Jingle" with its index, "btUp", "lstPal", "Vol", ...).
void clMIDI(const std::string& ctrl, int index);
/// True when a control can be taught now: an input is open.
bool MidiLearnOffered();
/// Shows what MIDILearn holds; closes the window when learning has ended.
void ShowLearn();
/// The context menu of a control that can be taught; nothing when none can.
void OpenLearnMenu(const std::string& ctrl);

}  // namespace zv
