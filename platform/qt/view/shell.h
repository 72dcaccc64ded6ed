/// The window shell without a word of the toolkit: what the executables need to show records and to press
/// them.
///
/// The view answers these functions of platform/desktop.h for both the desktop and the rehearsal:
///   showWindow, hideWindow, lockUpdates, unlockUpdates, setFocus, focusedControl, setAlwaysOnTop,
///   setFullScreen, setMinimumSize, isMinimised, grabWindow, centreListRow, visibleListRows, registerFont,
///   fontInstalled.
/// Everything else there (dialogs, menus, the keyboard's state, the clipboard, monitors, events, launching)
/// and platform/clock.h are answered by platform/qt/desktop or platform/rehearsal, whichever is linked.
///
/// The view has no timers, dialogs or event loop of its own. All of it is called on the interface thread.
/// [control]
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/controls.h"
#include "platform/qt/view/changes.h"
#include "platform/qt/view/windows.h"

namespace zv::shell {

/// Makes the application object; call once, before any window is shown. `offscreen` paints without a screen,
/// at a scale of 1 and with fixed font rendering, so that pictures can be compared. `argc` and `argv` must
/// live on.
void startQt(int& argc, char** argv, bool offscreen);
/// Ends it: deletes all windows and the application object. Records stay.
void endQt();

/// Names of the controls of a window whose texts do not find their room, joined by blanks; those that are seen.
std::string clippedTexts(const Control& window);
/// True when the record is on the screen: it, its parents and its window are visible.
bool isShown(const Control& control);

// ---- pressing what is shown
// --------------------------------------------------------------------------------- Each goes through the
// real widgets as the events of a mouse, a finger or a keyboard do: what is hidden, disabled or covered by
// something else gets nothing and the function returns false. Handlers have run when it returns. Places are
// twips inside the control, -1 its middle; shift states are kShiftMask | kCtrlMask | kAltMask.

struct Place {
    int x = -1;
    int y = -1;
};

bool mouseDown(Control& control, MouseButton button = MouseButton::left, int shift = 0, Place at = {});
bool mouseUp(Control& control, MouseButton button = MouseButton::left, int shift = 0, Place at = {});
/// Moves the mouse over the control with `held` (0 or bits of MouseButton) held down.
bool mouseMove(Control& control, int held = 0, int shift = 0, Place at = {});
/// Down and up.
bool click(Control& control, MouseButton button = MouseButton::left, int shift = 0, Place at = {});
/// Down, up, double click, up.
bool doubleClick(Control& control, int shift = 0, Place at = {});
/// Finger number `finger` (0 and up) touches or leaves the control.
bool touchDown(Control& control, int finger);
bool touchUp(Control& control, int finger);

/// A key to the window that has the focus (or the last one shown): the window's onKeyDown first, then the
/// focused control. `text` is what it types, empty for the key's own letter or nothing.
bool keyDown(Key key, int shift = 0, bool repeat = false, std::string_view text = {});
bool keyUp(Key key, int shift = 0);
/// Replaces a text box's (or an editable combo box's) contents as by typing.
bool typeText(Control& control, std::string_view text);
/// Selects a row of a list or combo box as by a click; -1 is refused.
bool selectRow(Control& control, int row);
/// Moves a slider as by dragging it.
bool moveSlider(Control& control, int value);
/// Ticks or unticks a check box (also one inside a jingle button), or chooses an option, as by a click;
/// nothing happens when it already is so.
bool setTicked(Control& control, bool on);
/// A file is dragged from elsewhere and let go over the control.
bool dropFiles(Control& control, const std::vector<std::string>& paths);

}  // namespace zv::shell
