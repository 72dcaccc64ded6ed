/// Opening a palette slot by slot while the window lives on. [control]
#pragma once

namespace zv {

extern bool PaletteOpening;  ///< OpenFile is under way: what steps through the list waits for it
extern int PalLoadIdx;       ///< next slot that TimerLoadPal opens

void TimerLoadPalTick();

}  // namespace zv
