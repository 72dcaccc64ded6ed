/// Which option waits for a button, and the look of a toggle that is on. [control]
#pragma once

#include <string>

#include "platform/controls.h"

namespace zv {

/// Codes of the armed option; empty for none.
extern std::string OptionCode;     ///< "ass", "ar", "tc", "ps", "ns", "co", "fx", "lp", "sq", "ta", "sp"
extern std::string OptionControl;  ///< "ckAutoRepI", ... or empty
extern int LoopToggleStep;         ///< of ckLoopI: 0 off, 1 loop armed, 2 sequence armed
extern bool SelectorsShown;        ///< the selection boxes are on screen
extern bool ColorPickerOpen;

/// True when a toggle's back colour is not the face.
bool Armed(const Control& toggle);
void Arm(Control& toggle, Colour colour);
void Disarm(Control& toggle);

/// ckLoopI shows neither loop nor sequence.
void LoopToggleAtRest();
/// All toggles of the options tab and ckAssign off; what they had highlighted is left as it is.
void DisarmOptions();
/// Disarms all toggles when a control was in use (LastCtrl).
void ResetOption();

}  // namespace zv
