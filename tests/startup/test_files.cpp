// The files that come into being at the start, their backups, the folder they lie in.

#include "startup/command_line.h"
#include "startup/trace.h"
#include "tests/startup/surroundings.h"

namespace zv::test {
namespace {

class Files : public ProgramFolderTest {
  protected:
    std::vector<std::string> generations(const std::string& stem) const {
        std::vector<std::string> out;
        for (int k = 1; k <= kBackups + 1; ++k) {
            const std::string name = stem + "_backup" + std::to_string(k) + ".ini";
            if (there(name)) out.push_back(read(name));
        }
        return out;
    }
    void setAge(const std::string& name, int minutes) const {
        fs::last_write_time(path(name), fs::file_time_type::clock::now() - std::chrono::minutes(minutes));
    }
};

TEST_F(Files, AllComeIntoBeingAndStay) {
    write("shipped/language_original.ini", "[English]\n" + std::string(25000, ';'));
    const auto open = [] {
        OpenIniFile();
        OpenLanguageFile();
        OpenAccountFile();
        OpenPaletteFile();
        OpenPlaylistFile();
        EXPECT_EQ(OpenUrlsFile(), false);
        OpenDispPresets();
        OpenVUPresets();
        OpenFXPresets();
        OpenHotFile();
        OpenMIDIFile();
    };
    open();
    std::set<std::string> sums;  // of what each holds
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (!entry.is_regular_file()) continue;
        const std::string name = entry.path().filename().string(), bytes = read(name);
        sums.insert(bytes.empty() ? name
                                  : name + " " + std::to_string(bytes.size()) + " " +
                                        std::to_string(FileChecksum(bytes)));
    }
    EXPECT_EQ(sums, (std::set<std::string>{"DISPpresets.ini 315 23639", "FXpresets.ini 151 8691",
                                           "HotJingles.ini", "HotJingles_backup1.ini", "MIDI.ini",
                                           "VUpresets.ini 592 42522", "account.ini 59 5522",
                                           "language.ini 25010 1475898", "palette.ini", "palette_backup1.ini",
                                           "palette_pre100.ini", "playlist.ini", "playlist_backup1.ini",
                                           "playlist_pre100.ini", "urls.txt 28 2306", "zv.ini 32 2609"}));
    write("urls.txt", "http://mine\r\n");
    write("MIDI.ini", "[mine]\r\n");
    open();
    EXPECT_EQ(read("urls.txt"), "http://mine\r\n");
    EXPECT_EQ(read("MIDI.ini"), "[mine]\r\n");
    setAge("urls.txt", 60 * 24 * 365 * 20);
    EXPECT_TRUE(OpenUrlsFile());  // the program file is newer
}

TEST_F(Files, LanguageRepairsItself) {
    const std::string original = "[English]\n" + std::string(30000, ';');
    write("language_original.ini", original);
    setAge("language_original.ini", 60);
    struct {
        const char* what;
        std::size_t size;
        int ageMinutes;
        bool kept;
    } const table[] = {{"one byte short", 24999, 1, false},
                       {"just long enough", 25000, 1, true},
                       {"older than the original", 40000, 90, false}};
    for (const auto& row : table) {
        write("language.ini", std::string(row.size, 'x'));
        setAge("language.ini", row.ageMinutes);
        OpenLanguageFile();
        EXPECT_EQ(read("language.ini"), row.kept ? std::string(row.size, 'x') : original) << row.what;
    }
    // Another version's texts are newer, whatever their dates say.
    for (const char* noted : {"0.0.1", "1.0.0"}) {
        const bool same = noted == ProgramVersion();
        SettingsStore.PutValue("TextsVersion", noted);
        write("language.ini", std::string(40000, 'x'));
        OpenLanguageFile();
        EXPECT_EQ(read("language.ini") == original, !same) << noted;
        EXPECT_EQ(SettingsStore.GetValue("TextsVersion"), ProgramVersion());
    }
    fs::remove(path("language_original.ini"));
    fs::remove(path("language.ini"));
    OpenLanguageFile();  // nothing to repair from
    EXPECT_FALSE(there("language.ini"));
}

TEST_F(Files, BackupsRotateThroughDistinctStates) {
    for (int start = 1; start <= 7; ++start) {
        write("palette.ini", "[state " + std::to_string(start) + "]");
        for (int again = 0; again < 2; ++again) OpenPaletteFile();  // a start without a change takes none
    }
    EXPECT_THAT(generations("palette"),
                ElementsAre("[state 7]", "[state 6]", "[state 5]", "[state 4]", "[state 3]"));
    EXPECT_EQ(read("palette_pre100.ini"), "[state 1]");
    write("palette.ini", "[7 state]");  // the same sum: taken for unchanged
    OpenPaletteFile();
    EXPECT_EQ(generations("palette")[0], "[state 7]");
    fs::remove(path("palette_backup3.ini"));
    write("palette.ini", "[state 8]");
    OpenPaletteFile();
    EXPECT_EQ(read("palette_backup2.ini"), "[state 7]");
    EXPECT_EQ(read("palette_backup3.ini"), "[state 6]");
    EXPECT_EQ(read("palette_backup5.ini"), "[state 4]");
}

TEST_F(Files, TheStartIsTraced) {
    write("Trace_start.log", "of the last start");
    around.nowMs += 77;
    FillTraceLog("before");
    StartTrace();
    around.nowMs += 1234;
    FillTraceLog("zv.ini");
    around.nowMs += 66;
    FillTraceLog("Load frmMain");
    WriteTraceStart();
    EXPECT_EQ(read("Trace_start.log"),
              "1.234 : zv.ini\r\n0.066 : Load frmMain\r\nSoftware loaded in 1.300 seconds\r\n");
    std::string bar;
    startupUpcalls.splashBar = [&](int width) { bar += std::to_string(width) + " "; };
    SetProgress(10);
    AddProgress(2.5);
    EXPECT_EQ(bar, "422 527 ");
    EXPECT_EQ(UnloadReasonText(0)[0], '0');
    EXPECT_EQ(UnloadReasonText(5)[0], '5');
    EXPECT_EQ(UnloadReasonText(-1) + UnloadReasonText(6), "");
}

TEST_F(Files, CommandLine) {
    struct {
        std::vector<std::string> arguments;
        bool trace;
        std::string home, error;
    } const table[] = {
        {{}, false, "", ""},
        {{"-t"}, true, "", ""},
        {{"--home", "/x", "-T"}, true, "/x", ""},
        {{"--home=/y"}, false, "/y", ""},
        {{"--home"}, false, "", "--home needs a folder; usage: zentrova [-t] [--home FOLDER]"},
        {{"--home", ""}, false, "", "--home needs a folder; usage: zentrova [-t] [--home FOLDER]"},
        {{"--home="}, false, "", "unknown option --home=; usage: zentrova [-t] [--home FOLDER]"},
        {{"-t", "--fast", "-h"}, true, "", "unknown option --fast; usage: zentrova [-t] [--home FOLDER]"},
    };
    for (const auto& row : table) {
        const CommandLine got = ParseCommandLine(row.arguments);
        EXPECT_EQ(got.trace, row.trace);
        EXPECT_EQ(got.home, row.home);
        EXPECT_EQ(got.error, row.error);
        EXPECT_FALSE(got.help);
    }
    EXPECT_TRUE(ParseCommandLine({"-h"}).help && ParseCommandLine({"-t", "--help"}).help);
}

TEST_F(Files, ChoosesAndSeedsTheProgramFolder) {
    const fs::path cwd = fs::current_path();
    write("bin/palette.ini", "[Sample Radio]\r\nPath_0=Audio_Sample\\a.wav\r\n");
    write("bin/Audio_Sample/a.wav", "sound");
    const std::string bin = text("bin");
    setVariable(kDataVariable, text("data"));
    setVariable("ZENTROVA_HOME", "");
    // The user's own folder, filled once.
    ASSERT_TRUE(EnterProgramFolder({}, bin));
    EXPECT_EQ(programFolder(), path("data/zentrova"));
    EXPECT_EQ(PalFile, path("data/zentrova/palette.ini"));
    EXPECT_EQ(fs::current_path(), path("data/zentrova"));
    EXPECT_EQ(read("data/zentrova/Audio_Sample/a.wav"), "sound");
    OpenIniFile();
    fs::remove(path("data/zentrova/palette.ini"));
    ASSERT_TRUE(EnterProgramFolder({}, bin));
    EXPECT_FALSE(there("data/zentrova/palette.ini"));
    // A portable copy lies beside its zv.ini.
    write("bin/zv.ini", "");
    ASSERT_TRUE(EnterProgramFolder({}, bin));
    EXPECT_EQ(programFolder(), bin);
    // A folder that is named wins and is not filled.
    setVariable("ZENTROVA_HOME", text("env"));
    ASSERT_TRUE(EnterProgramFolder({}, bin));
    EXPECT_EQ(programFolder(), path("env"));
    CommandLine named;
    named.home = text("named");
    ASSERT_TRUE(EnterProgramFolder(named, bin));
    EXPECT_EQ(programFolder(), path("named"));
    EXPECT_TRUE(fs::is_empty(path("named")));
    EXPECT_EQ(ShippedFile("palette.ini"), text("bin/palette.ini"));
    named.home = (path("bin/palette.ini") / "x").string();  // cannot be made
    EXPECT_FALSE(EnterProgramFolder(named, bin));
    setVariable("ZENTROVA_HOME", "");
    setVariable(kDataVariable, "");
    fs::current_path(cwd);
}

}  // namespace
}  // namespace zv::test
