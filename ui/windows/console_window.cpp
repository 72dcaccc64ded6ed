#include "ui/windows/console_window.h"

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/upcalls.h"

namespace zv {

bool ConsoleOpen = false;

namespace {

constexpr int kWidth = 366, kHeight = 200;  // pixels
constexpr std::size_t kMostLines = 2000;

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

ConsoleWindow::ConsoleWindow() {
    Control& window = form.window;
    form.describe({.blocks = {{{.rows = {{.cells = {{&lstConsole}}, .height = 80, .grows = true},
                                         {.cells = {{&ckPause}, {}, {&btCopy}, {&btClear}, {&btClose}}}},
                                .bare = true}}},
                   .width = kWidth,
                   .height = kHeight,
                   .borderless = true});

    btCopy.onClick = [] { guarded("frmConsole.btCopy_Click", copyLines); };
    btClear.onClick = [] { guarded("frmConsole.btClear_Click", clearLines); };
    btClose.onClick = [] { guarded("frmConsole.btClose_Click", CloseConsole); };
    form.onClosed = [] { ConsoleOpen = false; };
    window.onMouseDown = [](const MouseEvent& event) { drag = {true, event.x, event.y}; };
    window.onMouseUp = [](const MouseEvent&) { drag.held = false; };
    window.onMouseMove = [&window](const MouseEvent& event) {
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
        ConsoleWindow& w = frmConsole();
        w.form.window.caption = Ln("coConsole");
        w.ckPause.caption = Ln("coPause");
        w.btCopy.caption = Ln("coCopy");
        w.btClear.caption = Ln("coClear");
        w.btClose.caption = Ln("coClose");
        w.form.open();
        ConsoleOpen = true;
        showLines();
    });
}

void CloseConsole() {
    ConsoleOpen = false;
    frmConsole().form.close();
}

void FillConsoleUpcalls() {
    startupUpcalls.consolePaused = [] { return frmConsole().ckPause.value() == 1; };
    startupUpcalls.consoleLines = addLines;
}

}  // namespace zv
