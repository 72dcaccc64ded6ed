// The store on its file: missing files, the limits, changes by someone else, and files that cannot be
// written.

#include "tests/startup/surroundings.h"

namespace zv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

namespace fs = std::filesystem;

class Impulse : public ProgramFolderTest {
  protected:
    void SetUp() override {
        ProgramFolderTest::SetUp();
        store.SetIniPath((folder / "test.ini").string());
        store.SetSection("S");
    }
    cImpulse store;
};

TEST_F(Impulse, TellsMissingFromEmpty) {
    struct {
        const char* text;  // null: no file
        int type;
        const char* value;
        bool failed;
    } const table[] = {
        {nullptr, 0, "def", true},
        {"[S]\n", 0, "def", true},
        {"[S]\nk=\n", 0, "", false},
        {"[S]\nk=v\n", 0, "v", false},
        {"[S]\nk=EntryNotFoundFlag\n", 0, "def", true},
        {"[S]\nk=abc\n", 5, "0", true},
        {"[S]\nk=\n", 5, "0", true},
        {"[S]\nk=-12,5\n", 5, "-12,5", false},
    };
    for (const auto& row : table) {
        if (row.text != nullptr) write("test.ini", row.text);
        EXPECT_EQ(store.GetValue("k", row.type, "", "def"), row.value) << row.text;
        EXPECT_EQ(store.Failed(), row.failed) << row.text;
    }
}

TEST_F(Impulse, WritesThrough) {
    store.PutValue("k", 0, "", 0, "v");
    EXPECT_EQ(read("test.ini"), "[S]\r\nk=v\r\n");
    store.PutValue("k", "", "S");
    EXPECT_EQ(read("test.ini"), "[S]\r\n");
    EXPECT_TRUE(store.PutSection("P", {{"a", "1"}, {"b", "2"}}));
    EXPECT_THAT(store.GetSectionLines("p"), ElementsAre(Pair("a", "1"), Pair("b", "2")));
    CopySection("P", "Q", store.GetIniPath());
    EXPECT_EQ(store.GetValue("b", 0, "Q"), "2");
    store.DeleteSection("P");
    store.ListSections();
    ASSERT_EQ(store.SectionCount(), 2);
    EXPECT_EQ(store.SectionName(0) + store.SectionName(1) + store.SectionName(2), "SQ");
}

TEST_F(Impulse, SeesWhatOthersWrite) {
    // Same length, same tick, same file: only the content differs.
    store.PutValue("k", "0");
    for (char c = '1'; c <= '9'; ++c) {
        write("test.ini", std::string("[S]\r\nk=") + c + "\r\n");
        ASSERT_EQ(store.GetValue("k"), std::string(1, c));
        store.PutValue("j", std::string(1, c));
        ASSERT_EQ(read("test.ini"), std::string("[S]\r\nk=") + c + "\r\nj=" + c + "\r\n");
    }
    cImpulse other;
    other.SetIniPath(store.GetIniPath());
    other.PutValue("k", "other", "S");
    EXPECT_EQ(store.GetValue("k"), "other");
    fs::remove(path("test.ini"));
    EXPECT_EQ(store.GetValue("k"), "");
    store.PutValue("k", "new");
    EXPECT_EQ(read("test.ini"), "[S]\r\nk=new\r\n");
}

TEST_F(Impulse, SwitchesToAnotherFile) {
    write("a.ini", "[S]\nk=a\n");
    write("b.ini", "[S]\nk=b\n");
    store.SetIniPath((folder / "A.INI").string());  // as a file from a case-blind disk is called
    EXPECT_EQ(store.GetValue("k"), "a");
    store.SetIniPath("b.ini");  // relative to the program folder
    EXPECT_EQ(store.GetValue("k"), "b");
}

TEST_F(Impulse, ListsAsManyNamesAsItsLimitHolds) {
    std::string text;
    for (int i = 0; i < 1000; ++i) text += "[" + std::string(37, 'x') + std::to_string(1000 + i) + "]\n";
    write("test.ini", text);  // 1000 names of 41 characters, 42 with the zero
    store.ListSections();
    EXPECT_EQ(store.SectionCount(), 32765 / 42);
    EXPECT_EQ(store.HiddenSections(), 1000 - 32765 / 42);
    // 780 names fill 32,760 characters: one of 5 more fills the list to the brim, one of 6 is too much.
    text.resize(780 * 44);
    write("test.ini", text + "[54321]\n");
    store.ListSections();
    EXPECT_EQ(store.SectionCount(), 781);
    write("test.ini", text + "[654321]\n");
    store.ListSections();
    EXPECT_EQ(store.SectionCount(), 780);
}

TEST_F(Impulse, LeavesAFileAloneThatItCannotReadOrWrite) {
    write("test.ini", "[S]\nk=v\n");
    fs::permissions(path("test.ini"), fs::perms::owner_read);
    store.PutValue("k", "w");
    EXPECT_FALSE(store.PutSection("T", {{"a", "1"}}));
    EXPECT_EQ(read("test.ini"), "[S]\nk=v\n");
    EXPECT_EQ(store.GetValue("k"), "v");
    fs::create_directory(path("folder.ini"));
    store.SetIniPath((folder / "folder.ini").string());
    EXPECT_FALSE(store.PutSection("T", {{"a", "1"}}));
    store.SetIniPath((folder / "nowhere" / "x.ini").string());
    EXPECT_FALSE(store.PutSection("T", {{"a", "1"}}));
    store.SetIniPath("Z:\\palette.ini");  // a drive that is not there
    EXPECT_FALSE(store.PutSection("T", {{"a", "1"}}));
    EXPECT_FALSE(there("Z:\\palette.ini"));
}

}  // namespace
}  // namespace zv::test
