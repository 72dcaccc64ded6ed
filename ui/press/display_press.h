/// Mouse down and up on the display. [control]
#pragma once

namespace zv {

/// Shows or hides the palette's name; shows the date while held in minimal view.
void switchDisPalName();
void switchDisPalNameRelease();

}  // namespace zv
