/// Buttons that show where the armed option can go. [control]
#pragma once

namespace zv {

/// Paints every live button for the option that is armed (OptionCode), in the colours that it has now: those
/// that fit in its colour, the others as faces. Nothing without one.
void HighlightArmed();
/// Ends highlighting: every button that does not play gets its colours back. `except` keeps one as it is.
void ResetJingles(int except = -1);

}  // namespace zv
