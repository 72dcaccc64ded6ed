/// What the program asks of the desktop: windows, message boxes, dialogs, the clipboard, the keyboard, fonts,
/// monitors and launching. platform/qt answers on a real screen, platform/rehearsal from a script. [control]
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zv {

class Control;

// ---- windows -----------------------------------------------------------------------------------------------
/// Builds the shell of a window record at its first call and shows it; its size is the record's width and height.
void showWindow(Control& window);
void hideWindow(Control& window);
/// No repaint until the matching unlock; calls nest.
void lockUpdates();
void unlockUpdates();
/// Shows changed records now and lets waiting events run ("DoEvents").
void processEvents();
/// Lets events run until `over` says so, as a modal window does, or until the program ends.
void waitUntil(const std::function<bool()>& over);
/// Told when the user's session ends or the process is asked to end (SIGTERM, SIGINT, SIGHUP): there are 2 s to
/// save in, and nobody to answer a question. [control]
inline std::function<void()> onSessionEnd;

/// Runs until quit(). Returns the exit status.
int runEventLoop();
void quit(int status = 0);
void setFocus(Control& control);
/// Selects the whole text of a text box.
void selectAllText(Control& textBox);
/// The control with the focus in the program's windows; null without one.
Control* focusedControl();
void setAlwaysOnTop(Control& window, bool on);
void setFullScreen(Control& window, bool on);
void setMinimumSize(Control& window, int widthPixels, int heightPixels);
bool isMinimised(const Control& window);
/// Paints the window's present state to a PNG file; false when it cannot.
bool grabWindow(Control& window, const std::string& file);
/// Scrolls a list so that row `row` stands in its middle.
void centreListRow(Control& list, int row);
/// Rows of a list that are visible at once.
int visibleListRows(const Control& list);

// ---- dialogs -----------------------------------------------------------------------------------------------
enum class BoxKind { information, warning, stop, question };
enum class BoxButtons { ok, okCancel, yesNo };
enum class BoxAnswer { ok = 1, cancel = 2, yes = 6, no = 7 };
/// What the buttons of message boxes say; empty: the system's own word.
struct BoxWords {
    std::string ok, cancel, yes, no;
    bool destroys = false;  ///< what agreeing does cannot be taken back: its key is outlined in red
};
inline std::function<BoxWords()> boxWords;
/// Asks and waits for the answer. `words` are verbs of this question ("Delete file", "Keep"); where they are empty
/// `boxWords` counts. Once the main window is seen the question is a card over its grid, and sound, STOP and plain
/// presses of jingles go on meanwhile.
BoxAnswer messageBox(const std::string& text, const std::string& title, BoxKind kind, BoxButtons buttons,
                     const BoxWords& words = {});
struct Question {
    std::string text, title;
    BoxKind kind = BoxKind::question;
    BoxButtons buttons = BoxButtons::ok;
    BoxWords words;  ///< none empty
};
/// Shows the card and waits; nothing when there is no window to show it in. `elsewhere` is asked while it waits and
/// may know the answer as well.
inline std::function<std::optional<BoxAnswer>(const Question&,
                                              const std::function<std::optional<BoxAnswer>()>& elsewhere)>
    askOnCard;
/// Empty when the user gave up. `filter` is "*.wav;*.mp3".
std::string openFileDialog(const std::string& title, const std::string& folder, const std::string& filter);
std::string folderDialog(const std::string& title, const std::string& folder);

struct MenuItem {
    std::string name;     ///< "mnuLoop"
    std::string caption;  ///< "-" is a separator
    bool enabled = true, ticked = false;
    std::function<void()> chosen;
};
/// Opens a context menu at the mouse; returns when it is closed.
void popupMenu(Control& window, const std::vector<MenuItem>& items);

// ---- the rest ----------------------------------------------------------------------------------------------
/// Modifier keys held right now: kShiftMask | kCtrlMask | kAltMask.
int modifierKeys();
/// A key, or a mouse button by its key number (1 left, 2 right), of the program's windows.
bool keyHeld(int virtualKey);
/// True while the mouse stands over that window.
bool mouseOver(const Control& window);
void setClipboard(const std::string& text);
bool registerFont(const std::string& file);
bool fontInstalled(const std::string& family);
struct Monitor {
    int left = 0, top = 0, width = 0, height = 0;
};  ///< pixels
std::vector<Monitor> monitors();
/// True when a screen is there at all.
bool screenAvailable();
/// Opens a document or an address with the user's program for it.
void openDocument(const std::string& target);
/// The desktop's file manager shows the folder of that file with the file selected; where it cannot, the folder.
void showInFolder(const std::string& file);
/// Starts a command without waiting for it.
void runMinimised(const std::string& command);
/// Priority class of the process (32 normal, 16384 below, 32768 above, 128 high, 64 idle); false when refused.
bool setProcessPriority(int priorityClass);
/// Name and version of the operating system.
std::string systemDescription();
/// True when the user's language is French.
bool systemIsFrench();

}  // namespace zv
