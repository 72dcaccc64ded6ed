/// Filling a palette at once: files and folders let go over the list of palettes or the display. [control]
#pragma once

#include <string>
#include <vector>

namespace zv {

/// Looks for the sound files among `paths` and below the folders, asks once with their count, and puts them on the empty
/// buttons of the palette in the order of their names. One step for Undo.
void FillPalette(const std::vector<std::string>& paths);

}  // namespace zv
