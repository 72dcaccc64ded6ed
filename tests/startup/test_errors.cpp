// The mark, the log, the report with its fuse, the console, and the guard that leads to them.

#include "startup/guard.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings/program_settings.h"
#include "tests/startup/surroundings.h"
#include "tests/support/approved.h"
#include "tests/support/places.h"

namespace zv::test {
namespace {

class Errors : public ProgramFolderTest {
  protected:
    void SetUp() override {
        ProgramFolderTest::SetUp();
        startupUpcalls.reportWindowOpen = [this] { return reportOpen; };
        startupUpcalls.showReportWindow = [this](const std::string& title, const std::string&) {
            reports.push_back(title);
        };
        startupUpcalls.endProgram = [this] { ended = true; };
        write("language.ini",
              "[English]\nErrorNotice1=Sorry.<br>An error.\nErrorStop=Again.<br>Stop?\nmStrEr=Code \n"
              "mStrEr40=Too slow\nBASS_ERROR_UNSTREAMABLE =no\xC3\xA9\nBASS_ERROR_FILEOPE=no file\n");
        LanguageStore.SetSection(kEnglish);
    }
    bool reportOpen = false, ended = false;
    std::vector<std::string> reports;
};

TEST_F(Errors, LogHasTheNewestLineFirst) {
    ErrLog("x", "not on");
    EXPECT_FALSE(there("Error.log"));
    ErrLog("bass.dll", "forced", true);
    ErrorLogOn = true;
    ErrLog("", "second");
    EXPECT_EQ(read("Error.log"),
              "2026-01-31 14:05:09 : second\r\n2026-01-31 14:05:09 : bass.dll : forced\r\n");
}

TEST_F(Errors, EngineErrors) {
    ErrorLogOn = true;
    std::string shownMark;
    startupUpcalls.showErrorMark = [&](const ErrorMark& mark) {
        shownMark = mark.mode + (mark.blink ? " 1 " : " 0 ") + mark.toolTip;
    };
    around.engineError = 2;
    Error_("gone.wav");
    EXPECT_EQ(read("Error.log"), "2026-01-31 14:05:09 : gone.wav\r\n");
    around.engineError = 41;
    Error_("bad.wav");
    EXPECT_THAT(read("Error.log"), HasSubstr(" : Bass, code: 41 : bad.wav \r\n"));
    EXPECT_EQ(shownMark, "no 0 bad.wav");

    std::string shown;
    int stops = 0;
    startupUpcalls.showStreamError = [&](const std::string& text) { shown = text; };
    startupUpcalls.stopPlayStream = [&] { ++stops; };
    around.engineError = 40;
    ErrorLive_("http://x");
    EXPECT_EQ(shown, "Too slow: http://x");
    EXPECT_THAT(read("Error.log"), HasSubstr(" : Bass, code: 40: Too slow : http://x, \r\n"));
    around.engineError = 7;
    ErrorLive_("http://x");
    EXPECT_EQ(shown, "Code7: http://x");
    EXPECT_EQ(stops, 2);

    EXPECT_EQ(BassErrMessage(47), "no\xC3\xA9");  // its key ends with a blank
    // Each code has a key of its own.
    std::string told;
    fs::copy_file(sourceDir() + "/data/language_original.ini", path("language.ini"),
                  fs::copy_options::overwrite_existing);
    for (int code = -1; code < 60; ++code)
        if (const std::string text = BassErrMessage(code); !text.empty())
            told += std::to_string(code) + " " + text + "; ";
    expectApproved("startup/engine_errors.approved", told + "\n");
}

TEST_F(Errors, TheConsoleTakesLinesUnlessItIsPaused) {
    std::string told;
    bool paused = false;
    startupUpcalls.consolePaused = [&] { return paused; };
    startupUpcalls.consoleLines = [&](const std::vector<std::string>& lines, bool clear) {
        for (const std::string& line : lines) told += line + (clear ? "! " : " ");
    };
    ConsoleAdd("a\r\nb\nc", true), ConsoleAdd("d");
    paused = true;
    ConsoleAdd("e");
    EXPECT_EQ(told, "a! b! c! d ");
}

TEST_F(Errors, ReportTellsWhatHappened) {
    EXPECT_FALSE(guarded("modMain.CloseFile", [] { throw ProgramError(13, "Type mismatch", 120); }));
    EXPECT_EQ(ReportTitle, "1.0.0:modMain.CloseFile:Type mismatch at line 120");
    EXPECT_THAT(reports, ElementsAre(ReportTitle));
    EXPECT_EQ(around.clipboard, ReportText);
    EXPECT_THAT(ReportText, HasSubstr("Sorry.\r\nAn error.\r\n"));
    EXPECT_THAT(ReportText, HasSubstr("Version: 1.0.0\r\nFunction: modMain.CloseFile\r\nError Number: 13\r\n"
                                      "Error Description: Type mismatch\r\nLast known line number: 120\r\n"
                                      "Operating System: Test system - Version: 1\r\n"));
    const std::string first = read("Errors.txt");
    EXPECT_EQ(first, "2026-01-31\r\n" + ReportText + "End of report\r\n" + std::string(65, '=') + "\r\n");
    EXPECT_EQ(guardedOr(".lstPal_MouseUp", 7, []() -> int { throw std::out_of_range("slot 120"); }), 7);
    EXPECT_THAT(ReportText, Not(HasSubstr("Last known line number")));
    EXPECT_EQ(read("Errors.txt").find("2026-01-31\r\n" + ReportText), 0U);  // the newest block first
    EXPECT_TRUE(read("Errors.txt").ends_with(first));
}

TEST_F(Errors, FuseStopsALoopOfReports) {
    const auto fail = [] { guarded(".Timer", [] { throw std::runtime_error("x"); }); };
    int unloaded = 0;
    startupUpcalls.unloadOtherWindows = [&] {
        ++unloaded;
        fail();  // a window that fails while it goes asks nothing more
    };
    fail();
    reportOpen = true;
    fail();  // dropped: a report is open
    EXPECT_EQ(ErrCount, 1);
    reportOpen = false;
    fail();
    fail();
    EXPECT_EQ(reports.size(), 3U);
    EXPECT_TRUE(around.boxes.empty());
    fail();
    EXPECT_EQ(reports.size(), 3U);
    EXPECT_THAT(around.boxes, ElementsAre("Again.\r\nStop?"));
    EXPECT_FALSE(ended);
    EXPECT_EQ(unloaded, 1);
    around.answer = BoxAnswer::yes;
    fail();
    EXPECT_TRUE(ended);
}

TEST_F(Errors, WhatIsCaughtHasItsNumberAndTheReportNeverThrows) {
    const std::pair<int, std::function<void()>> rows[] = {
        {7, [] { throw std::bad_alloc(); }},
        {75, [] { std::ignore = fs::file_size("/nowhere/at/all"); }},
        {9, [] { throw std::out_of_range("x"); }},
        {5, [] { throw std::runtime_error("x"); }},
        {5, [] { throw 42; }},
        {6, [] { throw ProgramError(6, "Overflow"); }},
    };
    for (const auto& [number, fail] : rows) {
        ErrCount = 0;
        EXPECT_FALSE(guarded("x", fail));
        EXPECT_THAT(ReportText, HasSubstr("Error Number: " + std::to_string(number) + "\r\n"));
    }
    EXPECT_TRUE(guarded("x", [] {}));
    startupUpcalls.showReportWindow = [](const std::string&, const std::string&) {
        throw std::runtime_error("window");
    };
    EXPECT_FALSE(guarded("x", [] { throw 42; }));
    startupUpcalls.reportWindowOpen = []() -> bool { throw std::runtime_error("open"); };
    EXPECT_FALSE(guarded("x", [] { throw 42; }));
}

}  // namespace
}  // namespace zv::test
