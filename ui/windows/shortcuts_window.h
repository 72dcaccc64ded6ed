/// The list of keys: a small window that scrolls. [control]
#pragma once

#include <memory>
#include <vector>

#include "platform/controls.h"

namespace zv {

struct ShortcutsWindow {
    ShortcutsWindow();

    Control window;            ///< "frmShortcuts"
    Control fraShow, fraKeys;  ///< what is seen of the list, and the list that moves behind it
    Control ucScrollbarV, btHelp, btOK;
    std::vector<std::unique_ptr<Control>> lblKey, lblKeyBis, lblSCDesc;  ///< a row each, same index
};

ShortcutsWindow& frmShortcuts();
/// Shows it over the main window, with the keys that are alive; it does not hold the main window up.
void OpenShortcuts();
void CloseShortcuts();

}  // namespace zv
