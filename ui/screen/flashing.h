/// Marks that flash: of what fades, of a sequence in its loop, of the display. [control]
#pragma once

namespace zv {

extern bool FadePhase;   ///< of TimerFadeOutLED; the marks are steady in it
extern bool FlashPhase;  ///< of TimerControlFlash

void TimerFadeOutLEDTick();
void TimerControlFlashTick();

}  // namespace zv
