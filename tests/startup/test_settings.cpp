// zv.ini: its keys, what they load as, and the ways of loading, saving and sorting.

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
#include "tests/support/approved.h"

namespace zv::test {
namespace {

/// The record, by keys.
std::map<std::string, std::string> record() {
    std::map<std::string, std::string> out;
    for (const std::string& line : Split(SettingsDump(), "\n")) {
        const std::size_t equals = line.find('=');
        if (equals != std::string::npos) out[line.substr(0, equals)] = line.substr(equals + 1);
    }
    return out;
}

/// Pieces in lines of about a hundred characters.
std::string paragraph(const std::vector<std::string>& pieces) {
    std::string out, line;
    for (const std::string& piece : pieces) {
        line += (line.empty() ? "" : " ") + piece;
        if (line.size() > 100) out += std::exchange(line, {}) + "\n";
    }
    return out + line + "\n";
}

class SettingsFile : public ProgramFolderTest {
  protected:
    void SetUp() override {
        ProgramFolderTest::SetUp();
        write("language.ini", "[English]\n[Français]\n[Deutsch]\n");
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

/// What becomes of numbers: the limits of a key where they are narrower than its type's.
std::string limitsOf(const SettingKey& key) {
    std::vector<int> probes{-40'000, 40'000};
    for (int n = -100; n <= 300; ++n) probes.push_back(n);
    std::sort(probes.begin(), probes.end());
    std::map<int, std::string> becomes;
    for (const int n : probes)
        if (SetSetting(key, std::to_string(n)) == Conversion::good) becomes[n] = SettingText(key);
    int low = becomes.begin()->first, high = becomes.rbegin()->first;
    std::string text = key.key;
    while (becomes[low] != std::to_string(low)) ++low;
    while (becomes[high] != std::to_string(high)) --high;
    if (low > becomes.begin()->first)
        text += " from " + std::to_string(low) + ", else " + becomes.begin()->second;
    if (high < becomes.rbegin()->first)
        text += " to " + std::to_string(high) + ", else " + becomes.rbegin()->second;
    return text == key.key ? "" : text + "\n";
}

TEST_F(SettingsFile, AFreshFileHoldsTheDefaultsAndNumbersAreHeldToTheirLimits) {
    load("");
    EXPECT_EQ(ErrCount, 0);
    EXPECT_EQ(folderSettings.SampleDir, text("Audio_Sample"));
    const std::map<std::string, std::string> fresh = record();
    SaveZVini();
    std::string all = paragraph(Split(read("zv.ini"), "\r\n")) + "not in the file:\n";
    std::vector<std::string> pieces, types(5), atOnce;
    for (const SettingKey& key : SettingKeys()) {
        if (value(key.key).empty()) pieces.push_back(std::string(key.key) + "=" + fresh.at(key.key));
        types[static_cast<std::size_t>(key.type)] += std::string(" ") + key.key;
        if (!key.rules.savedAtExit) atOnce.push_back(key.key);
    }
    all += paragraph(pieces) + "written when they change:\n" + paragraph(atOnce) + "limits:\n";
    for (const SettingKey& key : SettingKeys())
        if (key.type != SettingType::text) all += limitsOf(key);
    for (const std::size_t type : {1, 2}) all += (type == 1 ? "words:" : "whole:") + types[type] + "\n";
    expectApproved("startup/settings.approved", all);
    EXPECT_EQ(FindSetting("NoSuchKey"), nullptr);
    EXPECT_STREQ(FindSetting("vuSPEED")->key, "VUspeed");
}

TEST_F(SettingsFile, KeysConvert) {
    // What a key loads as: text in the file, value in the record. "!": it does not convert, the record keeps what it
    // had; "@" is the program folder.
    const std::pair<const char*, std::vector<std::pair<const char*, const char*>>> rows[] = {
        {"DateTimeColor", {{"16777216", "16777216"}, {"red", "!"}}},
        {"BlinkWarn", {{"255", "255"}, {"256", "!"}, {"-1", "!"}}},
        {"WinWidth", {{"57600", "57600"}, {"3000000000", "!"}, {"-3000000000", "!"}}},
        {"MVHideElmts", {{"-32768", "-32768"}, {"32767", "32767"}, {"32768", "!"}, {"-32769", "!"}}},
        {"AlwaysOnTop",
         {{"Faux", "0"}, {"False", "0"}, {"FALSE", "0"}, {"0", "0"}, {"Vrai", "1"}, {"7", "1"}}},
        {"IgnoredUpdate", {{"101", "101"}, {"099", "100"}}},
        {"Language", {{"French", kFrench}, {"français", "français"}, {"Klingon", "English"}}},
        {"SampleDir", {{"Mine", "@/Mine"}, {"/srv/x", "/srv/x"}, {"C:\\S", "C:\\S"}}},
        {"LastcmDlgDir", {{"Gone", "@/Audio_Sample"}, {"Here", "@/Here"}}},
        {"ImportFolderName", {{":", ""}, {"News", "News"}}},
        {"RemainWarn", {{"59", "59"}, {"2.5", "2"}, {"3.5", "4"}}},
        {"VuRMS", {{"1", "1"}, {"x", "1"}}},
        {"DeviceSingle", {{"1", "1"}, {"yes", "1"}}},
        {"MixerFreq",
         {{"11025", "11025"},
          {"22050", "22050"},
          {"48000", "48000"},
          {"96000", "96000"},
          {"12345", "44100"},
          {"fast", "!"}}},
    };
    load("");
    const auto defaults = record();
    for (const auto& [key, cases] : rows) {
        for (const auto& [given, wanted] : cases) {
            ErrCount = 0;
            load(std::string("[Settings]\r\n") + key + "=" + given + "\r\n");
            auto expected = defaults;
            if (wanted != std::string("!")) expected[key] = wanted[0] == '@' ? text(wanted + 2) : wanted;
            if (key == std::string("SampleDir")) expected["LastcmDlgDir"] = expected[key];
            EXPECT_EQ(record(), expected) << key << "=" << given;
            EXPECT_EQ(ErrCount, wanted == std::string("!") ? 1 : 0) << key << "=" << given;
            EXPECT_EQ(value(key), given) << "loading never changes what a key holds";
        }
    }
}

TEST_F(SettingsFile, WhatIsSetIsThereAgainAndTheRestStaysToTheByte) {
    load("; mine\r\n[Settings]\r\nUnknown=1\r\nTimeAnnMin= 07 \r\n[Other]\r\nz=1\r\ny=2\r\n");
    for (const SettingKey& key : SettingKeys())
        if (key.rules.savedAtExit && key.rules.special == Special::none &&
            key.key != std::string("TimeAnnMin"))
            SetSetting(key, key.type == SettingType::text ? "new" : SettingText(key) == "5" ? "6" : "5");
    programSettings.Sealed = "0";
    const auto wanted = record();
    SaveZVini();
    const std::string saved = read("zv.ini");
    for (const char* part : {"; mine\r\n", "\nUnknown=1\r\n", "\nTimeAnnMin= 07 \r\n"})
        EXPECT_THAT(saved, HasSubstr(part));
    EXPECT_TRUE(saved.ends_with("[Other]\r\nz=1\r\ny=2\r\n"));
    NoteIniFileDate();
    ResetSettings();
    LoadZVini();
    for (const auto& [key, text] : record()) EXPECT_EQ(text, wanted.at(key)) << key;
    const auto date = fs::last_write_time(path("zv.ini"));
    SaveZVini();
    EXPECT_EQ(fs::last_write_time(path("zv.ini")), date) << "it was written though nothing changed";
}

TEST_F(SettingsFile, NonsenseInEveryKeyIsOneReport) {
    std::string text = "[Settings]\r\n";
    for (const SettingKey& key : SettingKeys()) text += std::string(key.key) + "=\x01nonsense \xFF %s\r\n";
    load(text);
    EXPECT_EQ(ErrCount, 1);
    EXPECT_THAT(ReportText, HasSubstr("Function: modMain.LoadZVini\r\nError Number: 13\r\n"));
    EXPECT_THAT(ReportText, HasSubstr("Type mismatch: DateTimeColor=\x01nonsense ÿ %s, ClockEnabled="));
    EXPECT_EQ(gridSettings.JinglesRows, 6);
    EXPECT_EQ(programSettings.Language, kEnglish);
    EXPECT_EQ(labelSettings.JLabelSeparator[0], '\x01');
    load("[Settings]\r\nConfirmExit=300\r\nVUspeed=fast\r\n");
    EXPECT_THAT(
        ReportText,
        HasSubstr("Error Number: 6\r\nError Description: Overflow: ConfirmExit=300, VUspeed=fast\r\n"));
}

TEST_F(SettingsFile, SpecialKeys) {
    load(
        "[Settings]\r\nFullScreen=1\r\nCueRepeater=1\r\nBottomMargin=5\r\nRightMargin=5\r\nDispspeed="
        "90\r\nVuRMS=\r\n");
    EXPECT_EQ(windowSettings.WindowMode, 2);
    EXPECT_EQ(displaySettings.DispSpeed, 90);  // whatever the case of its letters
    for (const char* obsolete : {"CueRepeater", "BottomMargin", "RightMargin"})
        EXPECT_THAT(read("zv.ini"), Not(HasSubstr(obsolete)));

    write("palette.ini", "[x]\n");
    load("");
    EXPECT_EQ(paletteSettings.PaletteIndex, "Sample Radio");

    around.fontsThere = false;
    load("[Settings]\r\nJLabelFont=Gone Sans\r\n");
    EXPECT_EQ(labelSettings.JLabelFont, "MS Sans Serif");
    const char* const patterns[][3] = {
        {"(duration)", "(", ")"}, {"duration", "", ""}, {"time", "", ""}, {"- duration s", "- ", " s"}};
    for (const auto& [pattern, prefix, suffix] : patterns) {
        load(std::string("[Settings]\r\nJDispDurationEncap=") + pattern + "\r\n");
        EXPECT_EQ(JDurationPrefix(), prefix);
        EXPECT_EQ(JDurationSuffix(), suffix);
    }
    // The device's choice holds from the next start on; the usual rate needs no key.
    load("[Settings]\r\nDeviceSingle=yes\r\nMixerFreq=48000\r\n");
    EXPECT_EQ(deviceSettings.DeviceSingle, 1);
    deviceSettings.DeviceSinglePending = 0;
    deviceSettings.MixerFreq = 44100;
    SaveZVini();
    EXPECT_THAT(read("zv.ini"), Not(HasSubstr("DeviceSingle")));
    EXPECT_THAT(read("zv.ini"), Not(HasSubstr("MixerFreq")));
    std::vector<std::string> palettes;
    startupUpcalls.paletteNames = [&] { return palettes; };
    EXPECT_EQ(CheckSection("A"), "");
    palettes = {"B", "A", "C"};
    EXPECT_EQ(CheckSection("a") + CheckSection("gone"), "AB");
    // For this run only.
    load("");
    programSettings.ConfirmExit = 0;
    KeepOutOfFile("ConfirmExit");
    SaveZVini();
    EXPECT_EQ(value("ConfirmExit"), "1");
    folderSettings.ImportFolderName.clear();
    SaveZVini();
    EXPECT_EQ(value("ImportFolderName"), ":");
    // A reset keeps the grid.
    gridSettings.JinglesRows = 8;
    meterSettings.VUspeed = 9;
    write("zv.ini", "");
    LoadZVini(false);
    EXPECT_EQ(gridSettings.JinglesRows, 8);
    EXPECT_EQ(meterSettings.VUspeed, 7);
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

TEST_F(SettingsFile, Sorting) {
    const std::pair<const char*, const char*> files[] = {
        {"lost\r\nb=2\r\n\xC9"
         "a=1\r\nA=3\r\nEb=4\r\n; c",
         "[Settings]\r\n; c\r\nA=3\r\nb=2\r\n\xC9"
         "a=1\r\nEb=4\r\n"},
        {"", "[Settings]\r\n"},
        {"\r\n\r\n; mine\r\n[settings]\r\nb=1\r\na=2\r\n", "[Settings]\r\n; mine\r\na=2\r\nb=1\r\n"},
        {"\xEF\xBB\xBF[Settings]\r\nb=1\r\na=2\r\n", "[Settings]\r\na=2\r\nb=1\r\n"},
        {"[Other]\nz=1\n[Settings]\nb=1\na=2\n[More]\ny=1\nx=1\n",
         "[Settings]\na=2\nb=1\n[Other]\nz=1\n[More]\ny=1\nx=1\n"},
        {"b=1\na=2\n", "[Settings]\na=2\n"}};
    for (const auto& [before, after] : files) {
        write("zv.ini", before);
        for (int again = 0; again < 2; ++again) {
            SortZVini();
            EXPECT_EQ(read("zv.ini"), after);
        }
    }
}

TEST_F(SettingsFile, BeforeTheRest) {
    write("zv.ini", "[Settings]\r\nMonitor=5\r\nErrorLog=1\r\n");
    EXPECT_EQ(ReadMonitorSetting(1), 0);
    EXPECT_EQ(ReadMonitorSetting(5), 0);
    EXPECT_EQ(ReadMonitorSetting(6), 5);
    EXPECT_TRUE(ReadErrorLogSetting());
    EXPECT_EQ(programSettings.ErrorLog, 1);
    LoadZVini();
    SaveZVini();
    EXPECT_EQ(value("Monitor"), "5");
    for (const char* bad : {"x", "-1", ""}) {
        write("zv.ini", std::string("[Settings]\r\nMonitor=") + bad + "\r\n");
        EXPECT_EQ(ReadMonitorSetting(2), 0);
    }
    EXPECT_FALSE(ReadErrorLogSetting());
    EXPECT_EQ(read("zv.ini"), "[Settings]\r\nMonitor=0\r\nErrorLog=0\r\n");
}

}  // namespace
}  // namespace zv::test
