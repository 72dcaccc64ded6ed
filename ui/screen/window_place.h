/// Where the main window stands on the desktop, between the settings and the screen. [control]
#pragma once

#include "platform/controls.h"

namespace zv {

inline constexpr int MinWinWidth = 790;   ///< pixels
inline constexpr int MinWinHeight = 590;  ///< pixels

/// The smallest size that the user may give it: less than usual where a screen has less.
void LimitWindow(Control& window);
/// Where it stood last, held to a screen that is there; maximised it fills its monitor.
void PlaceWindow(Control& window);
/// Notes place and size of the window in the settings; a minimised or full window keeps what was noted.
void TimerMainPosTick();

}  // namespace zv
