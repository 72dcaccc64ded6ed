// The parts of platform/desktop.h that a presenter, a keyboard or the system answers on a real screen: here
// the script does.
#include <algorithm>
#include <optional>
#include <utility>

#include "platform/desktop.h"
#include "platform/qt/view/shell.h"
#include "platform/rehearsal/stage.h"
#include "platform/waiting.h"

namespace zv {
namespace {

constexpr Monitor kScreen{0, 0, 1280, 800};

std::optional<std::string> preparedAnswer() {
    Stage& stage = Stage::instance();
    if (stage.answers.empty()) return std::nullopt;
    std::string answer = std::move(stage.answers.front());
    stage.answers.pop_front();
    return answer;
}

/// The answer prepared, else the one that comes while a dialog waits.
std::optional<std::string> nextAnswer() {
    const Stage& stage = Stage::instance();
    if (stage.answers.empty() && stage.playUntil && stage.answerComes && stage.answerComes(false)) {
        const Waiting waiting(Waiting::For::answer, nullptr,
                              [] { Stage::instance().answers.emplace_front("cancel"); });
        stage.playUntil([&stage] { return !stage.answers.empty(); });
    }
    return preparedAnswer();
}

const char* text(BoxAnswer answer) {
    switch (answer) {
        case BoxAnswer::ok:
            return "ok";
        case BoxAnswer::cancel:
            return "cancel";
        case BoxAnswer::yes:
            return "yes";
        case BoxAnswer::no:
            return "no";
    }
    return "";
}

/// The answer that agrees or declines, as the box words it.
BoxAnswer worded(BoxButtons buttons, bool agree) {
    switch (buttons) {
        case BoxButtons::yesNo:
            return agree ? BoxAnswer::yes : BoxAnswer::no;
        case BoxButtons::okCancel:
            return agree ? BoxAnswer::ok : BoxAnswer::cancel;
        case BoxButtons::ok:
            break;
    }
    return BoxAnswer::ok;
}

std::string dialog(const std::string& kind, const std::string& title) {
    const std::optional<std::string> answer = nextAnswer();
    const bool given = answer && *answer != "cancel" && *answer != "no";
    std::string path = given ? Stage::instance().file(*answer) : std::string{};
    noteEvent(kind, title + " -> " +
                        (given    ? *answer
                         : answer ? "cancel"
                                  : "cancel (no answer was prepared)"));
    return path;
}

}  // namespace

// ---- dialogs
// ---------------------------------------------------------------------------------------------------

BoxAnswer messageBox(const std::string& message, const std::string& title, BoxKind kind, BoxButtons buttons,
                     const BoxWords& own) {
    const Stage& stage = Stage::instance();
    BoxAnswer given = worded(buttons, stage.closing);
    std::string remark;
    const auto understood = [&](const std::string& answer) {
        if (answer == "yes" || answer == "ok") return worded(buttons, true);
        if (answer != "no" && answer != "cancel" && stage.fail)
            stage.fail("the answer \"" + answer + "\" does not fit the message box \"" + message + "\"");
        return worded(buttons, false);
    };
    const auto prepared = [&]() -> std::optional<BoxAnswer> {
        const std::optional<std::string> answer = preparedAnswer();
        return answer ? std::optional(understood(*answer)) : std::nullopt;
    };
    std::optional<BoxAnswer> answer = prepared();
    if (!answer && !stage.closing && askOnCard && stage.answerComes &&
        stage.answerComes(buttons == BoxButtons::ok)) {
        const BoxWords words{own.ok.empty() ? "OK" : own.ok, own.cancel.empty() ? "Cancel" : own.cancel,
                             own.yes.empty() ? "Yes" : own.yes, own.no.empty() ? "No" : own.no, own.destroys};
        answer = askOnCard({message, title, kind, buttons, words}, prepared);
    }
    if (answer) {
        given = *answer;
    } else if (buttons != BoxButtons::ok && !stage.closing) {
        remark = " (no answer was prepared)";
    }
    noteEvent("box", title + ": " + message + " -> " + text(given) + remark);
    return given;
}

std::string openFileDialog(const std::string& title, const std::string&, const std::string&) {
    return dialog("file", title);
}

std::string folderDialog(const std::string& title, const std::string&) { return dialog("folder", title); }

void popupMenu(Control&, const std::vector<MenuItem>& items) {
    const Stage& stage = Stage::instance();
    if (!stage.chooseFromMenu) return;
    const std::string name = stage.chooseFromMenu(items);
    const auto item = std::ranges::find(items, name, &MenuItem::name);
    if (item == items.end()) return;
    // The choice outlives the list: a handler may rebuild the menu that it came from.
    const std::function<void()> chosen = item->chosen;
    if (chosen) chosen();
}

// ---- events, keyboard, system
// ----------------------------------------------------------------------------------

void processEvents() {
    if (const auto first = std::exchange(Stage::instance().onFirstEvents, nullptr)) first();
    shell::flushChanged();
    shell::deliverEvents();
}

void waitUntil(const std::function<bool()>& over) {
    processEvents();
    const Stage& stage = Stage::instance();
    if (stage.playUntil) stage.playUntil(over);
}

void quit(int) { Stage::instance().quitAsked = true; }

int modifierKeys() { return Stage::instance().mods; }

bool keyHeld(int virtualKey) { return Stage::instance().heldKeys.contains(virtualKey); }

bool mouseOver(const Control& window) { return window.name == Stage::instance().mouseWindow; }

void setClipboard(const std::string& contents) { noteEvent("clipboard", contents); }

std::vector<Monitor> monitors() { return {kScreen}; }

void openDocument(const std::string& target) { noteEvent("open", target); }

void showInFolder(const std::string& file) { noteEvent("show", file); }

void runMinimised(const std::string& command) { noteEvent("run", command); }

bool setProcessPriority(int) { return true; }

std::string systemDescription() { return "Rehearsal - Version: 1"; }

bool systemIsFrench() { return false; }

}  // namespace zv
