/// Earlier states of palettes and sound files: the menu of the palette list, the window, the way back. [control]
#pragma once

namespace zv {

/// The menu of the list of palettes.
void lstPalMenu();
/// Opens the window with what the history holds now.
void ShowHistory();

}  // namespace zv
