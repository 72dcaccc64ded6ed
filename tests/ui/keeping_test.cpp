// What keeping_chance_test.cpp does not reach: spellings of names, the history's limits, the session's end, lost files.

#include "startup/settings/meters_settings.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings/program_settings.h"
#include "tests/ui/keeping_fixture.h"
#include "ui/edit/history.h"
#include "ui/edit/lost_files.h"
#include "ui/press/exit_key.h"

namespace zv::test {

namespace {

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

}  // namespace

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
