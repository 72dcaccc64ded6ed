/// How a jingle button shows its record: colours, marks, state. Nothing happens for a button that was never made.
/// [control]
#pragma once

#include <string>

#include "platform/controls.h"

namespace zv {

inline constexpr Colour kMissingColour = 255;  ///< red: text of a button whose file is missing

/// First look of a button that was just made.
void DressButton(int index);
/// Shows or hides the button itself (its parts go with it).
void ShowButton(int index, bool visible);
/// Hides the marks of a slot's state (loop, sequence, effects, play mode).
void HideMarks(int index);
/// Shows the marks of a filled slot from its record.
void ShowMarks(int index);
/// The mark of a play mode on a button.
void ShowPlayModeMark(int index);
/// Back and text colour at once.
void PaintButton(int index, Colour back, Colour fore);
/// The colours of the loop, sequence and effects marks.
void PaintMarks(int index, Colour lp, Colour sq, Colour fx);
/// What the button tells beside its colours: whether it sounds, and for whom, or why it cannot.
void ShowState(int index, bool sounds);
/// The colours that a silent button wants: red text when its file is missing.
struct ButtonColours {
    Colour back, fore;
};
ButtonColours RestColours(int index);
/// True when the small field is shown with this letter ("P" plays a playlist, "K" is held by one).
bool HasPlaylistMark(int index, char letter);
/// State, time left and options, for a screen reader.
std::string DescribeButton(int index);

}  // namespace zv
