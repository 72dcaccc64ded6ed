// The store on its file: missing files, the limits, changes by someone else, and files that cannot be
// written.

#include "tests/startup/surroundings.h"

namespace zv::test {
namespace {

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
    EXPECT_EQ(store.SectionName(0) + store.SectionName(1) + store.SectionName(2) + store.SectionName(-1),
              "SQ");
    // Moved, merged and rewritten in one go each.
    const auto file = [&](const char* text) {
        write("test.ini", text);
        return &store;
    };
    EXPECT_TRUE(file("[A]\na=1\n[B]\nb=2\n")->MoveSection("A", "b", {{"a", "3"}}, false));
    EXPECT_EQ(read("test.ini"), "[B]\nb=2\na=3\n");
    EXPECT_TRUE(file("[A]\na=1\n[B]\nb=2\n")->MoveSection("A", "C", {{"a", "3"}}, true));
    EXPECT_EQ(read("test.ini"), "[B]\nb=2\n[C]\na=3\n");
    EXPECT_TRUE(file("[A]\na=1\n[B]\nb=2\n")->MoveSection("A", "a", {{"b", "3"}}, false));
    EXPECT_EQ(read("test.ini"), "[B]\nb=2\n[a]\nb=3\n");
    EXPECT_TRUE(file("[A]\nP1=x\nQ1=x\n[B]\nP2=y\nP3=x\n")
                    ->ReplaceValues(
                        "P", [](const std::string& value) { return value == "x"; }, "z"));
    EXPECT_EQ(read("test.ini"), "[A]\nP1=z\nQ1=x\n[B]\nP2=y\nP3=z\n");
    EXPECT_EQ(store.Bytes(), read("test.ini"));
    write("second.ini", "[S]\nk=2\n");
    store.SetIniPath((folder / "second.ini").string());
    EXPECT_EQ(store.GetValue("k"), "2");
    // A store without a file holds nothing and takes nothing.
    cImpulse none;
    none.ListSections();
    EXPECT_EQ(
        none.GetValue("k", 0, "S", "d") + std::string(none.Bytes()) + std::to_string(none.SectionCount()),
        "d0");
    EXPECT_FALSE(none.PutSection("S", {{"a", "1"}}) || none.MoveSection("S", "T", {{"a", "1"}}, true) ||
                 none.RewriteValues("a", {}) || none.Away() || !none.GetSectionLines("S").empty());
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

}  // namespace
}  // namespace zv::test
