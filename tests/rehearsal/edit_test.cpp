// Edits of many files at once.

#include "show.h"

namespace zv::test {
namespace {

namespace fs = std::filesystem;

std::size_t count(const std::string& text, const std::string& what) {
    std::size_t n = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
    return n;
}

TEST(Editing, FillsThePaletteFromAFolderInNameOrder) {
    Show show;
    show.tone("Held.wav", 1);
    for (const char* name : {"new/b.wav", "new/C.wav", "new/a.wav", "new/deep/Änd.wav"}) show.tone(name, 0.2);
    show.write("Audio_Sample/new/notes.txt", "no sound");
    show.write("palette.ini", "[First]\r\nPath_1=Audio_Sample\\Held.wav\r\n");
    const std::string before = show.contentsOf("palette.ini");
    show.passes(
        "at 200 answer no\nat 200 drop lstPal Audio_Sample/new\nat 400 expect J(0).Path\n"
        "at 500 press 1\n"
        "at 600 answer yes\nat 600 drop picDispBack Audio_Sample/new|Audio_Sample/Held.wav\n"
        "at 900 expect J(0).Path " +
        show.sound("new/a.wav") +
        "\nat 900 expect J(1).Path Audio_Sample\\Held.wav\n"
        "at 900 expect J(2).Path " +
        show.sound("new/deep/Änd.wav") + "\nat 900 expect J(3).Path " + show.sound("new/b.wav") +
        "\nat 900 expect J(4).Path " + show.sound("new/C.wav") + "\nat 900 expect J(5).Path " +
        show.sound("Held.wav") +
        "\nat 900 expect J(1).State 1\n"
        "at 1000 mods ctrl\nat 1000 key Z\nat 1050 mods\n"
        "at 1100 expect J(0).Path\nat 1100 expect J(4).Path\n"
        "at 1200 drop 0 Audio_Sample/new/a.wav|Audio_Sample/new/b.wav\n"
        "at 1300 expect J(0).Path\n"
        "at 2500 end\n");
    EXPECT_NE(show.result("events.log").find("Fill 5 empty buttons"), std::string::npos);
    EXPECT_EQ(show.contentsOf("palette.ini"), before);
}

TEST(Editing, FindsFiveHundredLostFilesAtOnce) {
    constexpr int kPalettes = 6, kEach = 84;
    Show show;
    show.tone("one.wav", 0.1);
    std::string palettes;
    for (int i = 0; i < kPalettes * kEach; ++i) {
        const std::string name = "jingle " + std::to_string(i) + ".wav";
        if (i % kEach == 0) palettes += "[P" + std::to_string(i / kEach) + "]\r\n";
        palettes += "Path_" + std::to_string(i % kEach) + "=D:\\Old studio\\" + name + "\r\n";
        const fs::path moved = show.home() / "elsewhere" / ("shelf " + std::to_string(i % 7));
        fs::create_directories(moved);
        fs::create_hard_link(show.sound("one.wav"), moved / name);
    }
    show.write("palette.ini", palettes);
    show.set("JinglesRows=8\r\nJinglesCols=12\r\n");
    const std::string find =
        "at 100 pick P0\nat 400 answer elsewhere\nat 400 rclick b_Jingle(3)\nat 400 menu mnuReloc\n"
        "at 405 expect frmSelFile.visible 1\n"
        "at 410 key Escape\nat 450 expect frmSelFile.visible 0\n"
        "at 450 expect J(3).MissingFile -1\n"
        "at 500 answer elsewhere\nat 500 rclick b_Jingle(3)\nat 500 menu mnuReloc\n"
        "at 2000 expect frmSelFile.visible 1\nat 2000 expect frmSelFile.lstFoundFiles.listIndex 0\n"
        "at 2000 expect frmSelFile.ckOthers.value 1\n";
    show.passes(find + "at 2100 key Escape\nat 2200 expect J(3).MissingFile -1\nat 2300 end\n");
    EXPECT_EQ(show.contentsOf("palette.ini"), palettes);
    show.passes(find +
                "at 2100 key Enter\nat 2400 expect J(3).MissingFile 0\n"
                "at 2400 expect J(80).MissingFile 0\nat 2500 click btSave\nat 2550 key Enter\n"
                "at 3000 pick P5\nat 3500 expect J(83).MissingFile 0\nat 3500 end\n");
    const std::string found = show.contentsOf("palette.ini");
    EXPECT_EQ(count(found, "=D:\\"), 0U);
    EXPECT_EQ(count(found, "jingle "), static_cast<std::size_t>(kPalettes * kEach));
}

}  // namespace
}  // namespace zv::test
