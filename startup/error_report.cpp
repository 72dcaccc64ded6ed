// Of startup/errors.h: the report of an unexpected error, where it is kept, and the fuse that stops a loop of them.
#include <filesystem>
#include <new>

#include "platform/desktop.h"
#include "platform/paths.h"
#include "startup/backups.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/stores.h"
#include "startup/upcalls.h"

namespace zv {

int ErrCount = 0;
std::string ReportTitle, ReportText;

namespace {

constexpr int kErrorMemory = 7;
constexpr int kErrorSubscript = 9;
constexpr int kErrorCall = 5;
constexpr std::size_t kRuleLength = 65;
constexpr const char* kSupportPath = "/support ";

bool stopQuestionOpen = false;

struct Release {
    bool& flag;
    ~Release() { flag = false; }
};

void askToStop() {
    stopQuestionOpen = true;
    const Release release{stopQuestionOpen};
    callUp(startupUpcalls.unloadOtherWindows);
    const std::string text = LnBox("ErrorStop");
    if (messageBox(text, "Zentrova", BoxKind::stop, BoxButtons::yesNo, Verbs("vbClose", "vbGoOn")) ==
        BoxAnswer::yes) {
        callUp(startupUpcalls.endProgram);
    }
}

std::string reportText(std::string_view procedure, int number, std::string_view description, int line) {
    std::string text;
    const auto add = [&](std::string_view what) { text.append(what).append("\r\n"); };
    for (const char* key : {"ErrorNotice1", "ErrorNotice2", "ErrorNotice3"}) add(br2chr13(Ln(key)));
    add("Version: " + ProgramVersion());
    add("Function: " + std::string(procedure));
    add("Error Number: " + std::to_string(number));
    add("Error Description: " + std::string(description));
    if (line != 0) add("Last known line number: " + std::to_string(line));
    add("Operating System: " + OSName());
    for (const char* key : {"ErrorNotice4", "ErrorNotice5", "ErrorNotice6"}) add(br2chr13(Ln(key)));
    add(startupUpcalls.serviceAddress + kSupportPath);
    return text;
}

void keepReport() {
    const std::filesystem::path file = nativePath(InProgramFolder("Errors.txt"));
    std::string old;
    readFile(file, old);
    replaceFile(
        file,
        LogDate() + "\r\n" + ReportText + "End of report\r\n" + std::string(kRuleLength, '=') + "\r\n" + old,
        Flush::later);
}

/// One step of the report; what fails in it is dropped.
template <class Step>
void attempt(Step step) noexcept {
    try {
        step();
    } catch (...) {
    }
}

}  // namespace

const std::string& OSName() {
    static const std::string name = systemDescription();
    return name;
}

void ErrorReport(std::string_view procedure, int number, std::string_view description, int line) noexcept {
    attempt([&] {
        if (stopQuestionOpen) return;
        if (startupUpcalls.reportWindowOpen && startupUpcalls.reportWindowOpen()) return;
        if (++ErrCount >= ErrLimit) {
            askToStop();
            return;
        }
        ReportTitle = ProgramVersion() + ":" + std::string(procedure) + ":" + std::string(description) +
                      " at line " + std::to_string(line);
        ReportText = reportText(procedure, number, description, line);
        attempt([] { setClipboard(ReportText); });
        attempt(keepReport);
        attempt([] { callUp(startupUpcalls.showReportWindow, ReportTitle, ReportText); });
    });
}

void reportCaught(std::string_view procedure) noexcept {
    try {
        throw;
    } catch (const ProgramError& e) {
        ErrorReport(procedure, e.number, e.what(), e.line);
    } catch (const std::bad_alloc&) {
        ErrorReport(procedure, kErrorMemory, "Out of memory");
    } catch (const std::filesystem::filesystem_error& e) {
        ErrorReport(procedure, kErrorFileAccess, e.what());
    } catch (const std::out_of_range& e) {
        ErrorReport(procedure, kErrorSubscript, e.what());
    } catch (const std::exception& e) {
        ErrorReport(procedure, kErrorCall, e.what());
    } catch (...) {
        ErrorReport(procedure, kErrorCall, "Unknown error");
    }
}

}  // namespace zv
