/// The keys of the main window and what they do. The keyboard acts by this table and the list of keys shows it:
/// one place to add a key. [control]
#pragma once

#include <vector>

#include "model/actions.h"
#include "platform/controls.h"

namespace zv {

/// Modifier keys that a row asks for. The event's own mask or the polled state is asked, as each row says.
enum class KeyHeld {
    any,
    eventAlt,
    noEventAlt,
    eventCtrl,  ///< no Shift, no Alt
    eventCtrlShift,
    ctrl,
    noCtrl,
    alt,
    altNoCtrl,
    ctrlNoAlt,
    neither,  ///< no Ctrl, no Alt
};

/// What the keyboard's own repeats of a held key do.
enum class KeyRepeat {
    acts,       ///< each one acts
    swallowed,  ///< nothing, and the focused control does not see them
};

struct KeyRow {
    Key key;
    KeyHeld held;
    Action action;
    int argument;
    KeyRepeat repeat;
    bool window;  ///< a key of the window: it acts while text is typed, and the focused control sees it too
    /// What the list of keys shows: two keys that are held together, and a key of the language each; one that
    /// begins with "scKey" is a key of the language itself. A row without a text is not in the list.
    const char* first;
    const char* second;
    const char* text;
    const Control* needs;  ///< the list leaves the row out while this control is disabled; null: never
};

/// All rows, in the order of the list. Rows without a key only explain what a held modifier key does.
const std::vector<KeyRow>& KeyTable();

}  // namespace zv
