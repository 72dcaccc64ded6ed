/// The families of jingle buttons: 120 at most, made when the grid first needs them and never destroyed.
#pragma once

#include <string>

#include "platform/controls.h"

namespace zv {

/// One button with its parts. The button is of kind `jingle` and painted by one widget, which paints the
/// parts from their records: geometry in twips inside the button, colours as they stand.
///   b_Jingle                   caption (of two lines the first is the duration), both colours, value: JingleState
///   JremBG, JRemLev            the bar's track and the bar: filled with backColor, hidden while nothing sounds
///   lp, sq, fx, pm_Jingle      state marks: a dot in foreColor while visible; caption is their symbol letter
///   picPlaylist, lblPlaylist   a small field with the letter "P" or "K" of the symbol font
///   picbtnumber, lblbtnumber   the number
///   ckJingSel                  the selection box, value 0 or 1
/// Not made yet: null from Button().
struct JingleButton {
    JingleButton(Control& block, int index);

    Control b_Jingle;
    Control JremBG, JRemLev, lp_Jingle, sq_Jingle, fx_Jingle, pm_Jingle;
    Control picPlaylist, lblPlaylist, picbtnumber, lblbtnumber, ckJingSel;
};

/// The family of an index, null when it was never made or the index is out of range. [control]
JingleButton* Button(int index);
/// The same, made when it is missing. [control]
JingleButton& MakeButton(int index);
/// Shows or hides the button itself (its parts go with it).
void ShowButton(int index, bool visible);
/// Hides the marks of a slot's state (loop, sequence, effects, play mode).
void HideMarks(int index);
/// Shows the marks of a filled slot from its record.
void ShowMarks(int index);
/// Back and text colour at once; nothing when the button is not there.
void PaintButton(int index, Colour back, Colour fore);
/// What the button tells beside its colours: whether it sounds, and for whom, or why it cannot.
void ShowState(int index, bool sounds);
/// The text of a button from its record: with the duration above it when JDispDuration is 1. A slot that
/// failed to open shows MakeBJingName. Empty for an empty slot.
std::string ButtonText(int index);
/// The colour that a silent button wants: red text when its file is missing.
void RestColours(int index, Colour& back, Colour& fore);
/// True when the small field is shown with this letter ("P" plays a playlist, "K" is held by one).
bool HasPlaylistMark(int index, char letter);

inline constexpr Colour kMissingColour = 255;  ///< red

}  // namespace zv
