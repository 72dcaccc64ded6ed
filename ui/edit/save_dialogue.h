/// Saving: the mark of the display, the timer behind it, and the dialogue that names a palette. [control]
#pragma once

#include "platform/controls.h"

namespace zv {

/// Opens the naming dialogue, or confirms it when it is open. `mode` 2 renames, any other saves.
void SavePal(int mode = 0);
void NotSavePal();
/// A click on the mark of the display.
void ErrClick();
void txtSave_KeyDown(KeyEvent& event);
void SaveTimerTick();

}  // namespace zv
