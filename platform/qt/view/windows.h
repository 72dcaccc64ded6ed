/// Windows of the shell: making, showing, closing, following their records. Internal to the shell. [control]
#pragma once

#include <cstdint>

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
void dropAllWindows();

}  // namespace zv::shell
