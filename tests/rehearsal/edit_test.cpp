// Editing as a presenter does it: with the keyboard, the mouse, whole folders; what the files hold afterwards.

#include "show.h"

namespace zv::test {
namespace {

namespace fs = std::filesystem;

std::string line(int slot, const std::string& path) {
    return "Path_" + std::to_string(slot) + "=" + path + "\r\n";
}

std::size_t count(const std::string& text, const std::string& what) {
    std::size_t n = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
    return n;
}

TEST(Editing, FindsAndPlaysWithoutTheMouse) {
    Show show;
    show.tone("Éclair de minuit.wav", 1);
    show.tone("Other.wav", 1);
    show.write("palette.ini", "[First]\r\n" + line(0, "Audio_Sample\\Other.wav") + "[Second]\r\n" +
                                  line(5, "Audio_Sample\\Éclair de minuit.wav"));
    ASSERT_EQ(show.perform("at 100 key F3\n"
                           "at 200 set frmSearchJing.txtJSearch ecl\n"
                           "at 600 expect frmSearchJing.lstPalRes Second\n"
                           "at 700 key Enter\n"
                           "at 900 expect txtDisPal Second\n"
                           "at 1000 key Enter\n"
                           "at 1500 expect J(5).State 1\n"
                           "at 2500 end\n"),
              0)
        << show.messages() << show.result("events.log");
    EXPECT_NEAR(static_cast<double>(firstSound(show.heard(), 0)), static_cast<double>(framesOf(1000)), 2000);
}

TEST(Editing, MovesBetweenPalettesAndTakesItBack) {
    Show show;
    for (const char* name : {"A.wav", "B.wav"}) show.tone(name, 1);
    const std::string palettes =
        "[First]\r\n" + line(0, "Audio_Sample\\A.wav") + "[Second]\r\n" + line(1, "Audio_Sample\\B.wav");
    show.write("palette.ini", palettes);
    const std::string move =
        "at 100 pick First\nat 300 mods ctrl\nat 500 press 0\nat 600 pick Second\nat 800 press 7\nat 900 "
        "mods\n"
        "at 1000 expect J(7).Path Audio_Sample\\A.wav\n";
    ASSERT_EQ(show.perform(move + "at 1100 click btSave\nat 1150 key Enter\nat 1500 end\n"), 0)
        << show.messages();
    const std::string moved = contents(show.home() / "palette.ini");
    EXPECT_NE(moved.find("[First]\r\nThis_palette_is_empty=Yes"), std::string::npos) << moved;
    EXPECT_NE(moved.find("Path_7=Audio_Sample\\A.wav"), std::string::npos) << moved;

    show.write("palette.ini", palettes);
    ASSERT_EQ(
        show.perform(move + "at 1100 click btSave\nat 1150 key Enter\n"
                            "at 1400 mods ctrl\nat 1500 key Z\nat 1550 expect lblDispMessage Undone: move A\n"
                            "at 1550 expect lblDispMessage.visible 1\nat 1600 mods\n"
                            "at 1700 expect J(7).Path\nat 1700 expect lblDispMessage.visible 1\n"
                            "at 5000 expect lblDispMessage.visible 0\n"
                            "at 5100 click btSave\nat 5150 key Enter\nat 5500 end\n"),
        0)
        << show.messages() << show.result("events.log");
    EXPECT_EQ(contents(show.home() / "palette.ini"), palettes) << "saved, taken back, saved again";
}

TEST(Editing, UndoLeavesWhatSoundsOnAir) {
    Show show;
    show.tone("Long.wav", 3);
    show.tone("Old.wav", 1);
    show.write("palette.ini", "[First]\r\n" + line(0, "Audio_Sample\\Old.wav"));
    ASSERT_EQ(show.perform("at 200 drop 0 Audio_Sample/Long.wav\n"
                           "at 500 press 0\n"
                           "at 1000 mods ctrl\nat 1000 key Z\nat 1050 mods\n"
                           "at 1100 expect J(0).Playing -1\n"
                           "at 1200 click btSave\nat 1250 key Enter\n"
                           "at 3600 expect J(0).Path Audio_Sample\\Old.wav\n"
                           "at 3700 press 0\n"
                           "at 3900 expect J(0).State 1\n"
                           "at 5000 end\n"),
              0)
        << show.messages() << show.result("events.log");
    const Sound sound = show.heard();
    for (double ms = 520; ms < 3450; ms += 10)
        ASSERT_GT(peak(sound, framesOf(ms), framesOf(ms + 10)), 0.4F) << ms << " ms: the air fell silent";
    EXPECT_NE(contents(show.home() / "palette.ini").find("Path_0=Audio_Sample\\Old.wav"), std::string::npos)
        << "the save in the middle knows what the button holds";
}

TEST(Editing, RenamesButNeverOntoAnotherFile) {
    Show show;
    for (const char* name : {"A.wav", "B.wav"}) show.tone(name, 1);
    show.write("palette.ini", "[First]\r\n" + line(0, "Audio_Sample\\A.wav"));
    ASSERT_EQ(show.perform("at 100 rclick b_Jingle(0)\nat 100 menu mnuRename\n"
                           "at 200 set frmRenameFile.txtFilename B\nat 250 key Enter\n"
                           "at 300 expect frmRenameFile.visible 1\n"
                           "at 300 expect frmRenameFile.lblNewFilename.foreColor 255\n"
                           "at 400 set frmRenameFile.txtFilename Say \"hello\" [live]\nat 450 key Enter\n"
                           "at 600 expect frmRenameFile.visible 0\n"
                           "at 700 press 0\nat 800 expect J(0).State 1\n"
                           "at 900 mods ctrl\nat 900 key Z\nat 950 mods\nat 1000 expect J(0).State 1\n"
                           "at 1000 expect J(0).Path Audio_Sample\\A.wav\n"
                           "at 2500 end\n"),
              0)
        << show.messages() << show.result("events.log");
    EXPECT_TRUE(fs::exists(show.home() / "Audio_Sample/A.wav"));
    EXPECT_NE(contents(show.home() / "palette.ini").find("Path_0=Audio_Sample\\A.wav"), std::string::npos);
    EXPECT_EQ(std::distance(fs::directory_iterator(show.home() / "Audio_Sample"), fs::directory_iterator()),
              2);
}

TEST(Editing, FillsThePaletteFromAFolderInNameOrder) {
    Show show;
    show.tone("Held.wav", 1);
    for (const char* name : {"new/b.wav", "new/C.wav", "new/a.wav", "new/deep/Änd.wav"}) {
        fs::create_directories((show.home() / "Audio_Sample" / name).parent_path());
        show.tone(name, 0.2);
    }
    show.write("Audio_Sample/new/notes.txt", "no sound");
    show.write("palette.ini", "[First]\r\n" + line(1, "Audio_Sample\\Held.wav"));
    const std::string before = contents(show.home() / "palette.ini");
    const std::string folder = (show.home() / "Audio_Sample").string() + "/";
    ASSERT_EQ(
        show.perform("at 200 answer no\nat 200 drop lstPal Audio_Sample/new\nat 400 expect J(0).Path\n"
                     "at 500 press 1\n"
                     "at 600 answer yes\nat 600 drop picDispBack Audio_Sample/new|Audio_Sample/Held.wav\n"
                     "at 900 expect J(0).Path " +
                     folder +
                     "new/a.wav\n"
                     "at 900 expect J(1).Path Audio_Sample\\Held.wav\n"
                     "at 900 expect J(2).Path " +
                     folder +
                     "new/deep/Änd.wav\n"
                     "at 900 expect J(5).Path " +
                     folder +
                     "Held.wav\n"
                     "at 900 expect J(1).State 1\n"
                     "at 1000 shot filled.png\n"
                     "at 1000 mods ctrl\nat 1000 key Z\nat 1050 mods\n"
                     "at 1100 expect J(0).Path\nat 1100 expect J(4).Path\n"
                     "at 1200 drop 0 Audio_Sample/new/a.wav|Audio_Sample/new/b.wav\n"
                     "at 1300 expect J(0).Path\n"
                     "at 2500 end\n"),
        0)
        << show.messages() << show.result("events.log");
    EXPECT_NE(show.result("events.log").find("Fill 5 empty buttons"), std::string::npos)
        << show.result("events.log");
    EXPECT_EQ(contents(show.home() / "palette.ini"), before);
}

TEST(Editing, FindsFiveHundredLostFilesAtOnce) {
    constexpr int kPalettes = 6, kEach = 84;
    Show show;
    show.tone("one.wav", 0.1);
    std::string palettes;
    for (int p = 0; p < kPalettes; ++p) {
        palettes += "[P" + std::to_string(p) + "]\r\n";
        for (int i = 0; i < kEach; ++i) {
            const std::string name = "jingle " + std::to_string(p * kEach + i) + ".wav";
            palettes += line(i, "D:\\Old studio\\" + name);
            const fs::path moved = show.home() / "elsewhere" / ("shelf " + std::to_string(i % 7));
            fs::create_directories(moved);
            fs::create_hard_link(show.home() / "Audio_Sample/one.wav", moved / name);
        }
    }
    show.write("palette.ini", palettes);
    show.write("zv.ini", contents(show.home() / "zv.ini") + "JinglesRows=8\r\nJinglesCols=12\r\n");
    const std::string find =
        "at 100 pick P0\nat 400 answer elsewhere\nat 400 rclick b_Jingle(3)\nat 400 menu mnuReloc\n"
        "at 405 expect frmSelFile.visible 1\n"
        "at 410 key Escape\nat 450 expect frmSelFile.visible 0\n"
        "at 450 expect J(3).MissingFile -1\n"
        "at 500 answer elsewhere\nat 500 rclick b_Jingle(3)\nat 500 menu mnuReloc\n"
        "at 520 shot frmSelFile searching.png\n"
        "at 2000 expect frmSelFile.visible 1\nat 2000 expect frmSelFile.lstFoundFiles.listIndex 0\n"
        "at 2000 expect frmSelFile.ckOthers.value 1\nat 2050 shot frmSelFile found.png\n";
    ASSERT_EQ(show.perform(find + "at 2100 key Escape\nat 2200 expect J(3).MissingFile -1\nat 2300 end\n"), 0)
        << show.messages() << show.result("events.log");
    EXPECT_EQ(contents(show.home() / "palette.ini"), palettes);
    ASSERT_EQ(
        show.perform(find + "at 2100 key Enter\nat 2400 expect J(3).MissingFile 0\n"
                            "at 2400 expect J(80).MissingFile 0\nat 2500 click btSave\nat 2550 key Enter\n"
                            "at 3000 pick P5\nat 3500 expect J(83).MissingFile 0\nat 3500 end\n"),
        0)
        << show.messages() << show.result("events.log");
    const std::string found = contents(show.home() / "palette.ini");
    EXPECT_EQ(count(found, "=D:\\"), 0U);
    EXPECT_EQ(count(found, "jingle "), static_cast<std::size_t>(kPalettes * kEach));
}

TEST(Editing, HelpAndFileManager) {
    Show show;
    show.tone("A.wav", 1);
    show.write("palette.ini", "[First]\r\n" + line(0, "Audio_Sample\\A.wav"));
    ASSERT_EQ(
        show.perform("at 100 rclick b_Jingle(0)\nat 100 menu mnuJPath\n"
                     "at 200 rclick b_Jingle(0)\nat 200 menu mnuASDir\n"
                     "at 300 key F1\nat 400 key F1\nat 500 expect frmShortcuts.visible 0\nat 600 end\n"),
        0)
        << show.messages();
    const std::string events = show.result("events.log");
    EXPECT_NE(events.find("show\t" + (show.home() / "Audio_Sample/A.wav").string()), std::string::npos)
        << events;
    EXPECT_NE(events.find("Audio_Sample\n"), std::string::npos) << events;
    EXPECT_NE(events.find("Manual/Zentrova.html"), std::string::npos) << events;
}

}  // namespace
}  // namespace zv::test
