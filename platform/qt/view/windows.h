/// Windows of the shell: making, showing, closing, following their records. [control]
#pragma once

#include <cstdint>
#include <vector>

#include "platform/controls.h"

namespace zv::shell {

/// The record of a window changed: size, title, visibility, theme.
void windowChanged(Control& window);
/// A record of a form changed its text, page or visibility.
void formChanged(const Control& record);
/// Lets what moves by itself (peaks of meters) go on.
void advanceViews(std::int64_t now);
/// The record of the window in front; null without one.
Control* activeWindow();
/// Forgets a window and all of its records' widgets; needed before a window record is destroyed.
void dropWindow(Control& window);
void dropAllWindows();
/// The windows that are open, from back to front.
std::vector<Control*> openWindows();
/// Asks the window to close as its close button does: onQueryClose(0), then onClose unless that said false.
bool closeWindow(Control& window);
/// Gives the window a new inner size as by dragging its border.
bool resizeWindow(Control& window, int widthPixels, int heightPixels);

}  // namespace zv::shell
