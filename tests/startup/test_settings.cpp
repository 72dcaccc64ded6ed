// zv.ini: the whole table of keys from settings_table.txt, and the ways of loading, saving and sorting.
#include <gmock/gmock.h>

#include <fstream>
#include <map>

#include "platform/paths.h"
#include "startup/datafiles.h"
#include "startup/errors.h"
#include "startup/helpers.h"
#include "startup/settings.h"
#include "startup/stores.h"
#include "startup/upcalls.h"
#include "tests/startup/surroundings.h"

namespace zv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

namespace fs = std::filesystem;

struct Row {
    std::string key, def;
    std::vector<std::pair<std::string, std::string>> cases;  ///< text in the file, value in the record
};

std::vector<Row> table() {
    std::ifstream in(std::string(ZV_SOURCE_DIR) + "/tests/startup/settings_table.txt");
    std::vector<Row> rows;
    for (std::string line; std::getline(in, line);) {
        const std::vector<std::string> cells = Split(line, "|");
        if (line.starts_with('#') || cells.size() != 3) continue;
        Row row{Trim(cells[0]), Trim(cells[1]), {}};
        for (const std::string& one : Split(Trim(cells[2]), ", ")) {
            const std::size_t equals = one.rfind('=');
            row.cases.emplace_back(one.substr(0, equals), one.substr(equals + 1));
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

/// The record, by keys.
std::map<std::string, std::string> record() {
    std::map<std::string, std::string> out;
    for (const std::string& line : Split(SettingsDump(), "\n")) {
        const std::size_t equals = line.find('=');
        if (equals != std::string::npos) out[line.substr(0, equals)] = line.substr(equals + 1);
    }
    return out;
}

class SettingsFile : public ProgramFolderTest {
  protected:
    void SetUp() override {
        ProgramFolderTest::SetUp();
        write("language.ini",
              "[English]\n[Fran\xC3\xA7"
              "ais]\n[Deutsch]\n");
        fs::create_directory(path("Here"));
        fs::create_directory(path("Audio_Sample"));
    }
    void load(const std::string& contents) {
        write("zv.ini", contents);
        settings = {};
        NoteIniFileDate();
        LoadZVini();
    }
    std::string value(const std::string& key) { return SettingsStore.GetValue(key); }
};

TEST_F(SettingsFile, EveryKeyHasItsDefault) {
    load("");
    const auto fields = record();
    const std::vector<Row> rows = table();
    EXPECT_GE(rows.size(), 170U);
    for (const Row& row : rows) {
        EXPECT_TRUE(fields.contains(row.key)) << row.key;
        EXPECT_EQ(value(row.key), row.def == "-" ? "" : row.def) << row.key;
    }
    // Nothing in the file that the table does not know.
    for (const auto& [key, text] : SettingsStore.GetSectionLines(kSettingsSection)) {
        EXPECT_EQ(std::count_if(rows.begin(), rows.end(), [&](const Row& r) { return r.key == key; }), 1)
            << key;
    }
    EXPECT_EQ(ErrCount, 0);
    EXPECT_EQ(settings.MixerFreq, 44100);
    EXPECT_EQ(settings.SampleDir, programFolder() + "/Audio_Sample");
}

TEST_F(SettingsFile, EveryKeyLoadsConvertsAndClamps) {
    load("");
    const auto defaults = record();
    for (const Row& row : table()) {
        for (const auto& [text, wanted] : row.cases) {
            ErrCount = 0;
            load("[Settings]\r\n" + row.key + "=" + text + "\r\n");
            std::string expected = wanted == "!" ? defaults.at(row.key) : wanted;
            if (expected.starts_with("@")) expected = programFolder() + expected.substr(1);
            EXPECT_EQ(record()[row.key], expected) << row.key << "=" << text;
            EXPECT_EQ(ErrCount, wanted == "!" ? 1 : 0) << row.key << "=" << text;
            EXPECT_EQ(value(row.key), text) << "loading never changes what a key holds";
        }
    }
}

TEST_F(SettingsFile, EveryKeyIsSavedWhenItChanged) {
    const std::vector<std::string> notSaved{"ActiveFXTab", "IgnoredUpdate", "PRAfterDate", "Sealed",
                                            "VuRMS",       "Touch",         "Autorepeat"};
    for (const Row& row : table()) {
        load("[Settings]\r\n" + row.key + "=" + row.cases[0].first + "\r\n");
        const auto changed = record();
        write("zv.ini", "[Settings]\r\n");  // the file forgets, the record does not
        SaveZVini();
        const bool saved = std::find(notSaved.begin(), notSaved.end(), row.key) == notSaved.end();
        if (!saved) {
            EXPECT_EQ(value(row.key), "") << row.key;
            continue;
        }
        settings = {};
        LoadZVini();
        EXPECT_EQ(record().at(row.key), changed.at(row.key)) << row.key;
    }
}

TEST_F(SettingsFile, UntouchedWhenNothingChanged) {
    load("");
    SaveZVini();
    EXPECT_THAT(read("zv.ini"), StartsWith("[Settings]\r\nActiveFXTab=0\r\nActiveSTab=0\r\nActiveTab=0\r\n"));
    NoteIniFileDate();
    settings = {};
    LoadZVini();
    const auto date = fs::last_write_time(path("zv.ini"));
    const std::string bytes = read("zv.ini");
    SaveZVini();
    EXPECT_EQ(fs::last_write_time(path("zv.ini")), date);
    EXPECT_EQ(read("zv.ini"), bytes);
}

TEST_F(SettingsFile, ClampReachesTheFileWithTheNextSave) {
    load("[Settings]\r\nJinglesRows=3\r\nVUspeed= 07 \r\nRemainWarn=3.0\r\nCheckUpdate=maybe\r\n");
    EXPECT_EQ(value("JinglesRows"), "3");
    SaveZVini();
    EXPECT_EQ(value("JinglesRows"), "4");
    EXPECT_EQ(value("VUspeed"), "07");  // the same number
    EXPECT_EQ(value("RemainWarn"), "3.0");
    EXPECT_EQ(value("CheckUpdate"), "1");
}

TEST_F(SettingsFile, NonsenseInEveryKeyIsOneReport) {
    std::string text = "[Settings]\r\n";
    for (const Row& row : table()) text += row.key + "=\x01nonsense \xFF %s\r\n";
    load(text);
    EXPECT_EQ(ErrCount, 1);
    EXPECT_THAT(ReportText, HasSubstr("Function: modMain.LoadZVini\r\nError Number: 13\r\n"));
    EXPECT_THAT(ReportText, HasSubstr("JinglesRows="));
    EXPECT_EQ(settings.JinglesRows, 6);
    EXPECT_EQ(settings.Language, kEnglish);
    EXPECT_EQ(settings.JLabelSeparator[0], '\x01');
    load("[Settings]\r\nConfirmExit=300\r\n");
    EXPECT_THAT(ReportText, HasSubstr("Error Number: 6\r\nError Description: Overflow: ConfirmExit=300\r\n"));
}

TEST_F(SettingsFile, SpecialKeys) {
    load("[Settings]\r\nFullScreen=1\r\nCueRepeater=1\r\nBottomMargin=5\r\nDispspeed=90\r\nVuRMS=\r\n");
    EXPECT_EQ(settings.WindowMode, 2);
    EXPECT_EQ(settings.DispSpeed, 90);  // whatever the case of its letters
    EXPECT_THAT(read("zv.ini"), Not(HasSubstr("CueRepeater")));
    EXPECT_THAT(read("zv.ini"), Not(HasSubstr("BottomMargin")));

    write("palette.ini", "[x]\n");
    load("");
    EXPECT_EQ(settings.PaletteIndex, "Sample Radio");

    around.fontsThere = false;
    load("[Settings]\r\nJLabelFont=Gone Sans\r\n");
    EXPECT_EQ(settings.JLabelFont, "MS Sans Serif");

    struct {
        const char *pattern, *prefix, *suffix;
    } const table[] = {
        {"(duration)", "(", ")"}, {"duration", "", ""}, {"time", "", ""}, {"- duration s", "- ", " s"}};
    for (const auto& row : table) {
        load(std::string("[Settings]\r\nJDispDurationEncap=") + row.pattern + "\r\n");
        EXPECT_EQ(JDurationPrefix(), row.prefix);
        EXPECT_EQ(JDurationSuffix(), row.suffix);
    }
}

TEST_F(SettingsFile, LanguageIsChosenOnceFromTheSystem) {
    around.french = true;
    load("");
    EXPECT_EQ(settings.Language, kFrench);
    EXPECT_EQ(value("Sealed"), "0");
    load("[Settings]\r\nSealed=0\r\n");
    EXPECT_EQ(settings.Language, kEnglish);
    load("[Settings]\r\nLanguage=Deutsch\r\n");
    EXPECT_EQ(settings.Language, "Deutsch");
}

TEST_F(SettingsFile, DeviceChoiceAndRateGoByAbsence) {
    load("[Settings]\r\nDeviceSingle=yes\r\nMixerFreq=48000\r\n");
    EXPECT_EQ(settings.DeviceSingle, 1);
    settings.DeviceSinglePending = 0;  // chosen in the window, in force at the next start
    settings.MixerFreq = 44100;
    SaveZVini();
    EXPECT_THAT(read("zv.ini"), Not(HasSubstr("DeviceSingle")));
    EXPECT_THAT(read("zv.ini"), Not(HasSubstr("MixerFreq")));
}

TEST_F(SettingsFile, ResetKeepsTheGrid) {
    load("");
    settings.JinglesRows = 8;
    settings.VUspeed = 9;
    write("zv.ini", "");
    LoadZVini(false);
    EXPECT_EQ(settings.JinglesRows, 8);
    EXPECT_EQ(settings.VUspeed, 7);
}

TEST_F(SettingsFile, AccountLivesInItsOwnFile) {
    OpenAccountFile();
    EXPECT_EQ(read("account.ini"), "[SupportForumAccount]\r\nSupportUsername=\r\nSupportPassword=\r\n");
    load("");
    settings.SupportUsername = "anna";
    SaveZVini();
    EXPECT_EQ(read("account.ini"), "[SupportForumAccount]\r\nSupportUsername=anna\r\nSupportPassword=\r\n");
    EXPECT_THAT(read("zv.ini"), Not(HasSubstr("anna")));
}

TEST_F(SettingsFile, WhatIsForThisRunOnlyStaysOutOfTheFile) {
    load("");
    settings.ConfirmExit = 0;
    KeepOutOfFile("ConfirmExit");
    SaveZVini();
    EXPECT_EQ(value("ConfirmExit"), "1");
}

TEST_F(SettingsFile, Sorting) {
    write("zv.ini",
          "lost\r\nb=2\r\n\xC9"
          "a=1\r\nA=3\r\nEb=4\r\n; c");
    SortZVini();
    EXPECT_EQ(read("zv.ini"),
              "[Settings]\r\n; c\r\nA=3\r\nb=2\r\n\xC9"
              "a=1\r\nEb=4\r\n");
    write("zv.ini", "");
    SortZVini();
    EXPECT_EQ(read("zv.ini"), "[Settings]\r\n");
}

TEST_F(SettingsFile, BeforeTheRest) {
    write("zv.ini", "[Settings]\r\nMonitor=5\r\nErrorLog=1\r\n");
    EXPECT_EQ(ReadMonitorSetting(1), 0);
    EXPECT_EQ(ReadMonitorSetting(6), 5);
    EXPECT_TRUE(ReadErrorLogSetting());
    LoadZVini();
    SaveZVini();
    EXPECT_EQ(value("Monitor"), "5");
    write("zv.ini", "[Settings]\r\nMonitor=x\r\n");
    EXPECT_EQ(ReadMonitorSetting(2), 0);
}

TEST_F(SettingsFile, CheckSectionFallsBackToTheFirstPalette) {
    std::vector<std::string> names{"Evening", "Morning"};
    startupUpcalls.paletteNames = [&] { return names; };
    EXPECT_EQ(CheckSection("Morning"), "Morning");
    EXPECT_EQ(CheckSection("Gone"), "Evening");
    names.clear();
    EXPECT_EQ(CheckSection("Morning"), "");
}

}  // namespace
}  // namespace zv::test
