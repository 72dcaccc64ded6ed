/// Colours of the whole window: light and dark, and those that follow the settings. [control]
#pragma once

#include "platform/controls.h"

namespace zv {

/// Works the shaded colours out and repaints what shows them.
void ReColorizeBtn();
/// Colours of Repeat, Touch and Automix among the keys by their states.
void ShowGlobalToggles();
/// Light (0) or dark (1).
void SwitchDarkMode(int dark);
/// Colour of frames' borders.
Colour BorderColour();

}  // namespace zv
