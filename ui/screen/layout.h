/// Where everything stands: all places are worked out from the inner size of the window, in twips rounded
/// down to whole pixels. Nothing is laid out while the program loads or unloads (LoadingUI), nor while it is
/// minimised. [control]
#pragma once

#include <string>

namespace zv {

/// Lays out all; `mode` "init" also shows and hides what depends on settings.
void FormDraw(const std::string& mode = {});
/// Makes or hides the families for the grid size; `load` 1 opens each slot again.
void DrawJButtons(int load);
/// Turns the gap of the grid on or off ("Alt+F9") and draws again.
void SetJoinedJButtons(bool joined);

}  // namespace zv
