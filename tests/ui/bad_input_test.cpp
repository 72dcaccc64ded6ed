// What a studio does to files behind the program's back: media pulled out, folders that cannot be written, odd names,
// other programs that write the same files.
#include <unistd.h>

#include "model/playlists.h"
#include "startup/settings/folders_settings.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings/search_settings.h"
#include "tests/ui/keeping_fixture.h"
#include "ui/edit/assign.h"
#include "ui/edit/fill.h"
#include "ui/edit/lost_files.h"
#include "ui/edit/search.h"
#include "ui/edit/search_index.h"
#include "ui/edit/undo.h"
#include "ui/windows/search_window.h"

namespace zv::test {
namespace {

namespace fs = std::filesystem;

constexpr int kFree = 5;
constexpr unsigned kNobody = 65534;

/// Nothing can be written below a folder, also not by root.
class ReadOnly {
  public:
    explicit ReadOnly(fs::path folder) : folder_(std::move(folder)) {
        set(fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
            fs::perm_options::remove);
        set(fs::perms::group_read | fs::perms::group_exec | fs::perms::others_read | fs::perms::others_exec,
            fs::perm_options::add);
        if (geteuid() == 0) root_ = seteuid(kNobody) == 0;
    }
    ~ReadOnly() {
        if (root_ && seteuid(0) != 0) std::abort();
        set(fs::perms::owner_write, fs::perm_options::add);
    }

  private:
    void set(fs::perms perms, fs::perm_options how) {
        fs::permissions(folder_, perms, how);
        for (const auto& one : fs::recursive_directory_iterator(folder_))
            fs::permissions(one.path(), perms, how);
    }
    fs::path folder_;
    bool root_ = false;
};

class BadInput;
struct Row {
    const char* what;
    std::string (*act)(BadInput&);
    const char* left;  ///< what act() returns
};

class BadInput : public KeepingTest, public ::testing::WithParamInterface<Row> {
  public:
    BadInput() {
        ForgetUndo();
        folderSettings.ImportFiles = 0;
        paletteSettings.AutoSave = 0;
        writeWav(path("stick/Live.wav"), sine(22'050, 440));
        fs::permissions(path(""), fs::perms::all);
    }
    ~BadInput() override {
        CloseSearchBox();
        StopSearchBlinking();
    }

    std::string stick(const std::string& name = "Live.wav") { return path("stick/" + name).string(); }
    void pullOut() { fs::remove_all(path("stick")); }
    void edit(int volume) {
        rec(0).Volm = volume;
        MarkPalToSave();
    }
    /// Whether slot 5 stands in the file with the path that it was dropped with.
    std::string stored(const std::string& file) {
        const std::string path = value("A", "Path_5");
        return path == GetRelPath(file) ? "its own path" : path;
    }
    std::string volume() { return value("A", "Volm_0"); }
    std::string slots() {
        std::string all;
        for (int i = 0; i < 8; ++i)
            all += rec(i).Path.empty() ? '.' : rec(i).MissingFile ? '!' : rec(i).hPlay != 0 ? 'o' : '?';
        return all;
    }
    static std::string said() {
        const DisplayControls& d = frmMain().display;
        return d.lblDispMessage.visible() ? d.lblDispMessage.caption() : "nothing";
    }
    /// Another program's write: `from` becomes `to` in the palettes' file.
    void theyWrite(const std::string& from, const std::string& to) {
        std::string text = read("palette.ini");
        const std::size_t at = text.find(from);
        text.replace(at, at == std::string::npos ? 0 : from.size(), to);
        write("palette.ini", text);
    }
    using FolderTest::path;
    using FolderTest::read;
    using FolderTest::reports;
    using FolderTest::write;
    using KeepingTest::history;
    using KeepingTest::hot;
    using KeepingTest::jingles;
    using KeepingTest::line;
    using KeepingTest::name;
    using KeepingTest::pick;
    using KeepingTest::save;
    using KeepingTest::value;
    using StudioTest::heard;
    using StudioTest::pass;
    using WindowTest::press;
};

const Row kRows[] = {
    {"pulled out before it is opened",
     [](BadInput& t) {
         const std::string file = t.stick();
         t.pullOut();
         b_Jingle_OLEDragDrop(kFree, file);
         t.save();
         const std::string with = t.slots();
         Undo();
         return with + " " + t.slots() + " " + t.stored(file);
     },
     "ooo..!.. ooo..... its own path"},
    {"pulled out before it is imported",
     [](BadInput& t) {
         folderSettings.ImportFiles = 1;
         const std::string file = t.stick();
         b_Jingle_OLEDragDrop(kFree, file);
         t.pullOut();
         t.save();
         return t.stored(file) + (fs::exists(t.path("Audio_Sample/Import")) ? ", half a copy" : "");
     },
     "its own path"},
    {"pulled out while it plays",
     [](BadInput& t) {
         b_Jingle_OLEDragDrop(kFree, t.stick());
         t.press(kFree);
         t.pass(100);
         t.heard();
         t.pullOut();
         t.pass(300);
         const Heard heard = t.heard();
         int quiet = 0;
         for (std::size_t at = 0; at + 441 <= heard.frames(); at += 441)
             quiet += heard.loudest(at, at + 441) < 0.3F ? 1 : 0;
         t.pass(400);
         return std::to_string(quiet) + " holes, " + (rec(kFree).Playing ? "plays on" : "ended");
     },
     "0 holes, ended"},
    {"read-only: a save",
     [](BadInput& t) {
         t.edit(12);
         std::string left;
         {
             const ReadOnly folder(t.path(""));
             t.save();
             left = PalToSave ? "unsaved, " : "saved, ";
         }
         left += t.read("palette.ini").find("Volm_0") == std::string::npos ? "file as before, "
                                                                           : "file changed, ";
         t.save();
         return left + t.volume();
     },
     "unsaved, file as before, 12"},
    {"read-only: the name of a sound file",
     [](BadInput& t) {
         const std::string before = t.read("palette.ini");
         const ReadOnly folder(t.path(""));
         clRename(0);
         frmRenameFile().txtFilename.caption = "Other";
         frmRenameFile().onAccepted();
         return rec(0).Path + (t.read("palette.ini") == before ? "" : ", file changed") +
                (UndoText().empty() ? "" : ", " + UndoText()) + ", " + t.slots();
     },
     "Audio_Sample\\A0.wav, ooo....."},
    {"read-only: a sound file deleted",
     [](BadInput& t) {
         const ReadOnly folder(t.path(""));
         desktop().answers = {BoxAnswer::yes};
         DelJing(1, true);
         const std::string with = t.slots();
         const bool there = fs::exists(t.path("Audio_Sample/A1.wav"));
         Undo();
         return with + " " + (there ? "the file stays " : "gone ") + t.slots();
     },
     "o.o..... the file stays ooo....."},
    {"a line end",
     [](BadInput& t) {
         std::string left;
         for (const char* name : {"two\nlines.wav", "two\r.wav"}) {
             writeWav(t.path("stick/" + std::string(name)), sine(2000, 440));
             b_Jingle_OLEDragDrop(kFree, t.stick(name));
             left += BadInput::said().substr(0, 27) + ", ";
         }
         desktop().answers = {BoxAnswer::yes};
         FillPalette({t.path("stick").string()});
         t.pass(300);
         return left + t.slots();
     },
     "Its name holds a line break, Its name holds a line break, oooo...."},
    {"a line end in a new name",
     [](BadInput& t) {
         clRename(0);
         frmRenameFile().txtFilename.caption = "two\nlines [\"x\"]";
         frmRenameFile().onAccepted();
         return t.slots() + (rec(0).Path.find('\n') == std::string::npos ? "" : " line end") +
                (t.read("palette.ini").find(rec(0).Path + "\r\n") == std::string::npos ? " lost" : "");
     },
     "ooo....."},
    {"they change the palette that is open",
     [](BadInput& t) {
         t.theyWrite(t.line("1", "A1"), t.line("1", "C1"));
         t.edit(12);
         t.save();
         return t.jingles("A") + ", theirs in the history: " + t.history();
     },
     "0:A0 1:A1 2:A2, theirs in the history: A 1; "},
    {"they write between an edit and its undo",
     [](BadInput& t) {
         clMove(1, "cut");
         t.pick("B");
         clMove(kFree, "paste");
         t.save();
         t.theyWrite(t.line("0", "A0"), t.line("0", "C2"));
         t.theyWrite("[C]", "[C]\r\nPath_9=Audio_Sample\\A0.wav");
         Undo();
         t.save();
         return t.jingles("A") + ", " + t.jingles("B") + ", " + t.jingles("C");
     },
     "0:C2 2:A2 1:A1, 0:B0 1:B1 2:B2, 9:A0 0:C0 1:C1 2:C2"},
};

/// The work of a search that is given up after so many reports.
class GivenUp final : public JobWork {
  public:
    explicit GivenUp(int after) : after_(after) {}
    bool cancelled() override { return static_cast<int>(told.size()) >= after_; }
    void progress(int percent, std::string text) override { told.emplace_back(percent, std::move(text)); }
    std::vector<std::pair<int, std::string>> told;

  private:
    int after_;
};

TEST_F(KeepingTest, aSearchForLostFilesTellsHowFarItIsAndStops) {
    for (int folder = 0; folder < 40; ++folder)
        for (int file = 0; file < 5; ++file)
            write("shelves/" + std::to_string(folder) + "/" + std::to_string(file) + ".wav", "");
    for (const int after : {3, 1000}) {
        GivenUp work(after);
        const FoundFiles found =
            FindLostFiles({.path = "D:\\4.wav", .folder = path("shelves").string()}, work);
        for (std::size_t i = 1; i < work.told.size(); ++i)
            EXPECT_GT(work.told[i].first, work.told[i - 1].first) << "percent only grow";
        EXPECT_NE(work.told.back().second.find("shelves/"), std::string::npos);
        if (after == 3) {
            EXPECT_EQ(work.told.size(), 3U);
            EXPECT_LT(found.seen, 60);
        } else {
            EXPECT_EQ(found.seen, 200);
            EXPECT_EQ(found.own.size(), 40U);
            EXPECT_GE(work.told.size(), 30U);
        }
    }
}

TEST_P(BadInput, LosesNothing) {
    EXPECT_EQ(GetParam().act(*this), GetParam().left) << GetParam().what;
    EXPECT_TRUE(reports.empty()) << reports.front();
}

INSTANTIATE_TEST_SUITE_P(Rows, BadInput, ::testing::ValuesIn(kRows));

}  // namespace
}  // namespace zv::test
