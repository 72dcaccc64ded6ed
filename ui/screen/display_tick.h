/// The tick that asks every jingle how it is, paints the buttons and finds the smallest time left. [control]
#pragma once

namespace zv {

extern double MinDuration;  ///< s, smallest playable length among what sounds

void TimerDispAndJButtonsTick();

}  // namespace zv
