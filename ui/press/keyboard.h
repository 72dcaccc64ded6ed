/// Keys of the main window: seen before the control with the focus. [control]
#pragma once

#include "platform/controls.h"

namespace zv {

void Form_KeyDown(KeyEvent& event);
void Form_KeyUp(KeyEvent& event);
/// Normal window and full screen.
void ChangeWindowMode();

// The Exit key and what holding it does.
void btExit_MouseDown(const MouseEvent& event);
void btExit_MouseUp(const MouseEvent& event);
void TimerShutDownTick();
/// Asks the window to close as its own close button would.
void UnloadMain(int reason);

}  // namespace zv
