/// The channels on which the program says that something went wrong: the mark beside the display (ErrDisp),
/// the log (ErrLog), the report (ErrorReport) and the console. None of them throws, none of them stops the
/// show. [control]
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zv {

/// An error with a number, for what a std::exception alone cannot say. 13 is "does not convert", 6 "out of
/// range", 75 a file that cannot be reached.
class ProgramError : public std::runtime_error {
  public:
    ProgramError(int errorNumber, const std::string& description, int lastLine = 0)
        : std::runtime_error(description), number(errorNumber), line(lastLine) {}
    int number;
    int line;
};

inline constexpr int kErrorOverflow = 6;
inline constexpr int kErrorMismatch = 13;
inline constexpr int kErrorFileAccess = 75;

inline constexpr int ErrLimit = 4;           ///< the report that is a question instead: stop the program?
extern int ErrCount;                         ///< reports of this run
extern bool ErrorLogOn;                      ///< ErrLog writes without being forced
extern int ErrBlinkCount;                    ///< blink state of lblErr; ErrDisp clears it
extern int ErrOneShot;                       ///< not 0: the mark blinks; set by ErrDisp
extern std::string ReportTitle, ReportText;  ///< the last report, kept for sending

/// Puts one line at the top of Error.log: date, time, " : " source unless it is empty, " : " message.
/// Does nothing unless `force` or ErrorLogOn. A log that cannot be written is dropped.
void ErrLog(std::string_view source, std::string_view message, bool force = false);

/// The mark lblErr: mode "save", "wait", "ok", "no", "notification" or "hide"; `text` is its tool tip.
/// "save" starts SaveTimer when AutoSave is 1. `blink` not 0 makes it blink.
void ErrDisp(std::string_view mode, int blink = 0, std::string_view text = {});

/// A failure of the engine with a jingle: logs it with the engine's last code and shows `message` on the
/// mark.
void Error_(std::string_view message);
/// The same for the live stream, which it stops.
void ErrorLive_(std::string_view message);
/// As above with a code that another thread was given.
void ErrorLive_(std::string_view message, int code);
/// The language's text for an engine error code; empty for a code that has none.
std::string BassErrMessage(int code);

/// The report of an unexpected error in `procedure` ("modMain.CloseFile", ".lstPal_MouseUp"): clipboard,
/// Errors.txt, report window. One at a time: while the window is open further ones are dropped. The fourth of
/// a run asks whether to stop the program instead. Never throws. guarded() calls it; call it yourself only
/// where an error is no exception.
void ErrorReport(std::string_view procedure, int number, std::string_view description, int line = 0) noexcept;

/// Adds lines (split at line ends) to the console window unless it is paused; `clear` empties it first.
void ConsoleAdd(std::string_view line, bool clear = false);

/// Name and version of the system; asked for once.
const std::string& OSName();

/// "2026-01-31" and "14:05:09", the form of date and time in the logs.
std::string LogDate();
std::string LogTime();

}  // namespace zv
