// Nothing that was saved is lost: saves between a choice and its load, names, jingles that change palettes, files that
// are away, sound files that change their names.

#include "startup/errors.h"
#include "startup/settings/grid_settings.h"
#include "startup/settings/meters_settings.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings/program_settings.h"
#include "tests/ui/keeping_fixture.h"
#include "ui/edit/history.h"
#include "ui/press/exit_key.h"
#include "ui/screen/error_mark.h"
#include "ui/windows/history_window.h"

namespace zv::test {

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

TEST_F(KeepingTest, aCutJingleOutlivesAFileThatCannotBeWritten) {
    std::filesystem::remove(path("HotJingles.ini"));
    std::filesystem::create_directory(path("HotJingles.ini"));
    clMove(1, "cut");
    clMove(96, "paste");  // within the palette: the button is empty at once
    save();
    EXPECT_EQ(jingles("A"), "0:A0 1:A1 2:A2") << "it does not leave before it has arrived";
    EXPECT_TRUE(PalToSave);
    std::filesystem::remove(path("HotJingles.ini"));
    save();
    EXPECT_EQ(jingles("A"), "0:A0 2:A2");
    EXPECT_EQ(hot(), "0:A1");
    pick("B");
    clMove(0, "cut");
    pick("C");
    std::filesystem::rename(path("HotJingles.ini"), path("away"));
    std::filesystem::create_directory(path("HotJingles.ini"));
    clMove(5, "paste");
    save();
    EXPECT_EQ(jingles("B"), "0:B0 1:B1 2:B2") << "palette and hot jingles are not both on disk";
}

TEST_F(KeepingTest, aPaletteFileThatIsAwayStandsAsItWasRead) {
    for (const char* how : {"gone", "empty", "unreadable"}) {
        SCOPED_TRACE(how);
        pick("A");
        std::filesystem::rename(path("palette.ini"), path("away.ini"));
        if (how == std::string("empty")) write("palette.ini", "");
        if (how == std::string("unreadable")) std::filesystem::create_directory(path("palette.ini"));
        pick("B");
        EXPECT_EQ(rec(0).Path, "Audio_Sample\\B0.wav");
        EXPECT_TRUE(ErrMarkShows("n") || frmMain().display.lblErr.visible) << "it is told";
        rec(0).Volm = 12;
        save();
        if (how == std::string("unreadable")) {
            EXPECT_TRUE(PalToSave);
            std::filesystem::remove(path("palette.ini"));
            std::filesystem::rename(path("away.ini"), path("palette.ini"));
            save();
        }
        EXPECT_EQ(jingles("A"), "0:A0 1:A1 2:A2");
        EXPECT_EQ(jingles("C"), "0:C0 1:C1 2:C2");
        EXPECT_EQ(value("B", "Volm_0"), "12");
        EXPECT_NE(read("palette.ini").find("[C]"), std::string::npos);
        rec(0).Volm = 100;
        save();
        std::filesystem::remove(path("away.ini"));
    }
}

TEST_F(KeepingTest, anAutoSaveThatFailedIsTriedAgainBeforeThePaletteIsLeft) {
    paletteSettings.AutoSave = 1;
    std::filesystem::rename(path("palette.ini"), path("away.ini"));
    std::filesystem::create_directory(path("palette.ini"));
    rec(0).Volm = 71;
    MarkPalToSave();
    pass(100);
    EXPECT_TRUE(PalToSave);
    pick("B");  // still not writable: told, and kept
    EXPECT_TRUE(frmMain().display.lblErr.visible);
    EXPECT_NE(frmMain().display.lblErr.toolTip().find("palette.ini"), std::string::npos);
    EXPECT_EQ(history(), "A 0; ");
    pick("A");
    rec(0).Volm = 72;
    MarkPalToSave();
    pass(100);
    std::filesystem::remove(path("palette.ini"));
    std::filesystem::rename(path("away.ini"), path("palette.ini"));
    pick("B");
    EXPECT_EQ(value("A", "Volm_0"), "72");
}

TEST_F(KeepingTest, aSoundKeepsItsNameWhereThePalettesCannotBeWritten) {
    std::filesystem::rename(path("HotJingles.ini"), path("away.ini"));
    std::filesystem::create_directory(path("HotJingles.ini"));
    clRename(1);
    clRename(2);  // while another one is open
    EXPECT_EQ(RenameJ, 1);
    frmRenameFile().txtFilename.caption = "Other";
    frmRenameFile().btOK.onClick();
    EXPECT_TRUE(std::filesystem::exists(path("Audio_Sample/A1.wav")));
    EXPECT_EQ(jingles("A"), "0:A0 1:A1 2:A2");
    EXPECT_EQ(rec(1).Path, "Audio_Sample\\A1.wav");
    EXPECT_NE(rec(1).hPlay, 0U);
}

TEST_F(KeepingTest, whatGoesLeavesACopy) {
    desktop().answers = {BoxAnswer::yes, BoxAnswer::yes};
    DelJing(0, true);
    EXPECT_FALSE(std::filesystem::exists(path("Audio_Sample/A0.wav")));
    pick("B");  // leaves A unsaved
    SelectPalette("C");
    btDelpal_MouseUp();
    EXPECT_EQ(history(), "C 4; A 0; Audio_Sample\\A0.wav 4; ");
    const std::vector<HistoryEntry> entries = HistoryEntries();
    EXPECT_EQ(entries[0].lines.size(), 3U);
    EXPECT_EQ(entries[1].lines.size(), 2U);
    EXPECT_TRUE(BringFileBack(entries[2]));
    EXPECT_TRUE(std::filesystem::exists(path("Audio_Sample/A0.wav")));
    EXPECT_EQ(history(), "C 4; A 0; ");
    // A save that takes jingles out; a save of options only leaves no copy.
    pick("A");
    rec(0).Volm = 20;
    save();
    EXPECT_EQ(HistoryEntries().size(), 2U);
    desktop().answers = {BoxAnswer::yes};
    DelJing(1, false);
    save();
    EXPECT_EQ(history(), "A 1; C 4; A 0; ");
    EXPECT_EQ(HistoryEntries()[0].lines.size(), 4U) << "with the options as they were saved";
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
