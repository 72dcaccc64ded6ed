#include "ui/windows/console_window.h"

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/upcalls.h"

namespace zv {

bool ConsoleOpen = false;

namespace {

constexpr int kWidth = 5488, kHeight = 3000;  // twips
constexpr int kMargin = 90, kKeyHeight = 345;
constexpr std::size_t kMostLines = 2000;

void place(Control& control, int left, int top, int width, int height) {
    control.left = left;
    control.top = top;
    control.width = width;
    control.height = height;
}

/// What was told. Each press tells something: while nobody looks a line costs its own length only, and a
/// long show does not gather more than anybody reads.
std::deque<std::string> told;

void showLines() {
    Control& list = frmConsole().lstConsole;
    const int last = static_cast<int>(told.size()) - 1;
    list.items = std::vector<std::string>(told.begin(), told.end());
    list.listIndex = last;
    list.topRow = last;
}

void addLines(const std::vector<std::string>& lines, bool clear) {
    if (clear) told.clear();
    told.insert(told.end(), lines.begin(), lines.end());
    while (told.size() > kMostLines) told.pop_front();
    if (ConsoleOpen) showLines();
}

void copyLines() {
    std::string text;
    for (const std::string& line : told) {
        if (!text.empty()) text += "\r\n";
        text += line;
    }
    setClipboard(text);
}

void clearLines() {
    told.clear();
    showLines();
}

/// Drags the borderless window by its surface.
struct Drag {
    bool held = false;
    int x = 0, y = 0;
} drag;

}  // namespace

ConsoleWindow::ConsoleWindow()
    : window("frmConsole", ControlKind::window),
      lstConsole("lstConsole", ControlKind::listBox, &window),
      ckPause("ckPause", ControlKind::checkBox, &window),
      btCopy("btCopy", ControlKind::button, &window),
      btClear("btClear", ControlKind::button, &window),
      btClose("btClose", ControlKind::button, &window) {
    window.caption = "Console";
    window.width = kWidth;
    window.height = kHeight;
    ckPause.caption = "Pause";
    btCopy.caption = "Copy";
    btClear.caption = "Clear";
    btClose.caption = "Close";
    place(lstConsole, kMargin, kMargin, kWidth - 2 * kMargin, kHeight - 3 * kMargin - kKeyHeight);
    const int top = kHeight - kMargin - kKeyHeight;
    const int key = (kWidth - 5 * kMargin) / 4 / kTwipsPerPixel * kTwipsPerPixel;
    Control* keys[] = {&ckPause, &btCopy, &btClear, &btClose};
    for (int i = 0; i < 4; ++i) place(*keys[i], kMargin + i * (key + kMargin), top, key, kKeyHeight);

    btCopy.onClick = [] { guarded("frmConsole.btCopy_Click", copyLines); };
    btClear.onClick = [] { guarded("frmConsole.btClear_Click", clearLines); };
    btClose.onClick = [] { guarded("frmConsole.btClose_Click", CloseConsole); };
    window.onClose = CloseConsole;
    window.onMouseDown = [](const MouseEvent& event) { drag = {true, event.x, event.y}; };
    window.onMouseUp = [](const MouseEvent&) { drag.held = false; };
    window.onMouseMove = [this](const MouseEvent& event) {
        if (!drag.held) return;
        window.left = window.left + event.x - drag.x;
        window.top = window.top + event.y - drag.y;
    };
}

ConsoleWindow& frmConsole() {
    static ConsoleWindow console;
    return console;
}

void OpenConsole() {
    guarded("frmConsole.Form_Load", [] {
        showWindow(frmConsole().window);
        ConsoleOpen = true;
        showLines();
    });
}

void CloseConsole() {
    ConsoleOpen = false;
    hideWindow(frmConsole().window);
}

void FillConsoleUpcalls() {
    startupUpcalls.consolePaused = [] { return frmConsole().ckPause.value() == 1; };
    startupUpcalls.consoleLines = addLines;
}

}  // namespace zv
