/// frmPlaylistSelector and frmPlaylist: which playlist, and what stands in it. ui/edit/playlists.h fills and answers
/// them. [control]
#pragma once

#include "platform/timers.h"
#include "ui/windows/form_window.h"

namespace zv {

struct PlaylistSelector {
    PlaylistSelector();

    FormWindow form{"frmPlaylistSelector", "plSelectTitle"};
    Control& lstPL = form.control("lstPL", ControlKind::listBox);
    Control& lstPLRef =
        form.control("lstPLRef", ControlKind::listBox);  ///< sections, at the indices of lstPL; hidden
    Control& btNew = form.control("btNew", ControlKind::button, "plbtNew");
    Control& btCancel = form.control("btCancel", ControlKind::button, "plbtCancel");
    Control& btOpen = form.control("btOpen", ControlKind::button, "plbtOpen");
};

struct PlaylistWindow {
    PlaylistWindow();

    FormWindow form{"frmPlaylist"};  ///< titled by what is done
    Control& txtPL = form.control("txtPL", ControlKind::textBox);
    Control& ckAutoMix = form.control("ckAutoMix", ControlKind::checkBox, "plckAutoMix");
    Control& lstPlaylist = form.control("lstPlaylist", ControlKind::listBox);
    Control& btAdd = form.control("btAdd", ControlKind::button, "plbtAdd");
    Control& btRemove = form.control("btRemove", ControlKind::button, "plbtRemove");
    Control& btOK = form.control("btOK", ControlKind::button, "plbtOK");
    Control& btCancel = form.control("btCancel", ControlKind::button, "plbtCancel");
    Timer TimerBlink{"TimerBlink", 150, {}};  ///< a name is missing
};

PlaylistSelector& frmPlaylistSelector();
PlaylistWindow& frmPlaylist();

}  // namespace zv
