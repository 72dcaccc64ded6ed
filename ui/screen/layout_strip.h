/// The control strip above the grid: display, tabs, keys; and the meters. [control]
#pragma once

namespace zv {

extern int ActiveTab;  ///< 0 to 3

/// Inner places for the size that their frames have.
void DrawDisplay();
void DrawKeys();
void DrawMeters();
void TabDraw(int tab);
/// Shows a tab; refused in minimal view.
void ChangeTab(int tab);

}  // namespace zv
