/// What stands around the program while it rehearses: devices, held keys, prepared answers, the log of
/// events. One for the run; the answers of platform/desktop.h and the player of the script share it.
/// [control]
#pragma once

#include <cstdint>
#include <deque>
#include <fstream>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/desktop.h"
#include "platform/offline/offline_devices.h"

namespace zv {

inline constexpr const char* kMainOutput = "Main output";
inline constexpr const char* kAuxOutput = "Auxiliary output";
inline constexpr const char* kMicrophone = "Microphone";
inline constexpr int kLeftMouse = 1;  ///< its key number

struct Stage {
    static Stage& instance();

    std::shared_ptr<OfflineDevices> devices;  ///< made when the rehearsal begins

    int mods = 0;                     ///< kShiftMask | kCtrlMask | kAltMask
    std::set<int> heldKeys;           ///< virtual key numbers
    std::deque<std::string> answers;  ///< for the next message boxes and dialogs
    bool closing = false;             ///< the script has ended: questions are answered with yes
    bool quitAsked = false;

    /// Waits, performing the script, until an item of the open menu is chosen; its name, or nothing.
    std::function<std::string(const std::vector<MenuItem>&)> chooseFromMenu;
    /// Waits, performing the script, until `over` says so or the script has ended.
    std::function<void(const std::function<bool()>& over)> playUntil;
    /// True when the script still answers a question: by its card, or by an `answer` unless only the card counts.
    std::function<bool(bool cardOnly)> answerComes;
    /// Called once, when the program lets waiting events run for the first time: it has filled its tables by
    /// then.
    std::function<void()> onFirstEvents;
    /// Tells of something that makes the rehearsal fail.
    std::function<void(const std::string&)> fail;

    std::ofstream events;
    std::int64_t startMs = -1;  ///< monotonic time of the script's 0 ms, -1 before

    /// A file named in a script: absolute, or in the program's folder, or beside the script.
    std::string file(const std::string& name) const;
    std::string scriptFolder;
    std::string mouseWindow = "frmMain";  ///< where the last press was
};

/// The present ms of the script; "start" before it began.
std::string whenText();
/// Adds a line to events.log: the present time in ms of the script, `kind`, `text` with line ends as " / ".
void noteEvent(std::string_view kind, std::string_view text);
/// `text` on one line: `lineEnd` in place of line ends.
std::string onOneLine(std::string_view text, std::string_view lineEnd);

}  // namespace zv
