// Palettes between their files and the records: every key with its condition, whole files, failed saves.
#include <algorithm>
#include <chrono>
#include <set>
#include <utility>

#include "audio/open_palette.h"
#include "model/after_sound.h"
#include "model/colours.h"
#include "model/history.h"
#include "model/palette_lines.h"
#include "model/pending_removals.h"
#include "model/upcalls.h"
#include "platform/controls.h"
#include "startup/helpers.h"
#include "startup/settings/dark_settings.h"
#include "startup/settings/folders_settings.h"
#include "startup/settings/grid_settings.h"
#include "startup/settings/palette_settings.h"
#include "tests/show/show.h"

namespace zv::test {
namespace {

constexpr std::size_t kFrames = 20000;

class Palette : public ShowTest {
  protected:
    bool save(const std::string& name = kPalette) {
        SaveMode = "save";
        return CloseFile(name);
    }
    void soundFile(const std::string& name) const { writeWav(path(name), level(kFrames)); }
};

TEST_F(Palette, EveryKeyIsWrittenInItsPlace) {
    soundFile("a.wav");
    std::string written = iniLine("Path_7", "a.wav"), given = written;
    for (const char* key :
         {"Volm=6", "AutoDuck=1", "NoAutomix=1", "NoTrigDuck=1", "Loop=1", "Seq=1", "LoopIn=7.25",
          "LoopOut=8", "FadeOut=9", "LogFadeOut=1", "LoopFadeOut=1", "BTNCol=00FF00", "PlayMod=2",
          "CueStart=3000000000", "StopPos=11", "FXV=1,0,0,0,0,0,0,0,0,44100,0"}) {
        const std::string line = std::string(key).insert(std::string(key).find('='), "_7") + "\r\n";
        written += line;
        given = line + given;
    }
    openPalette(given);
    EXPECT_TRUE(save());
    EXPECT_EQ(read("palette.ini"), "[Morning]\r\n" + written);
}

TEST_F(Palette, HotJinglesAreSavedWithIt) {
    soundFile("a.wav");
    write("HotJingles.ini", "[HotJingles]\r\nPath_0=a.wav\r\nPath_23=a.wav\r\nVolm_23=40\r\n");
    OpenFile();
    EXPECT_EQ(jingle(96).Kind, SlotKind::stream);
    EXPECT_EQ(jingle(119).Volm, 40);
    gridSettings.JinglesCols = 4;  // out of the grid, kept all the same
    jingle(96).PlayMod = PlayMode::autoRepeat;
    openPalette("This_palette_is_empty=Yes\r\n");
    EXPECT_TRUE(save());
    const std::string kept = "[HotJingles]\r\nPath_0=a.wav\r\nPlayMod_0=1\r\nPath_23=a.wav\r\nVolm_23=40\r\n";
    EXPECT_EQ(read("HotJingles.ini"), kept);
    EXPECT_EQ(marks.back(), "hide");

    // Beyond the columns no button was ever made: the file's lines stay as they are.
    JExists[119] = 0;
    ClearRecord(119);
    EXPECT_TRUE(save());
    EXPECT_EQ(read("HotJingles.ini"), kept);
    JExists[119] = 1;

    for (int i = kPaletteSlots; i < kJingles; ++i) {
        FreeJingle(i);
        ClearRecord(i);
    }
    EXPECT_TRUE(save());
    EXPECT_EQ(read("HotJingles.ini"), "") << "an empty section disappears";
}

TEST_F(Palette, AWindowsUsersFileGoesBackUnharmed) {
    std::filesystem::create_directories(path("Audio_Sample"));
    soundFile("Audio_Sample/Été.WAV");
    folderSettings.ImportFiles = 0;
    const std::string other =
        "; my palettes\r\n[Soir\xE9"
        "e]\r\nPath_0=D:\\Jingles\\caf\xE9.mp3\r\nvolm_0 = 80\r\nPath_1=\"x.wav\"\r\n\r\n";
    const std::string mine =
        "Path_0=audio_sample\\\xC9t\xE9.wav\r\nLoop_0=1\r\n"
        "Path_1=D:\\Musik\\gr\xFC\xDF.wav\r\nVolm_1=35\r\nLoop_1=1\r\nSeq_1=1\r\nLoopOut_1=400\r\n"
        "BTNCol_1=CC99FF\r\nFXV_1=0,0,0,0,0,0,0,0,0,44100,0\r\n"
        "Path_2=\\\\server\\share\\x.flac\r\nPlayMod_2=3\r\n";
    write("palette.ini", other + "[Matin]\r\n" + mine);
    paletteSettings.PaletteIndex = "Matin";
    OpenFile("Matin");
    EXPECT_EQ(jingle(0).Kind, SlotKind::stream) << "found though its letters differ";
    EXPECT_EQ(jingle(0).Path, "audio_sample\\Été.wav");
    EXPECT_EQ(jingle(1).Path, "D:\\Musik\\grüß.wav");
    for (const int i : {1, 2}) {
        EXPECT_TRUE(jingle(i).MissingFile) << i;
        EXPECT_FALSE(jingle(i).Unplayable) << i;
        EXPECT_EQ(jingle(i).Volm, 100) << "the record of a file that is not there shows defaults";
    }
    EXPECT_TRUE(save("Matin"));
    EXPECT_EQ(read("palette.ini"), other + "[Matin]\r\n" + mine)
        << "not a byte changed, the missing files' keys too";
}

TEST_F(Palette, AFileThatIsAwayForAWhileKeepsItsValues) {
    const std::string lines =
        "Path_0=a.wav\r\nVolm_0=35\r\nAutoDuck_0=2\r\nLoop_0=1\r\nSeq_0=1\r\n"
        "Path_1=gone.wav\r\nAutoDuck_1=1\r\n";
    openPalette(lines);
    openStreams(0);  // looked for twice
    ASSERT_TRUE(jingle(0).MissingFile);
    EXPECT_TRUE(save());
    EXPECT_EQ(read("palette.ini"), "[Morning]\r\n" + lines);
    soundFile("a.wav");
    openStreams(0);  // found again within the run
    EXPECT_EQ(jingle(0).Volm, 35);
    EXPECT_EQ(jingle(0).AutoDuck, 2);
    EXPECT_TRUE(save());
    EXPECT_EQ(read("palette.ini"), "[Morning]\r\n" + lines);
    openPalette("Path_0=a.wav\r\n");
    EXPECT_EQ(jingle(0).AutoDuck, 0) << "another palette's choice does not stay in the slot";
}

TEST_F(Palette, FilesFromElsewhereAreImported) {
    const FolderGuard elsewhere;
    writeWav(elsewhere.path / "far.wav", level(kFrames));
    const std::string far = (elsewhere.path / "far.wav").string();
    write("Audio_Sample/Import/far.wav", "an older file of that name");
    openPalette(iniLine("Path_0", far) + iniLine("Path_1", (elsewhere.path / "gone.wav").string()));
    EXPECT_TRUE(save());
    EXPECT_EQ(read("Audio_Sample/Import/far.wav").size(), kFrames * kBytesPerFrame + 44);
    EXPECT_EQ(jingle(0).Path, "Audio_Sample\\Import\\far.wav");
    EXPECT_EQ(read("palette.ini"), "[Morning]\r\n" + iniLine("Path_0", "Audio_Sample\\Import\\far.wav") +
                                       iniLine("Path_1", (elsewhere.path / "gone.wav").string()));
    EXPECT_EQ(marks.back(), "hide");

    // What a killed import left goes at the next start, unless it is under way.
    write("Audio_Sample/Import/old.wav.part", "half");
    write("Audio_Sample/Import/new.wav.part", "half");
    write("Audio_Sample/Import/mine.part", "no sound");
    for (const char* name : {"old.wav.part", "mine.part"})
        std::filesystem::last_write_time(
            path("Audio_Sample/Import") / name,
            std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    SweepParts();
    std::string left;
    for (const char* name : {"old.wav.part", "new.wav.part", "mine.part"})
        if (std::filesystem::exists(path("Audio_Sample/Import") / name)) left += std::string(name) + " ";
    EXPECT_EQ(left, "new.wav.part mine.part ");
    EXPECT_EQ(HistoryEntries().size(), 1U) << "the older file of that name";

    // What cannot be copied keeps its path, and the user is told when the save is over.
    write("language.ini",
          "[English]\r\nmMslockedFile1=Locked:\r\nmMslockedFile2=In use.\r\n"
          "mMslockedFiles1=All locked:\r\nmMslockedFiles2=All in use.\r\n");
    write("Blocked", "a file where a folder is needed");
    folderSettings.SampleDir = path("Blocked").string();
    openPalette(iniLine("Path_0", far));
    EXPECT_TRUE(save());
    EXPECT_EQ(jingle(0).Path, far);
    EXPECT_EQ(marks.back(), "no: Locked: far.wav. In use.");
    openPalette(iniLine("Path_0", far) + iniLine("Path_1", far));
    EXPECT_TRUE(save());
    EXPECT_EQ(marks.back(), "no: All locked: far.wav, far.wav. All in use.");
}

TEST_F(Palette, AFailedSaveLosesNothing) {
    soundFile("a.wav");
    openPalette("Path_0=a.wav\r\nVolm_0=10\r\n");
    const std::string before = read("palette.ini");
    jingle().Volm = 77;
    AddRemoval({"Evening", 1, "Morning", "b.wav"});
    // A folder in the file's place: neither read nor written, whoever the user is.
    std::filesystem::rename(path("palette.ini"), path("away.ini"));
    std::filesystem::create_directory(path("palette.ini"));
    EXPECT_FALSE(save());
    EXPECT_EQ(SaveMode, "save") << "the next try knows what to do";
    EXPECT_EQ(PendingRemovals().size(), 1U);
    EXPECT_EQ(jingle().Volm, 77);
    EXPECT_EQ(marks.back().substr(0, 2), "no");
    std::filesystem::remove(path("palette.ini"));
    std::filesystem::rename(path("away.ini"), path("palette.ini"));
    EXPECT_EQ(read("palette.ini"), before);
    EXPECT_TRUE(save());
    EXPECT_TRUE(PendingRemovals().empty());
    EXPECT_EQ(read("palette.ini"), "[Morning]\r\nPath_0=a.wav\r\nVolm_0=77\r\n");
}

TEST_F(Palette, ASlotThatStillSoundsKeepsThePalettesOwnKeys) {
    soundFile("a.wav");
    soundFile("b.wav");
    const std::string evening = "[Evening]\r\nPath_0=b.wav\r\nVolm_0=20\r\nPath_1=b.wav\r\n";
    openPalette("Path_0=a.wav\r\nLoop_0=1\r\n" + evening);
    clPlay(0, -1);
    pass(50);
    paletteSettings.PaletteIndex = "Evening";
    OpenFile("Evening");
    jingle(1).Volm = 30;
    EXPECT_TRUE(save("Evening"));
    EXPECT_EQ(read("palette.ini"), "[Morning]\r\nPath_0=a.wav\r\nLoop_0=1\r\n" + evening + "Volm_1=30\r\n");
    PersistedJingle next;
    next.Path = "a.wav", next.Volm = 33;
    HoldAfterSound(0, next);
    EXPECT_EQ(LinesOfRecords(false).at(1).second, "33") << "what comes after the sound";
}

TEST_F(Palette, APaletteOpenedWhileAnotherLoadsIsTheOneThatStands) {
    soundFile("a.wav");
    std::string morning, evening;
    for (int i = 0; i < 30; ++i) {
        morning += iniLine("Path_" + std::to_string(i), "a.wav") + iniLine("Volm_" + std::to_string(i), "11");
        evening += iniLine("Path_" + std::to_string(i), "a.wav") + iniLine("Volm_" + std::to_string(i), "22");
    }
    int events = 0;
    modelUpcalls.pumpEvents = [&] {
        if (++events == 110) OpenFile("Evening");  // the names are there, the sounds are being opened
    };
    int ends = 0;
    modelUpcalls.endLoad = [&] { ++ends; };
    openPalette(morning + "[Evening]\r\n" + evening);
    EXPECT_EQ(ends, 1);
    for (int i = 0; i < 30; ++i) {
        EXPECT_EQ(jingle(i).Volm, 22) << i;
        EXPECT_EQ(jingle(i).Kind, SlotKind::stream) << i;
    }
    EXPECT_EQ(events, 110 + 2 * kPaletteSlots) << "the earlier one stopped there";
}

TEST_F(Palette, AHistoryThatCannotBeWrittenWaits) {
    const auto names = [] {
        std::string all;
        for (const HistoryEntry& entry : HistoryEntries())
            all += std::to_string(entry.number) + entry.name + entry.lines.at(0).second + " ";
        return all;
    };
    write("History", "a file where a folder is needed");
    for (const char* name : {"A", "a", "B", "b"})
        KeepSection(HistoryReason::deleted, name, {{"Path_0", "a.wav"}});
    EXPECT_EQ(names(), "2Ba.wav 1Aa.wav ");
    std::filesystem::remove(path("History"));
    KeepSection(HistoryReason::deleted, "C", {{"Path_0", "c.wav"}});
    KeepSection(HistoryReason::deleted, "c", {{"Path_0", "c.wav"}});
    EXPECT_EQ(names(), "3Cc.wav 2Ba.wav 1Aa.wav ");
    EXPECT_TRUE(std::filesystem::exists(path("History/00000003.ini")));
}

TEST_F(Palette, OneSlotGoesFromAPaletteThatIsNotOpen) {
    const std::string rest = "[Z]\r\nPath_0=z.wav\r\n",
                      keys = "Path_1=b.wav\r\nLoop_1=1\r\nSeq_1=1\r\nLoopOut_1=9\r\n";
    const std::pair<std::pair<int, std::string>, std::string> removals[] = {
        {{0,
          "Path_0=a.wav\r\nVolm_0=5\r\nAutoDuck_1=1\r\nPath_1=b.wav\r\nLoop_1=0\r\nSeq_1=2\r\n"
          "LoopOut_1=9\r\nPath_60=c.wav\r\n"},
         keys},
        {{1, "Path_0=a.wav\r\n" + keys}, "Path_0=a.wav\r\n"},
        {{0, "Path_0=a.wav\r\n"}, "This_palette_is_empty=Yes\r\n"},
        {{-1, "Path_60=c.wav\r\n"}, "Path_60=c.wav\r\n"},
    };
    LastPalIdx = 29;
    for (const auto& [removal, after] : removals) {
        write("palette.ini", "[Evening]\r\n" + removal.second + rest);
        EXPECT_TRUE(RemJing("Evening", removal.first) && RemJing("", 0) && RemJing("Nowhere", 0));
        EXPECT_EQ(read("palette.ini"), "[Evening]\r\n" + after + rest);
    }
}

TEST_F(Palette, TextsFollowTheirFaces) {
    BtnFaceColor = 0x112233, BtnForeColor = 1, JingleForeColor = 2;
    darkSettings.ColForeCB = 3, darkSettings.ColForeCBDM = 4, darkSettings.DarkForeColor = 5;
    darkSettings.BrightThresh = 120;
    // On the face, a dark colour, one at the threshold, a bright one; of a jingle and of any other.
    std::string fore;
    for (const int dark : {0, 1})
        for (const char* kind : {"jingle", ""})
            for (const std::int32_t colour : {BtnFaceColor, 0x000080, 0x0000FF, 0xC0FFC0}) {
                darkSettings.DarkMode = dark;
                fore += std::to_string(GetForeColor(colour, kind)) + " ";
            }
    EXPECT_EQ(fore, "2 3 3 2 0 3 3 1 2 2 2 4 16777215 5 5 4 ");
    BtnFaceColor = kButtonFace, BtnForeColor = JingleForeColor = 0;
}

TEST_F(Palette, AFileHoldsPalettesWhenItHoldsABracket) {
    for (const auto& [text, expected] : std::vector<std::pair<std::string, bool>>{
             {"", false}, {"no section", false}, {"; [", true}, {"[A]", true}}) {
        write("palette.ini", text);
        EXPECT_EQ(PalFileTest(), expected) << text;
    }
    for (const bool there : {false, true}) {
        std::filesystem::remove(path("palette.ini"));
        if (there) write("palette.ini", "");
        EXPECT_TRUE(PalFileTest()) << "a file that is away stands as it was read last";
        EXPECT_TRUE(PaletteStore.Away());
    }
    PaletteStore.DeleteSection("A");
    EXPECT_FALSE(PalFileTest()) << "what the program took out itself is gone";
    EXPECT_FALSE(PaletteStore.Away());
}

}  // namespace
}  // namespace zv::test
