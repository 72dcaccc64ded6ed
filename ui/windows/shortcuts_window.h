/// The list of keys: a window that scrolls. [control]
#pragma once

#include <vector>

#include "ui/windows/form_window.h"

namespace zv {

struct ShortcutsWindow {
    ShortcutsWindow();

    FormWindow form{"frmShortcuts", "scShortcuts"};
    Control& btHelp = form.control("btHelp", ControlKind::button, "scbtHelp");
    Control& btOK = form.control("btOK", ControlKind::button, "scbtOK");
    /// A row each, same index; hidden while what the row tells of is not there.
    std::vector<Control*> lblKey, lblKeyBis, lblSCDesc;
};

ShortcutsWindow& frmShortcuts();
/// Shows it over the main window, with the keys that are alive; it does not hold the main window up.
void OpenShortcuts();
void CloseShortcuts();

}  // namespace zv
