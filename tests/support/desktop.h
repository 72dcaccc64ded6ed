/// The desktop as the tests see it: it answers platform/desktop.h from a queue and keeps what it was asked.
/// Time (platform/clock.h) is the virtual clock: a wait renders the sound that passes meanwhile.
#pragma once

#include <deque>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "platform/desktop.h"

namespace zv::test {

struct Desktop {
    std::deque<BoxAnswer> answers;       ///< of the next message boxes; then "no", or "ok" where that is all
    std::deque<std::string> paths;       ///< of the next file and folder dialogs; then cancelled
    int dialogs = 0;                     ///< file and folder dialogs shown
    std::vector<std::string> boxes;      ///< texts of the message boxes shown
    std::vector<std::string> documents;  ///< opened with the user's program
    std::vector<std::string> shown;      ///< in the file manager
    std::vector<std::string> commands;   ///< started
    std::vector<std::string> asked;  ///< of the window system, what no other field tells: "on top frmColPick"
    std::string clipboard;
    int modifiers = 0;                   ///< kShiftMask | kCtrlMask | kAltMask
    std::set<std::string> fonts;         ///< files of those registered
    std::set<int> keys;                  ///< key numbers held down; 1 is the left mouse button
    const Control* mouseOver = nullptr;  ///< window under the mouse
    std::vector<MenuItem> menu;          ///< the context menu opened last
    std::string menuChoice;              ///< item that the user picks from it
    Control* focus = nullptr;
    std::vector<Monitor> screens{{0, 0, 1280, 800}};
    int leastWidth = 0, leastHeight = 0;  ///< the smallest size that a window was given last, pixels
    bool quitAsked = false;
    std::function<void()> whileWaiting;  ///< runs once while a question waits for its answer
};

/// The one desktop; a test begins with `desktop() = {}`.
Desktop& desktop();

}  // namespace zv::test
