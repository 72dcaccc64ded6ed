/// The families of jingle buttons: 120 at most, made when the grid first needs them and never destroyed.
#pragma once

#include <functional>

#include "platform/controls.h"

namespace zv {

/// One button with its parts. The button is of kind `jingle` and painted by one widget, which paints the
/// parts from their records: geometry in twips inside the button, colours as they stand.
///   b_Jingle                   caption (of two lines the first is the duration), both colours, value: JingleState
///   JremBG, JRemLev            the bar's track and the bar: filled with backColor, hidden while nothing sounds
///   lp, sq, fx, pm_Jingle      state marks: a chip in foreColor while visible; caption is their symbol letter
///   picPlaylist, lblPlaylist   a small field with the letter "P" or "K" of the symbol font
///   picbtnumber, lblbtnumber   the number
///   ckJingSel                  the selection box, value 0 or 1
/// Button() gives null until the family is made.
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
/// Called for each button that is made, with its index: colours and handlers come from there.
extern std::function<void(int index)> buttonMade;

}  // namespace zv
