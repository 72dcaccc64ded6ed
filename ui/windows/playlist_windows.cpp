#include "ui/windows/playlist_windows.h"

namespace zv {

namespace {

constexpr int kNarrow = 420, kWidth = 600, kListHeight = 260;  // pixels

}  // namespace

PlaylistSelector::PlaylistSelector() {
    lstPLRef.visible = false;
    form.describe({.blocks = {{{.rows = {{.cells = {{&lstPL, "plSelectTip", kRestOfRow}},
                                          .height = kListHeight,
                                          .grows = true}}}}},
                   .keysLeft = {{.control = &btNew, .tip = "plbtNewTip"}},
                   .keys = {{.control = &btCancel, .tip = "plbtCancelTip", .role = KeyRole::cancel},
                            {.control = &btOpen, .tip = "plbtOpenTip", .role = KeyRole::accept}},
                   .width = kNarrow,
                   .modal = true});
}

PlaylistWindow::PlaylistWindow() {
    form.describe(
        {.blocks = {{{.rows = {{.label = "plName",
                                .cells = {{&txtPL, "plNameTip", kRestOfRow},
                                          {&ckAutoMix, "plckAutoMixTip"}}}}}},
                    {{.title = "plItems",
                      .rows = {{.cells = {{&lstPlaylist, "plItemsTip", kRestOfRow}},
                                .height = kListHeight,
                                .grows = true},
                               {.cells = {{&btAdd, "plbtAddTip"}, {&btRemove, "plbtRemoveTip"}}}}}}},
         .keys = {{.control = &btCancel, .tip = "plbtCancelTip", .role = KeyRole::cancel},
                  {.control = &btOK, .tip = "plbtOKTip", .role = KeyRole::accept}},
         .width = kWidth,
         .modal = true});
}

PlaylistSelector& frmPlaylistSelector() {
    static PlaylistSelector window;
    return window;
}

PlaylistWindow& frmPlaylist() {
    static PlaylistWindow window;
    return window;
}

}  // namespace zv
