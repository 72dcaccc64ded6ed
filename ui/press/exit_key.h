/// The Exit key, and what holding it does. [control]
#pragma once

#include "platform/controls.h"

namespace zv {

inline constexpr int kSessionEnds = 2;
inline constexpr int kClosedByUser = 0;  ///< reasons of closing
inline constexpr int kClosedByProgram = 1;

void btExit_MouseDown(const MouseEvent& event);
void btExit_MouseUp(const MouseEvent& event);
void TimerShutDownTick();
/// Asks the window to close as its own close button would.
void UnloadMain(int reason);

}  // namespace zv
