// The helpers on paths, files, texts and numbers, over both kinds of path.

#include "startup/folder_walk.h"
#include "tests/startup/surroundings.h"

namespace zv::test {
namespace {

class Helpers : public ProgramFolderTest {};

TEST_F(Helpers, TakePathsApart) {
    struct {
        const char *path, *rpp, *folder, *name, *extension;
    } const table[] = {
        {"C:\\", "C:\\", "C:\\", "", ""},
        {"C:\\Music\\a.b\\c", "C:\\Music\\a.b\\c\\", "C:\\Music\\a.b\\", "c", ""},
        {"\\\\server\\share\\x.mp3", "\\\\server\\share\\x.mp3\\", "\\\\server\\share\\", "x.mp3", "mp3"},
        {"Audio_Sample\\x.y.wav", "Audio_Sample\\x.y.wav\\", "Audio_Sample\\", "x.y.wav", "wav"},
        {"x.wav", "x.wav\\", "", "x.wav", "wav"},
        {"/home/me/x.flac", "/home/me/x.flac/", "/home/me/", "x.flac", "flac"},
        {"/home/a\\b.ogg", "/home/a\\b.ogg/", "/home/", "a\\b.ogg", "ogg"},
        {"/", "/", "/", "", ""},
        {"", "\\", "", "", ""},
    };
    for (const auto& row : table) {
        EXPECT_EQ(RPP(row.path), row.rpp);
        EXPECT_EQ(GetPath(row.path), row.folder);
        EXPECT_EQ(GetFileName(row.path), row.name);
        EXPECT_EQ(GetFileExt(row.path), row.extension) << row.path;
    }
}

TEST_F(Helpers, PathsUnderTheProgramFolderAreRelative) {
    const std::string here = programFolder();
    EXPECT_EQ(GetFullPath("Audio_Sample\\x.wav"), text("Audio_Sample/x.wav"));
    EXPECT_EQ(GetRelPath(text("Audio_Sample/x.wav")), "Audio_Sample\\x.wav");
    EXPECT_EQ(GetRelPath(GetFullPath("a\\b\\c.wav")), "a\\b\\c.wav");
    for (const char* path : {"C:\\x.wav", "\\\\server\\x.wav", "/elsewhere/x.wav"}) {
        EXPECT_EQ(GetFullPath(path), path);
        EXPECT_EQ(GetRelPath(path), path);
    }
    EXPECT_EQ(GetRelPath(here + "2/x.wav"), here + "2/x.wav");
    if (here.starts_with('/')) {
        write("back\\slash.wav", "");
        EXPECT_EQ(GetRelPath(text("back\\slash.wav")), text("back\\slash.wav"))
            << "it would come back as two";
        const std::string shouted = "/TMP" + here.substr(here.find('/', 1));
        EXPECT_EQ(GetRelPath(shouted + "/x.wav"), shouted + "/x.wav") << "another folder to the system";
    }
    setProgramFolder("C:\\Zentrova\\");
    EXPECT_EQ(GetFullPath("\\Fonts\\x.ttf"), "C:\\Zentrova\\Fonts\\x.ttf");
    EXPECT_EQ(GetRelPath("c:\\zentrova\\A.wav"), "A.wav");
}

TEST_F(Helpers, FindsAndMakesFiles) {
    write("Sounds/Caf\xC3\xA9.WAV", "x");
    EXPECT_TRUE(FileExists("Sounds\\Caf\xC3\xA9.WAV"));
    EXPECT_TRUE(FileExists("sounds\\CAF\xC3\x89.wav"));  // differs in case only
    EXPECT_TRUE(FileExists(programFolder() + "/sounds/caf\xC3\xA9.wav"));
    EXPECT_FALSE(FileExists("Sounds"));
    EXPECT_TRUE(FolderExists("SOUNDS"));
    EXPECT_EQ(FileLength("sounds\\caf\xC3\xA9.wav"), 1);
    write("sounds2/x.wav", "");
    EXPECT_TRUE(FileExists("Sounds2\\X.wav"));  // made after the folder was first looked at
    EXPECT_FALSE(FileExists("C:\\Sounds\\x.wav"));

    EXPECT_TRUE(MkDirs("New\\Folder\\Here\\"));
    EXPECT_TRUE(fs::is_directory(path("New/Folder/Here")));
    EXPECT_FALSE(MkDirs("Z:\\New"));
    EXPECT_FALSE(MkDirs("\\\\server\\New"));
    EXPECT_FALSE(MkDirs("Sounds\\Caf\xC3\xA9.WAV\\x"));

    write("New/1.wav", "");
    write("New/Folder/2.wav", "");
    write("New/Zoo/3.wav", "");
    std::string walked;
    const auto walk = [&](const char* until) {
        return WalkFiles(
            "New",
            [&](const std::string& file) {
                walked += GetFileName(file) + " ";
                return GetFileName(file) != until;
            },
            [&](const std::string& entered, double share) {
                walked += GetFileName(entered) + "@" + NumberText(std::round(share * 100)) + " ";
            });
    };
    EXPECT_TRUE(walk("none") && !walk("2.wav") && WalkFiles("Gone", {}) && WalkFiles("", {}));
    EXPECT_EQ(walked, "New@0 1.wav Folder@33 2.wav Here@50 Zoo@67 3.wav New@0 1.wav Folder@33 2.wav ");
}

TEST_F(Helpers, Texts) {
    EXPECT_EQ(Ampersand("R&B && Soul"), "R&&B &&&& Soul");
    EXPECT_EQ(br2chr13("a<br>b<BR>c"), "a\r\nb\r\nc");
    EXPECT_EQ(br2space("a<br>b"), "a b");
    EXPECT_EQ(ReturnNumbers("a1b22") + ReturnNonNumbers("a1b22"), "122ab");
    EXPECT_EQ(NoAccents("ÀÁÂÃÄÅàáâãäåÒÓÔÕÖØòóôõöøÈÉÊËèéêëÌÍÎÏìíîïÙÚÛÜùúûüÿÑñÇç"),
              "AAAAAAaaaaaaOOOOOOooooooEEEEeeeeIIIIiiiiUUUUuuuuyNnCc");
    EXPECT_EQ(NoAccents("ß×日"), "ß×日");
    EXPECT_EQ(CannotBeEmpty(" ", "3"), "3");
    EXPECT_EQ(CannotBeEmpty("7", "3"), "7");
    EXPECT_THAT(Split("a,,b", ","), ElementsAre("a", "", "b"));
    std::vector<std::string> words{"zoo", "Élan", "elan", "ELBE", "Eland", "Ångström", "angel"};
    QuickSort(words);
    EXPECT_THAT(words, ElementsAre("angel", "Ångström", "elan", "Élan", "Eland", "ELBE", "zoo"));
    std::vector<std::string> part{"d", "c", "b", "a"};
    QuickSort(part, 1, 2);
    EXPECT_THAT(part, ElementsAre("d", "b", "c", "a"));
}

TEST_F(Helpers, LegalFileNames) {
    struct {
        const char *text, *replacement;
        bool shortName;
        const char* name;
    } const table[] = {
        {"nul", "", false, "_nul"},
        {"a\x1F\x7F b", "-", false, "a-- b"},
        {"a+b,c;d=e[f]g", "", true, "abcdefg"},
        {" News: 9/10 \"live\"? ", "_", false, "News_ 9_10 ''live''_"},
        {"a<b>c|d*e\\f", "", false, "abcdef"},
        {"name. . .", "", false, "name"},
        {"LPT9.wav", "", false, "_LPT9.wav"},
        {"com10.wav", "", false, "com10.wav"},
        {"A long name.flac", "", true, "Alongnam.fla"},
        {"a.long name.flac", "", true, "a.longna.fla"},
    };
    for (const auto& row : table)
        EXPECT_EQ(ValidFileName(row.text, row.replacement, row.shortName), row.name);
    const std::string longName = ValidFileName(std::string(400, 'x') + ".wav");
    EXPECT_EQ(longName, std::string(255, 'x'));
    EXPECT_LE(
        ValidFileName(std::string(140, 'x') + std::string("\xC3\xA9\xC3\xA9") + std::string(130, 'y')).size(),
        255U);
    try {
        ValidFileName("x", "*");
        FAIL() << "a replacement that is not allowed itself";
    } catch (const ProgramError& e) {
        EXPECT_EQ(e.number, 2069);
        EXPECT_STREQ(e.what(), "ReplacementChar is not valid.");
    }
}

TEST_F(Helpers, Numbers) {
    struct {
        const char* text;
        std::optional<double> number;
        double leading;
    } const table[] = {
        {"12", 12, 12},
        {" -3.5 ", -3.5, -3.5},
        {"2,5", 2.5, 2},
        {"1e3", 1000, 1000},
        {"&HFF", 255, 0},
        {"", std::nullopt, 0},
        {"12 Hz", std::nullopt, 12},
        {"-", std::nullopt, 0},
        {"+5", 5, 5},
        {"inf", std::nullopt, 0},
        {"nan", std::nullopt, 0},
        {"1e999", std::nullopt, 0},
    };
    for (const auto& row : table) {
        EXPECT_EQ(ToNumber(row.text), row.number) << row.text;
        EXPECT_EQ(Val(row.text), row.leading) << row.text;
    }
    EXPECT_EQ(NumberText(12345678901.0), "12345678901");
    EXPECT_EQ(NumberText(0.1), "0.1");
    EXPECT_EQ(GetMultipleOf(17, 5), 15);
    EXPECT_EQ(GetMultipleOf(-1, 5), -5);
    EXPECT_EQ(GetMultipleOf(3, 0), 3);
    std::string digits, numeric;
    for (int key = 1; key < 128; ++key) {
        if (KeepDigit(key) == key) digits += static_cast<char>(key);
        if (KeepNumeric(key) == key) numeric += static_cast<char>(key);
    }
    EXPECT_EQ(digits, "\b0123456789");
    EXPECT_EQ(numeric, "\b+,-.0123456789");
    EXPECT_EQ(KeepDigit('x') + KeepNumeric('x'), 0);
}

}  // namespace
}  // namespace zv::test
