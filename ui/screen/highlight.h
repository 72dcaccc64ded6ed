/// Buttons that show where the armed option can go. [control]
#pragma once

#include <string>

namespace zv {

/// Paints every live button for the option that is armed (OptionCode), in the colours that it has now: those
/// that fit in its colour, the others as faces. What sounds keeps its face. Nothing without one. A button's
/// borderColor that equals its backColor means: a border of that colour around a plain face.
void HighlightArmed();
/// The same for one button.
void HighlightArmed(int index);
/// Colours of a button that does not sound: its own, or those of the armed option.
void PaintAtRest(int index);
/// What the display says while an option waits for a button ("Loop: choose a button"); empty without one.
std::string ArmedText();
/// Ends highlighting: every button that does not play, hidden ones too, gets its colours back. `except` keeps one as it is.
void ResetJingles(int except = -1);

}  // namespace zv
