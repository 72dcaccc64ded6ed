/// Marks that flash: of what fades, of a sequence in its loop, of the display. [control]
#pragma once

namespace zv {

void TimerFadeOutLEDTick();
void TimerControlFlashTick();

}  // namespace zv
