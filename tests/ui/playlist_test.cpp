// Playlists with their switch on: bound buttons, locked jingles, the two windows and the file.

#include "model/palette_files.h"
#include "model/playlists.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings/search_settings.h"
#include "tests/ui/window_test.h"
#include "ui/edit/jingle_menu.h"
#include "ui/edit/move.h"
#include "ui/edit/playlists.h"
#include "ui/edit/search.h"
#include "ui/edit/undo.h"
#include "ui/press/press.h"
#include "ui/screen/button_faces.h"
#include "ui/windows/playlist_windows.h"
#include "ui/windows/search_window.h"

namespace zv::test {
namespace {

constexpr int kEmpty = 1, kNews = 0, kShow = 5;

class PlaylistTest : public WindowTest {
  protected:
    PlaylistTest() {
        PlaylistsEnabled = true;
        writeWav(path("Audio_Sample/News > Sting (2).wav"), sine(4410, 440));
        writeWav(path("Audio_Sample/Show.wav"), sine(4410, 440));
        write("palette.ini",
              "[Morning]\r\nPath_0=Audio_Sample\\News > Sting (2).wav\r\nPath_5=Audio_Sample\\Show.wav\r\n"
              "[Ads]\r\nPath_5=Audio_Sample\\Show.wav\r\n");
        write("playlist.ini", "");
        LoadLockedFiles();
        lstPalRefresh();
        searchSettings.ResultsInSearch = 0;
        searchSettings.AutoClJSearchSec = 0;
        open("Morning");
    }
    ~PlaylistTest() override {
        frmPlaylist().form.close();
        frmPlaylistSelector().form.close();
        CloseSearchBox();
        PlaylistsEnabled = false;
        LockedFiles.clear();
    }

    void open(const std::string& palette) {
        paletteSettings.PaletteIndex = palette;
        OpenFile(palette);
        pass(2000);
    }
    /// What the button's menu offers of playlists.
    std::string offered(int index) {
        desktop().menu.clear();
        OpenJingleMenu(index);
        std::string all;
        for (const MenuItem& item : desktop().menu) {
            if (item.name == "mnuPlaylist" || item.name == "mnuLockedBy")
                all += (all.empty() ? "" : ", ") + item.caption;
        }
        return all;
    }
    /// The marks of the first buttons: P, K, or - for none.
    std::string marks() {
        std::string all;
        for (int i = 0; i < 8; ++i)
            all += HasPlaylistMark(i, 'P') ? 'P' : HasPlaylistMark(i, 'K') ? 'K' : '-';
        return all;
    }
    void find(const std::string& text, int row) {
        w_.btAdd.onClick();
        SearchWindow& s = frmSearchJing();
        s.txtJSearch.caption = text;
        s.txtJSearch.onChange();
        pass(300);
        s.lstJingRes.listIndex = row;
        s.btKbGo.onClick();
        EXPECT_FALSE(SearchOpen);
    }
    /// A new playlist of two jingles, bound to the empty button.
    void bindNew() {
        clPlaylist(kEmpty);
        EXPECT_TRUE(s_.form.isOpen());
        s_.btNew.onClick();
        EXPECT_FALSE(s_.form.isOpen());
        w_.txtPL.caption = "Night show";
        find("news", 0);
        find("show", 0);
        w_.btOK.onClick();
    }
    std::string list() { return PlaylistStore.GetValue("List", 0, rec(kEmpty).Playlist); }

    PlaylistSelector& s_ = frmPlaylistSelector();
    PlaylistWindow& w_ = frmPlaylist();
};

TEST_F(PlaylistTest, AButtonIsBoundAndItsJinglesAreLocked) {
    EXPECT_EQ(offered(kEmpty), "Create/Load a playlist");
    EXPECT_EQ(offered(kNews), "Add to a playlist");
    bindNew();
    EXPECT_FALSE(w_.form.isOpen());
    const std::string id = rec(kEmpty).Playlist;
    EXPECT_EQ(id.size(), 6U);
    EXPECT_TRUE(
        std::ranges::all_of(id, [](char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z'); }));
    EXPECT_EQ(PlaylistStore.GetValue("Name", 0, id), "Night show");
    EXPECT_EQ(list(), "0>Morning:5>Morning");
    EXPECT_EQ(PlaylistStore.GetValue("Automix", 0, id), "");
    EXPECT_EQ(button(kEmpty).caption(), "Night show");
    EXPECT_EQ(marks(), "KP---K--");
    EXPECT_TRUE(PalToSave);
    EXPECT_EQ(offered(kEmpty), "Edit the playlist");
    EXPECT_EQ(offered(kNews), "Locked by a playlist…, Add to a playlist");
    // Nothing sounds and nothing changes.
    heard();
    press(kEmpty), release(kEmpty);
    pass(200);
    EXPECT_TRUE(heard().silent(0, 8000));
    EXPECT_EQ(rec(kEmpty).Playlist, id);
    // It is kept with its palette, and found again; the other palette's button of that number is not locked.
    CloseFile("Morning");
    EXPECT_NE(read("palette.ini").find("Playlist_1=" + id), std::string::npos);
    open("Ads");
    EXPECT_EQ(marks(), "--------");
    EXPECT_EQ(button(kEmpty).caption(), "");
    open("Morning");
    EXPECT_EQ(marks(), "KP---K--");
    EXPECT_EQ(button(kEmpty).caption(), "Night show");
    // What is off is not read.
    PlaylistsEnabled = false;
    open("Morning");
    EXPECT_EQ(rec(kEmpty).Kind, SlotKind::nothing);
    EXPECT_EQ(offered(kEmpty), "");
}

TEST_F(PlaylistTest, BindingAndEmptyingAreTakenBack) {
    bindNew();
    const std::string id = rec(kEmpty).Playlist;
    Undo();
    EXPECT_EQ(rec(kEmpty).Kind, SlotKind::nothing);
    EXPECT_EQ(marks(), "K----K--") << "the playlist itself stays";
    Redo();
    EXPECT_EQ(rec(kEmpty).Playlist, id);
    EXPECT_EQ(button(kEmpty).caption(), "Night show");
    clPlaylist(kEmpty);
    while (!w_.lstPlaylist.items().empty()) {
        w_.lstPlaylist.listIndex = 0;
        w_.btRemove.onClick();
    }
    w_.btOK.onClick();
    EXPECT_EQ(rec(kEmpty).Kind, SlotKind::nothing);
    EXPECT_EQ(marks(), "--------");
    EXPECT_EQ(PlaylistStore.GetValue("Name", 0, id), "");
}

TEST_F(PlaylistTest, WhatIsDamagedIsLeftOutAndWhatIsTooLongIsRefused) {
    write("playlist.ini",
          "[AAAAAA]\r\nName=One\r\nList=:x>Morning:0>Morning:200>Ads:7\r\n[BBBBBB]\r\nList=0>Ads\r\n");
    LoadLockedFiles();
    EXPECT_EQ(LockedFiles, std::vector<std::string>{"0>Morning"});
    Playlist playlist = ReadPlaylist("AAAAAA");
    for (int i = 0; i < 96; ++i) playlist.items.push_back({i, "A palette of a long name"});
    EXPECT_FALSE(KeepPlaylist(playlist));
    EXPECT_EQ(PlaylistStore.GetValue("Name", 0, "AAAAAA"), "One");
}

}  // namespace
}  // namespace zv::test
