/// How the main window comes, is wired to its handlers and timers, and goes. [control]
#pragma once

#include <string>

namespace zv {

/// Fills the controls from the loaded settings and makes the button families; the one window that this room
/// has is "frmMain", other names do nothing.
void FormsLoad(const std::string& window);
/// Fonts, sizes of the digits, smallest window size, handlers.
void Form_Load();
/// Asks whether the window may close and saves the settings when it may.
bool Form_QueryUnload(int reason);
/// Called by Form_Unload (the entry) for the window's part: pending moves dropped, layout work off, window
/// hidden.
void frmMainUnload();
/// Sets the intervals from the settings and starts the timers that run from the start.
void StartTimers();

}  // namespace zv
