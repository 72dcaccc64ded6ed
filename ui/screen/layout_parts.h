/// Pieces of FormDraw that stand in files of their own. [control]
#pragma once

namespace zv {

/// Inner places of the display, the keys and the meters for the size that their frames have.
void DrawDisplay();
void DrawKeys();
void DrawMeters();
/// Places of all live buttons of the grid, and of the hot block.
void DrawGrid();

}  // namespace zv
