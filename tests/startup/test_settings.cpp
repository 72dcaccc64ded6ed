// zv.ini: what its keys load as, and the ways of loading, saving and sorting.

#include <map>

#include "startup/settings/devices_settings.h"
#include "startup/settings/display_settings.h"
#include "startup/settings/folders_settings.h"
#include "startup/settings/grid_settings.h"
#include "startup/settings/labels_settings.h"
#include "startup/settings/meters_settings.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings/program_settings.h"
#include "startup/settings/window_settings.h"
#include "startup/settings_file.h"
#include "startup/settings_table.h"
#include "tests/startup/surroundings.h"

namespace zv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

namespace fs = std::filesystem;

/// What a key loads as: text in the file, value in the record. "!": it does not convert, the record keeps what
/// it had; "@" is the program folder.
struct Row {
    const char* key;
    const char* inFile;  ///< default in a fresh file; empty: no line is made
    std::vector<std::pair<const char*, const char*>> cases;
};

const std::vector<Row> kRows{
    {"DateTimeColor", "33023", {{"255", "255"}, {"16777216", "16777216"}, {"red", "!"}}},
    {"BlinkWarn", "0", {{"1", "1"}, {"255", "255"}, {"256", "!"}, {"-1", "!"}}},
    {"WinWidth", "12000", {{"57600", "57600"}, {"3000000000", "!"}}},
    {"MVHideElmts", "0", {{"-32768", "-32768"}, {"32768", "!"}}},
    {"AlwaysOnTop", "0", {{"Faux", "0"}, {"False", "0"}, {"FALSE", "0"}, {"Vrai", "1"}, {"7", "1"}}},
    {"IgnoredUpdate", "100", {{"101", "101"}, {"099", "100"}}},
    {"Sealed", "0", {{"0", "0"}}},
    {"PaletteIndex", "", {{"Evening", "Evening"}}},
    {"Language", "English", {{"French", kFrench}, {"français", "français"}, {"Klingon", "English"}}},
    {"SampleDir", "Audio_Sample", {{"Mine", "@/Mine"}, {"/srv/x", "/srv/x"}, {"C:\\S", "C:\\S"}}},
    {"LastcmDlgDir", "Audio_Sample", {{"Gone", "@/Audio_Sample"}, {"Here", "@/Here"}}},
    {"ImportFolderName", "Import", {{":", ""}, {"News", "News"}}},
    {"JinglesRows", "6", {{"3", "4"}, {"4", "4"}, {"8", "8"}, {"9", "8"}, {"many", "!"}}},
    {"JinglesCols", "5", {{"0", "4"}, {"12", "12"}, {"255", "12"}, {"300", "!"}}},
    {"HotJinglesRows", "2", {{"0", "1"}, {"1", "1"}, {"3", "2"}}},
    {"HotJinglesPos", "2", {{"0", "0"}, {"3", "2"}}},
    {"HotJinglesHeight", "2", {{"0", "1"}, {"10", "10"}, {"11", "10"}}},
    {"JLabelFormat", "0", {{"6", "6"}, {"7", "0"}}},
    {"JLabelFontSize", "12", {{"0", "1"}, {"20", "20"}, {"21", "20"}}},
    {"RemainWarn", "3", {{"59", "59"}, {"2.5", "2"}, {"3.5", "4"}}},
    {"VUspeed", "7", {{"0", "1"}, {"20", "20"}, {"21", "20"}}},
    {"VuRMS", "", {{"1", "1"}, {"x", "1"}}},
    {"DeviceSingle", "", {{"1", "1"}, {"yes", "1"}}},
    {"MixerFreq", "", {{"48000", "48000"}, {"96000", "96000"}, {"12345", "44100"}, {"fast", "!"}}},
    {"TempoMax", "30", {{"4", "5"}, {"120", "120"}}},
    {"MIDIOutFixedChan", "1", {{"16", "16"}, {"17", "1"}, {"0", "1"}}},
    {"MIDIOutFixedVel", "127", {{"0", "0"}, {"128", "127"}, {"-1", "127"}}},
};

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
        ResetSettings();
        NoteIniFileDate();
        LoadZVini();
    }
    std::string value(const std::string& key) { return SettingsStore.GetValue(key); }
};

TEST_F(SettingsFile, AFreshFileHoldsTheDefaults) {
    load("");
    EXPECT_GE(SettingKeys().size(), 170U);
    for (const Row& row : kRows) EXPECT_EQ(value(row.key), row.inFile) << row.key;
    for (const SettingKey& key : SettingKeys()) {
        if (key.rules.special != Special::none || SettingDefault(key).empty()) continue;
        EXPECT_EQ(value(key.key), SettingDefault(key)) << key.key;
        EXPECT_EQ(SettingText(key), SettingDefault(key)) << key.key;
    }
    EXPECT_EQ(ErrCount, 0);
    EXPECT_EQ(deviceSettings.MixerFreq, 44100);
    EXPECT_EQ(folderSettings.SampleDir, text("Audio_Sample"));
}

TEST_F(SettingsFile, KeysConvertAndAreHeldToTheirLimits) {
    load("");
    const auto defaults = record();
    for (const Row& row : kRows) {
        for (const auto& [given, wanted] : row.cases) {
            ErrCount = 0;
            load(std::string("[Settings]\r\n") + row.key + "=" + given + "\r\n");
            std::string expected = wanted == std::string("!") ? defaults.at(row.key) : wanted;
            if (expected.starts_with("@")) expected = text(expected.substr(2));
            EXPECT_EQ(record()[row.key], expected) << row.key << "=" << given;
            EXPECT_EQ(ErrCount, wanted == std::string("!") ? 1 : 0) << row.key << "=" << given;
            EXPECT_EQ(value(row.key), given) << "loading never changes what a key holds";
        }
    }
}

TEST_F(SettingsFile, EveryKeyIsSavedWhenItChanged) {
    const std::set<std::string> atOnce{"ActiveFXTab", "IgnoredUpdate", "LoudnessTarget", "PRAfterDate",
                                       "Sealed",      "VuRMS",         "Touch",          "Autorepeat"};
    std::vector<std::pair<const char*, std::string>> wanted;
    load("");
    for (const SettingKey& key : SettingKeys()) {
        if (key.rules.special != Special::none && key.rules.special != Special::grid) continue;
        const std::string changed = SettingDefault(key) == "1" ? "2" : "1";
        EXPECT_EQ(SetSetting(*FindSetting(LowerCase(key.key)), changed), Conversion::good);
        EXPECT_NE(SettingText(key), SettingDefault(key)) << key.key;
        wanted.emplace_back(key.key, atOnce.contains(key.key) ? SettingDefault(key) : SettingText(key));
    }
    SaveZVini();
    for (const auto& [key, text] : wanted) EXPECT_EQ(value(key), text) << key;
    EXPECT_EQ(FindSetting("NoSuchKey"), nullptr);
}

TEST_F(SettingsFile, ChoicesWithWaysOfTheirOwnAreSaved) {
    load("");
    windowSettings.AlwaysOnTop = 1;
    programSettings.Language = "Deutsch";
    folderSettings.SampleDir = "/srv/sounds";
    folderSettings.LastcmDlgDir = text("Here");
    folderSettings.ImportFolderName.clear();
    deviceSettings.MixerFreq = 48000;
    deviceSettings.DeviceSinglePending = 1;
    paletteSettings.PaletteIndex = "Evening";
    SaveZVini();
    const std::pair<const char*, const char*> inFile[] = {
        {"AlwaysOnTop", "1"},     {"Language", "Deutsch"},    {"SampleDir", "/srv/sounds"},
        {"LastcmDlgDir", "Here"}, {"ImportFolderName", ":"},  {"MixerFreq", "48000"},
        {"DeviceSingle", "1"},    {"PaletteIndex", "Evening"}};
    for (const auto& [key, text] : inFile) EXPECT_EQ(value(key), text) << key;
}

TEST_F(SettingsFile, UntouchedWhenNothingChanged) {
    load("");
    SaveZVini();
    EXPECT_THAT(read("zv.ini"), StartsWith("[Settings]\r\nActiveFXTab=0\r\nActiveSTab=0\r\nActiveTab=0\r\n"));
    NoteIniFileDate();
    ResetSettings();
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
    for (const SettingKey& key : SettingKeys()) text += std::string(key.key) + "=\x01nonsense \xFF %s\r\n";
    load(text);
    EXPECT_EQ(ErrCount, 1);
    EXPECT_THAT(ReportText, HasSubstr("Function: modMain.LoadZVini\r\nError Number: 13\r\n"));
    EXPECT_THAT(ReportText, HasSubstr("JinglesRows="));
    EXPECT_EQ(gridSettings.JinglesRows, 6);
    EXPECT_EQ(programSettings.Language, kEnglish);
    EXPECT_EQ(labelSettings.JLabelSeparator[0], '\x01');
    load("[Settings]\r\nConfirmExit=300\r\n");
    EXPECT_THAT(ReportText, HasSubstr("Error Number: 6\r\nError Description: Overflow: ConfirmExit=300\r\n"));
}

TEST_F(SettingsFile, SpecialKeys) {
    load("[Settings]\r\nFullScreen=1\r\nCueRepeater=1\r\nBottomMargin=5\r\nDispspeed=90\r\nVuRMS=\r\n");
    EXPECT_EQ(windowSettings.WindowMode, 2);
    EXPECT_EQ(displaySettings.DispSpeed, 90);  // whatever the case of its letters
    EXPECT_THAT(read("zv.ini"), Not(HasSubstr("CueRepeater")));
    EXPECT_THAT(read("zv.ini"), Not(HasSubstr("BottomMargin")));

    write("palette.ini", "[x]\n");
    load("");
    EXPECT_EQ(paletteSettings.PaletteIndex, "Sample Radio");

    around.fontsThere = false;
    load("[Settings]\r\nJLabelFont=Gone Sans\r\n");
    EXPECT_EQ(labelSettings.JLabelFont, "MS Sans Serif");

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
    EXPECT_EQ(programSettings.Language, kFrench);
    EXPECT_EQ(value("Sealed"), "0");
    load("[Settings]\r\nSealed=0\r\n");
    EXPECT_EQ(programSettings.Language, kEnglish);
    load("[Settings]\r\nLanguage=Deutsch\r\n");
    EXPECT_EQ(programSettings.Language, "Deutsch");
}

TEST_F(SettingsFile, DeviceChoiceAndRateGoByAbsence) {
    load("[Settings]\r\nDeviceSingle=yes\r\nMixerFreq=48000\r\n");
    EXPECT_EQ(deviceSettings.DeviceSingle, 1);
    deviceSettings.DeviceSinglePending = 0;  // chosen in the window, in force at the next start
    deviceSettings.MixerFreq = 44100;
    SaveZVini();
    EXPECT_THAT(read("zv.ini"), Not(HasSubstr("DeviceSingle")));
    EXPECT_THAT(read("zv.ini"), Not(HasSubstr("MixerFreq")));
}

TEST_F(SettingsFile, ResetKeepsTheGrid) {
    load("");
    gridSettings.JinglesRows = 8;
    meterSettings.VUspeed = 9;
    write("zv.ini", "");
    LoadZVini(false);
    EXPECT_EQ(gridSettings.JinglesRows, 8);
    EXPECT_EQ(meterSettings.VUspeed, 7);
}

TEST_F(SettingsFile, AccountLivesInItsOwnFile) {
    OpenAccountFile();
    EXPECT_EQ(read("account.ini"), "[SupportForumAccount]\r\nSupportUsername=\r\nSupportPassword=\r\n");
    load("");
    programSettings.SupportUsername = "anna";
    SaveZVini();
    EXPECT_EQ(read("account.ini"), "[SupportForumAccount]\r\nSupportUsername=anna\r\nSupportPassword=\r\n");
    EXPECT_THAT(read("zv.ini"), Not(HasSubstr("anna")));
}

TEST_F(SettingsFile, WhatIsForThisRunOnlyStaysOutOfTheFile) {
    load("");
    programSettings.ConfirmExit = 0;
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
    const std::pair<const char*, const char*> files[] = {
        {"", "[Settings]\r\n"},
        {"\r\n\r\n; mine\r\n[settings]\r\nb=1\r\na=2\r\n", "[Settings]\r\n; mine\r\na=2\r\nb=1\r\n"},
        {"\xEF\xBB\xBF[Settings]\r\nb=1\r\na=2\r\n", "[Settings]\r\na=2\r\nb=1\r\n"},
        {"[Other]\nz=1\n[Settings]\nb=1\na=2\n[More]\ny=1\nx=1\n",
         "[Settings]\na=2\nb=1\n[Other]\nz=1\n[More]\ny=1\nx=1\n"},
        {"b=1\na=2\n", "[Settings]\na=2\n"}};
    for (const auto& [before, after] : files) {
        write("zv.ini", before);
        SortZVini();
        EXPECT_EQ(read("zv.ini"), after);
        SortZVini();
        EXPECT_EQ(read("zv.ini"), after) << "sorted once is sorted";
    }
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
