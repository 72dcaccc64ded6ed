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

TEST_F(KeepingTest, aSaveBetweenAStepAndItsLoadGoesToThePaletteOfTheRecords) {
    for (const int autoSave : {1, 0}) {
        paletteSettings.AutoSave = autoSave;
        pick("A");
        rec(1).Volm = 33 + autoSave;
        MarkPalToSave();
        pass(20);
        evBtDn();
        EXPECT_EQ(paletteSettings.PaletteIndex, "B");
        rec(2).Volm = 44 + autoSave;
        MarkPalToSave();
        if (autoSave == 0) {
            pass(60);
            ErrClick();  // the mark, before the load
        }
        pass(400);
        EXPECT_EQ(jingles("A"), "0:A0 1:A1 2:A2");
        EXPECT_EQ(jingles("B"), "0:B0 1:B1 2:B2");
        EXPECT_EQ(value("A", "Volm_1"), std::to_string(33 + autoSave));
        EXPECT_EQ(value("A", "Volm_2"), std::to_string(44 + autoSave));
        EXPECT_EQ(HeldPalette(), "B");
        EXPECT_EQ(frmMain().palettes.lstPal.text(), "B") << "the save does not turn the choice back";
        EXPECT_EQ(frmMain().display.txtDisPal.caption(), "B");
        EXPECT_EQ(rec(0).Path, "Audio_Sample\\B0.wav");
    }
}

TEST_F(KeepingTest, anEditIsSavedHoweverSoonThePaletteIsLeft) {
    paletteSettings.AutoSave = 1;
    const std::vector<std::pair<const char*, std::function<void()>>> ways{
        {"picked", [&] { pick("B"); }},
        {"stepped",
         [&] {
             evBtDn();
             pass(200);
         }},
        {"new", [&] {
             desktop().answers = {BoxAnswer::yes};
             btNewTog();
         }}};
    int volume = 50;
    for (const auto& [way, leave] : ways) {
        SCOPED_TRACE(way);
        pick("A");
        rec(0).Volm = ++volume;
        MarkPalToSave();
        leave();
        EXPECT_EQ(value("A", "Volm_0"), std::to_string(volume));
    }
    // Another message in the mark's place does not keep the save away.
    pick("A");
    rec(0).Volm = 60;
    MarkPalToSave();
    ErrDisp("notification", 0, "something else");
    pass(100);
    EXPECT_EQ(value("A", "Volm_0"), "60");
}

TEST_F(KeepingTest, slotsBelowTheGridFollowAStep) {
    gridSettings.JinglesRows = 8;
    gridSettings.JinglesCols = 12;
    resize(1280, 800);
    write("palette.ini", read("palette.ini") + line("60", "C1"));  // the last section is C
    pick("C");
    gridSettings.JinglesRows = gridSettings.JinglesCols = 4;
    resize(1280, 800);
    evbtUp();
    pass(300);
    save();
    EXPECT_EQ(jingles("B"), "0:B0 1:B1 2:B2") << "C's jingle below the grid does not come along";
    EXPECT_EQ(jingles("C"), "0:C0 1:C1 2:C2 60:C1");
}

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

TEST_F(KeepingTest, aCutJingleStaysSomewhere) {
    // Pasted into another palette that is left unsaved: it stays where it was.
    clMove(1, "cut");
    pick("B");
    clMove(9, "paste");
    pick("A");
    save();
    EXPECT_EQ(jingles("A"), "0:A0 1:A1 2:A2");
    // Left by a step with a key held, which keeps what waits.
    clMove(1, "cut");
    pick("B");
    clMove(9, "paste");
    CtrlDown = true;
    evBtDn();
    pass(300);
    CtrlDown = false;
    save();
    EXPECT_EQ(jingles("A"), "0:A0 1:A1 2:A2");
    // Pasted back where it came from.
    pick("A");
    clMove(1, "cut");
    pick("B");
    clMove(9, "paste");
    save();
    EXPECT_EQ(jingles("A"), "0:A0 2:A2");
    EXPECT_EQ(jingles("B"), "0:B0 1:B1 2:B2 9:A1");
    clMove(9, "cut");
    pick("A");
    clMove(1, "paste");
    save();
    EXPECT_EQ(jingles("A"), "0:A0 1:A1 2:A2");
    EXPECT_EQ(jingles("B"), "0:B0 1:B1 2:B2");
    // Among the hot jingles, back in its palette and saved there: it has moved, it is not doubled.
    clMove(2, "cut");
    pick("C");
    clMove(96, "paste");
    pick("A");
    save();
    EXPECT_EQ(jingles("A"), "0:A0 1:A1");
    EXPECT_EQ(hot(), "0:A2");
    EXPECT_TRUE(rec(2).Path.empty());
    // The palette that it went to gets another name before anything is saved.
    clMove(1, "cut");
    pick("B");
    clMove(9, "paste");
    name("Bee", 2);
    EXPECT_EQ(jingles("A"), "0:A0");
    EXPECT_EQ(jingles("Bee"), "0:B0 1:B1 2:B2 9:A1");
    name("B", 2);
    clMove(9, "cut");
    pick("A");
    clMove(1, "paste");
    save();
    // The slot got another file meanwhile: that one stays.
    clMove(1, "cut");
    pick("B");
    clMove(9, "paste");
    PaletteStore.PutValue("Path_1", "Audio_Sample\\C0.wav", "A");
    save();
    EXPECT_EQ(jingles("A"), "0:A0 1:C0");
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

TEST_F(KeepingTest, aRenamedSoundTakesEverythingAlong) {
    PaletteStore.PutValue("Path_7", "Audio_Sample\\A1.wav", "C");
    PaletteStore.PutValue("Volm_7", "30", "C");
    rec(1).Volm = 6, rec(1).FadeOut = 900, rec(1).CueStart = 400, rec(1).BTNCol = "00FF00", rec(1).Loop = 1;
    rec(96).Path = "audio_sample\\a1.wav";  // letters differ, the file is the same
    PersistedJingle before = rec(1);
    const auto rename = [&](int index, const std::string& to) {
        clRename(index);
        frmRenameFile().txtFilename.caption = to;
        frmRenameFile().btOK.onClick();
    };
    clRename(50);  // an empty button
    EXPECT_FALSE(frmRenameFile().form.isOpen());
    clRename(1);
    clRename(2);  // while another one is open
    EXPECT_EQ(RenameJ, 1);
    frmRenameFile().btCancel.onClick();
    rename(1, "Hymn");
    before.Path = "Audio_Sample\\Hymn.wav";
    EXPECT_EQ(rec(1).persisted(), before);
    EXPECT_NE(rec(1).hPlay, 0U);
    EXPECT_TRUE(std::filesystem::exists(path("Audio_Sample/Hymn.wav")));
    EXPECT_EQ(jingles("A"), "0:A0 1:Hymn 2:A2");
    EXPECT_EQ(jingles("C"), "0:C0 1:C1 2:C2 7:Hymn");
    EXPECT_EQ(value("C", "Volm_7"), "30");
    EXPECT_EQ(hot(), "0:Hymn");
    rename(1, "HYMN");  // case only
    EXPECT_FALSE(std::filesystem::exists(path("Audio_Sample/Hymn.wav")));
    EXPECT_TRUE(std::filesystem::exists(path("Audio_Sample/HYMN.wav")));
    EXPECT_EQ(jingles("C"), "0:C0 1:C1 2:C2 7:HYMN");
    rename(1, "C0");  // another file's name
    EXPECT_TRUE(std::filesystem::exists(path("Audio_Sample/HYMN.wav")));
    EXPECT_TRUE(frmRenameFile().form.isOpen());
    frmRenameFile().btCancel.onClick();
    // The palettes cannot be written: the file keeps its name.
    std::filesystem::rename(path("HotJingles.ini"), path("away.ini"));
    std::filesystem::create_directory(path("HotJingles.ini"));
    rename(1, "Other");
    EXPECT_TRUE(std::filesystem::exists(path("Audio_Sample/HYMN.wav")));
    EXPECT_EQ(jingles("A"), "0:A0 1:HYMN 2:A2");
    EXPECT_EQ(rec(1).Path, "Audio_Sample\\HYMN.wav");
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

TEST_F(KeepingTest, earlierStatesComeBack) {
    desktop().answers = {BoxAnswer::yes, BoxAnswer::yes, BoxAnswer::yes};
    rec(0).Volm = 20;
    save();
    DelJing(1, false);
    pick("C");
    SelectPalette("A");
    DeletePalette("A");
    lstPalRefresh();
    frmMain().palettes.lstPal.onMouseUp({MouseButton::right});
    ASSERT_EQ(desktop().menu.size(), 1U);
    desktop().menu[0].chosen();
    HistoryWindow& w = frmHistory();
    ASSERT_TRUE(w.form.isOpen());
    ASSERT_EQ(w.lstHistory.items().size(), 2U);  // the deleted palette, and the edit that C was chosen over
    EXPECT_NE(w.lstHistory.items()[0].find("A   deleted"), std::string::npos) << w.lstHistory.items()[0];
    EXPECT_EQ(w.lblDifference.caption(), "Not there now: A0.wav, A1.wav, A2.wav\r\n");
    w.btBack.onClick();
    EXPECT_FALSE(w.form.isOpen());
    EXPECT_EQ(HeldPalette(), "A");
    EXPECT_EQ(rec(0).Volm, 20);
    EXPECT_NE(rec(2).hPlay, 0U);
    EXPECT_TRUE(PalToSave);
    EXPECT_EQ(jingles("A"), "") << "unsaved edits, not the file";
    ErrClick();
    EXPECT_EQ(jingles("A"), "0:A0 1:A1 2:A2");
    EXPECT_EQ(frmMain().palettes.lstPal.text(), "A");
    ShowHistory();
    w.lstHistory.listIndex = 1;
    w.lstHistory.onChange();
    EXPECT_EQ(w.lblDifference.caption(), "Only there now: A1.wav\r\n");
    rec(2).Loop = 1;
    rec(0).PlayMod = PlayMode::touch;
    w.lstHistory.listIndex = 0;
    w.lstHistory.onChange();
    EXPECT_EQ(w.lblDifference.caption(), "Other settings or places: A0.wav, A2.wav\r\n");
    w.btClose.onClick();
    // A sound file under its own name, and the one that took its place meanwhile into the history.
    DelJing(1, true);
    write("Audio_Sample/A1.wav", "another");
    ShowHistory();
    EXPECT_NE(w.lblDifference.caption().find("Audio_Sample\\A1.wav"), std::string::npos);
    w.btBack.onClick();
    EXPECT_GT(std::filesystem::file_size(path("Audio_Sample/A1.wav")), 1000U);
    EXPECT_EQ(HistoryEntries()[0].reason, HistoryReason::replaced);
    w.form.close();
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
