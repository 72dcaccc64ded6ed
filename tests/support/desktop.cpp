#include "tests/support/desktop.h"

#include <algorithm>

#include "platform/controls.h"
#include "platform/forms.h"

namespace zv::test {

Desktop& desktop() {
    static Desktop one;
    return one;
}

namespace {

template <class T>
T next(std::deque<T>& queue, T otherwise) {
    if (queue.empty()) return otherwise;
    T value = queue.front();
    queue.pop_front();
    return value;
}

std::string chosenPath() {
    ++desktop().dialogs;
    return next(desktop().paths, std::string());
}

void ask(const std::string& what, const Control& of) { desktop().asked.push_back(what + " " + of.name); }

constexpr int kListRows = 10;

}  // namespace
}  // namespace zv::test

namespace zv {

using test::desktop;

void showWindow(Control& window) { window.visible = true; }
void layOutForm(Control& window, int mostWidth, int mostHeight) {
    window.width = std::min(600, mostWidth) * kTwipsPerPixel;
    window.height = std::min(400, mostHeight) * kTwipsPerPixel;
}
void scrollForm(Control& window, int by) { test::ask("scroll " + std::to_string(by), window); }
void embedForm(Control&, Control& host) { test::ask("embed in", host); }
void hideWindow(Control& window) { window.visible = false; }
void lockUpdates() {}
void unlockUpdates() {}
void processEvents() {}
void waitUntil(const std::function<bool()>&) {
    if (desktop().whileWaiting) desktop().whileWaiting();
}
void quit(int) { desktop().quitAsked = true; }
void setFocus(Control& control) { desktop().focus = &control; }
Control* focusedControl() { return desktop().focus; }
void setAlwaysOnTop(Control& window, bool on) {
    if (on) test::ask("on top", window);
}
void selectAllText(Control& field) { test::ask("select", field); }
void setFullScreen(Control&, bool) {}
void setMinimumSize(Control&, int width, int height) {
    desktop().leastWidth = width, desktop().leastHeight = height;
}
bool isMinimised(const Control&) { return false; }
bool grabWindow(Control&, const std::string&) { return false; }
void centreListRow(Control& list, int row) { list.topRow = std::max(0, row - test::kListRows / 2); }
int visibleListRows(const Control&) { return test::kListRows; }

BoxAnswer messageBox(const std::string& text, const std::string&, BoxKind, BoxButtons buttons,
                     const BoxWords&) {
    desktop().boxes.push_back(text);
    return test::next(desktop().answers, buttons == BoxButtons::ok ? BoxAnswer::ok : BoxAnswer::no);
}
std::string openFileDialog(const std::string&, const std::string&, const std::string&) {
    return test::chosenPath();
}
std::string folderDialog(const std::string&, const std::string&) { return test::chosenPath(); }
void popupMenu(Control&, const std::vector<MenuItem>& items) {
    desktop().menu = items;
    for (const MenuItem& item : items)
        if (item.name == desktop().menuChoice && item.chosen) return item.chosen();
}

int modifierKeys() { return desktop().modifiers; }
bool keyHeld(int virtualKey) { return desktop().keys.contains(virtualKey); }
bool mouseOver(const Control& window) { return desktop().mouseOver == &window; }
void setClipboard(const std::string& text) { desktop().clipboard = text; }
bool registerFont(const std::string& file) { return desktop().fonts.insert(file).second; }
bool fontInstalled(const std::string&) { return true; }
std::vector<Monitor> monitors() { return desktop().screens; }
void openDocument(const std::string& target) { desktop().documents.push_back(target); }
void showInFolder(const std::string& file) { desktop().shown.push_back(file); }
void runMinimised(const std::string& command) { desktop().commands.push_back(command); }
bool setProcessPriority(int) { return true; }
std::string systemDescription() { return "Test system - Version: 1"; }
bool systemIsFrench() { return false; }

}  // namespace zv
