// What keeping_chance_test.cpp does not reach: a studio's disasters, spellings of names, the history's limits, the session's end.
#include <unistd.h>

#include "startup/settings/folders_settings.h"
#include "startup/settings/meters_settings.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings/program_settings.h"
#include "tests/support/approved.h"
#include "tests/ui/approved.h"
#include "ui/edit/assign.h"
#include "ui/edit/fill.h"
#include "ui/edit/history.h"
#include "ui/edit/lost_files.h"
#include "ui/edit/undo.h"
#include "ui/press/exit_key.h"
#include "ui/windows/history_window.h"

namespace zv::test {

namespace {

namespace fs = std::filesystem;

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

/// What a studio does to files behind the program's back. Each act begins anew.
TEST_F(ApprovedTest, DisastersLoseNothing) {
    const std::string stick = path("stick").string(), live = stick + "/Live.wav";
    const auto plugged = [&] { writeWav(live, sine(22'050, 440)); };
    const auto away = [&](const char* file) {
        fs::rename(path(file), path("away.ini"));
        fs::create_directory(path(file));
    };
    const auto back = [&](const char* file) {
        fs::remove_all(path(file));
        fs::rename(path("away.ini"), path(file));
    };
    const auto edited12 = [] { rec(0).Volm = 12, MarkPalToSave(), ErrClick(); };
    fs::permissions(path(""), fs::perms::all);
    act("pulled out before it is opened, taken back",
        [&] { b_Jingle_OLEDragDrop(7, live), ErrClick(), note("pulled out before it is opened"), Undo(); });
    act("pulled out before it is imported", [&] {
        plugged(), folderSettings.ImportFiles = 1, b_Jingle_OLEDragDrop(7, live);
        fs::remove_all(stick), ErrClick(), folderSettings.ImportFiles = 0;
    });
    {
        const FolderGuard elsewhere;
        fs::permissions(elsewhere.path, fs::perms::all);
        writeWav(elsewhere.path / "Far.wav", sine(22'050, 440));
        folderSettings.ImportFiles = 1, b_Jingle_OLEDragDrop(7, (elsewhere.path / "Far.wav").string());
        const ReadOnly folder(path("Audio_Sample"));
        ErrClick(), folderSettings.ImportFiles = 0;
        text += "  not imported: " + frmMain().display.lblErr.toolTip() + "\n";
    }
    act("pulled out while it plays", [&] {
        plugged(), b_Jingle_OLEDragDrop(7, live), press(7), release(7), pass(100), heard();
        fs::remove_all(stick), pass(300);
        const Heard sound = heard();
        for (std::size_t at = 0; at + 441 <= sound.frames(); at += 441)
            EXPECT_GT(sound.loudest(at, at + 441), 0.3F);
        pass(400);
    });
    act("read-only no more", [&] {
        {
            const ReadOnly folder(path(""));
            edited12(), note("read-only: a save");
        }
        ErrClick();
    });
    act("a folder in the place of a new name", [&] {
        fs::create_directory(path("Audio_Sample/Other.wav"));
        clRename(kPaletteSlots), frmRenameFile().txtFilename.caption = "Other", frmRenameFile().onAccepted();
    });
    act("read-only: a sound deleted, taken back", [&] {
        const ReadOnly folder(path(""));
        DelJing(kSlot, true), note("read-only: a sound deleted"), Undo();
    });
    act(
        "a line end in the name of a file",
        [&] {
            for (const char* name : {"/two\nlines.wav", "/two\r.wav"}) {
                writeWav(stick + name, sine(2000, 440));
                b_Jingle_OLEDragDrop(7, stick + name);
            }
            FillPalette({stick});
        },
        400);
    act("a line end in a new name", [] {
        clRename(kSlot), frmRenameFile().txtFilename.caption = "two\nlines [\"x\"]",
                         frmRenameFile().onAccepted();
    });
    act("they change the palette that is open",
        [&] { write("palette.ini", "[A]\r\n" + line("1", "B1") + "[B]\r\n" + line("0", "B0")), edited12(); });
    act("they write between an edit and its undo", [&] {
        clMove(0, "cut"), pick("B"), clMove(7, "paste"), ErrClick();
        write("palette.ini", read("palette.ini") + "[C]\r\n" + line("9", "A0")), Undo();
    });
    act("a hot jingle onto itself, in another palette",
        [&] { clMove(kPaletteSlots, "cut"), pick("B"), clMove(kPaletteSlots, "paste"); });
    for (const char* file : {"HotJingles.ini", "palette.ini"}) {
        act(std::string("moved to a hot button, then written again: ") + file, [&] {
            away(file), clMove(kSlot, "cut"), clMove(97, "paste"), ErrClick(),
                note(std::string("moved without ") + file);
            back(file), ErrClick();
        });
        act(std::string("renamed without ") + file, [&] {
            away(file), clRename(kSlot), clRename(0), frmRenameFile().txtFilename.caption = "Other";
            frmRenameFile().btOK.onClick(), back(file);
        });
        act(std::string("moved to another palette without ") + file,
            [&] { clMove(kSlot, "cut"), pick("B"), away(file), clMove(7, "paste"), ErrClick(), back(file); });
    }
    act("the palettes' file is gone", [&] { fs::remove(path("palette.ini")), pick("B"), edited12(); });
    act("the palettes' file is empty",
        [&] { write("palette.ini", ""), lstPalRefresh(), note("no palettes"), pick("B"), edited12(); });
    act("the palettes' file cannot be read, and can again", [&] {
        away("palette.ini"), pick("B"), edited12(), note("the palettes' file cannot be read");
        back("palette.ini"), ErrClick();
    });
    act("moved to a hot button, and its palette opened and renamed", [&] {
        clMove(0, "cut"), pick("B"), clMove(97, "paste"), pick("A"), SavePal(2);
        frmMain().palettes.txtSave.caption = "Dawn", SavePal();
    });
    act("moved to a hot button, and its palette opened and saved again",
        [&] { clMove(0, "cut"), pick("B"), clMove(97, "paste"), pick("A"), edited12(); });
    act("a jingle cleared before the palette is left",
        [] { paletteSettings.AutoSave = 1, DelJing(0, false), pick("B"), paletteSettings.AutoSave = 0; });
    act("an auto save that failed is tried again", [&] {
        paletteSettings.AutoSave = 1, away("palette.ini"), rec(0).Volm = 71, MarkPalToSave(), pass(100);
        pick("B"), note("an auto save that failed"), pick("A"), rec(0).Volm = 72, MarkPalToSave(), pass(100);
        back("palette.ini"), pick("B"), paletteSettings.AutoSave = 0;
    });
    act("left unsaved, the file brought back", [&] {
        DelJing(0, true), pick("B"), note("left unsaved");
        ShowHistory(), frmHistory().lstHistory.listIndex = 1, frmHistory().btBack.onClick();
    });
    act("what was missing is there again", [&] {
        DelJing(0, true), clMove(kSlot, "copy"), OpenFile("A"), pass(500), note("missing");
        ShowHistory(), frmHistory().btBack.onClick();
    });
    expectApproved("ui/disasters.txt", lined());
}

}  // namespace

TEST_F(KeepingTest, namesOfPalettes) {
    struct Row {
        const char *typed, *list, *shown;
        int mode;
    };
    for (const Row& row :
         {Row{"A ", "A B C", "A", 2}, Row{"  ", "A B C", "A", 2}, Row{"a", "a B C", "a", 2},
          Row{"A", "A B C", "A", 2}, Row{" New ", "A B C New", "New", 0}, Row{"NEW", "A B C New", "New", 0},
          Row{"a", "A B C New", "A", 0}, Row{"Noon", "B C New Noon", "Noon", 2}}) {
        SCOPED_TRACE(row.typed);
        name(row.typed, row.mode);
        std::string list;
        for (const std::string& item : frmMain().palettes.lstPal.items())
            list += (list.empty() ? "" : " ") + item;
        EXPECT_EQ(list, row.list);
        EXPECT_EQ(frmMain().palettes.lstPal.text(), row.shown);
        EXPECT_EQ(paletteSettings.PaletteIndex, row.shown);
        EXPECT_EQ(jingles(row.shown), "0:A0 1:A1 2:A2");
    }
    SelectPalette("C");  // by the arrow keys, not opened
    name("Night", 2);
    EXPECT_EQ(jingles("C"), "0:C0 1:C1 2:C2");
    EXPECT_EQ(jingles("Night"), "0:A0 1:A1 2:A2");
    EXPECT_EQ(jingles("Noon"), "");
    // A save that comes while the dialogue is open does not change what it was opened for.
    SavePal(2);
    save();
    frmMain().palettes.txtSave.caption = "Dawn";
    SavePal();
    EXPECT_EQ(jingles("Night"), "");
    name("B", 2);  // onto another one: its keys are written over, and stand in the history
    EXPECT_EQ(jingles("B"), "0:A0 1:A1 2:A2");
    EXPECT_EQ(history(), "B 2; a 2; ");
}

TEST_F(KeepingTest, theHistoryHoldsSoManyEntriesAndWaitsForRoom) {
    for (int i = 0; i < kHistoryEntries + 5; ++i) {
        KeepSection(HistoryReason::saved, "X", {{"Path_0", std::to_string(i)}});
        KeepSection(HistoryReason::saved, "X", {{"Path_0", std::to_string(i)}});  // as the newest: once
    }
    for (const char* foreign : {"1234567890", "12345678901", "-5", "7x", ""})
        write(std::string("History/") + foreign + ".ini", "[Entry]");
    KeepSection(HistoryReason::saved, "X", {{"Path_0", std::to_string(kHistoryEntries + 4)}});
    EXPECT_EQ(HistoryEntries().size(), static_cast<std::size_t>(kHistoryEntries));
    EXPECT_EQ(HistoryEntries().back().lines[0].second, "5");
    std::filesystem::remove_all(path("History"));
    write("History", "no folder can be made here");
    DeletePalette("B");
    EXPECT_EQ(jingles("B"), "") << "what cannot be kept holds nothing up";
    std::filesystem::remove(path("History"));
    DeletePalette("C");
    EXPECT_EQ(history(), "C 4; B 4; ") << "and is kept once there is room";
}

TEST_F(KeepingTest, ofFilesOfOneNameTheOneWhoseFoldersAgreeIsFound) {
    struct Work final : JobWork {
        bool cancelled() override { return false; }
        void progress(int, std::string) override {}
    } work;
    for (const char* name : {"gone", "a/lost", "b/lost", "d/lost", "a/twin", "e/twin"})
        writeWav(path("alike/" + std::string(name) + ".wav"), sine(100, 440));
    const std::string folder = path("alike").string();
    const FoundFiles found = FindLostFiles(
        {.path = "gone.wav", .folder = folder, .records = {"b\\lost.wav", "c\\twin.wav"}}, work);
    EXPECT_EQ(found.others, (std::map<std::string, std::string>{{"b\\lost.wav", folder + "/b/lost.wav"}}));
}

TEST_F(KeepingTest, theSessionsEndAsksNothingAndSaves) {
    programSettings.ConfirmExit = 1;
    paletteSettings.AutoSave = 1;
    rec(0).Volm = 33;
    rec(96).Volm = 34;
    MarkPalToSave();  // less than 50 ms ago
    meterSettings.VUspeed = 11;
    EXPECT_TRUE(frmMain().window.onQueryClose(kSessionEnds));
    EXPECT_TRUE(desktop().boxes.empty());
    EXPECT_EQ(value("A", "Volm_0"), "33");
    EXPECT_EQ(SettingsStore.GetValue("VUspeed"), "11");
    paletteSettings.AutoSave = 0;
    rec(0).Volm = 44;
    rec(97).Path = "Audio_Sample\\A0.wav";
    MarkPalToSave();
    EXPECT_TRUE(frmMain().window.onQueryClose(kSessionEnds));
    EXPECT_EQ(value("A", "Volm_0"), "33");
    EXPECT_EQ(history(), "HotJingles 0; A 0; ");
}

}  // namespace zv::test
