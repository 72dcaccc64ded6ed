/// Keys of the main window: seen before the control with the focus. [control]
#pragma once

#include "platform/controls.h"

namespace zv {

void Form_KeyDown(KeyEvent& event);
void Form_KeyUp(KeyEvent& event);
/// Normal window and full screen.
void ChangeWindowMode();

}  // namespace zv
