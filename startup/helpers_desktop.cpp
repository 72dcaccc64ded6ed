// Of startup/helpers.h: what asks something of the desktop or touches a control.
#include <algorithm>

#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/helpers.h"

namespace zv {

void SetTopMostWindow(Control& window, bool on) { setAlwaysOnTop(window, on); }

void SetProcessPriority(int priorityClass) { setProcessPriority(priorityClass); }

void SelectListItem(Control& list, const std::string& text) {
    const std::vector<std::string>& items = list.items();
    const auto found = std::find(items.begin(), items.end(), text);
    if (found != items.end()) list.listIndex = static_cast<int>(found - items.begin());
}

void SelectAllText(Control& textBox) { selectAllText(textBox); }

void OpenDocument(const std::string& path) { openDocument(path); }

}  // namespace zv
