/// Everything that a press on a jingle button can mean: the decision order and its events. [control]
#pragma once

#include "platform/controls.h"

namespace zv {

/// The decision order of a press: the first line that fits acts. The only entry for a press from mouse,
/// keyboard and control surfaces.
void btClic(int index);

/// The end of a press on a jingle, wherever it came from: one that plays while it is held stops.
void ReleaseJingle(int index);

// Events of the button array. Each button is independent: several fingers press and release at once.
void b_Jingle_MouseDown(int index, const MouseEvent& event);
void b_Jingle_MouseUp(int index, const MouseEvent& event);
void b_Jingle_KeyDown(int index, KeyEvent& event);
/// Keyboard and touch form of a press.
void PlayJing(int index);

/// Stops everything and disarms the announcer and the stream.
void btStop_MouseDown(const MouseEvent& event);
void btStop_MouseUp(const MouseEvent& event);
/// Delete on the keyboard.
void DeleteObj();

}  // namespace zv
