/// Where a window of the program opens: over the grid, never over the counter or STOP, and on a screen. [control]
#pragma once

#include <utility>

namespace zv {

class Control;

/// What a window may take at most, in pixels, and where its room begins.
struct WindowRoom {
    int left = 0, top = 0, width = 0, height = 0;
};

inline constexpr int kWidestWindow = 1000;  ///< pixels
inline constexpr int kFrameHeight = 32;     ///< of a window's title as the desktop draws it, pixels

/// The room below the strip of the main window, down to the foot of its screen.
WindowRoom RoomOverGrid();
/// Left and top, in pixels, of a window of that inner size in the middle of the grid, as far as its size allows.
std::pair<int, int> PlaceOverGrid(int width, int innerHeight);
/// Puts the window into the middle of the grid, as far as its size allows.
void PlaceOverGrid(Control& window);
/// A window that was left where no screen is any more comes back to one.
void HoldOnScreen(Control& window);

}  // namespace zv
