/// The poll of Ctrl, Shift and Alt, and what the display says while they are held. [control]
#pragma once

namespace zv {

extern bool PrevCtrlDown, PrevShiftDown;

/// What the display says while modifier keys are held.
enum class ModifierMessage { none, move, copy, rename, remove, removeFile };
ModifierMessage MessageFor(bool ctrl, bool shift, bool alt);
void TimerKeyModifiersTick();

}  // namespace zv
