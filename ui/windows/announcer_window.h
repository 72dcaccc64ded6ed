/// The settings of the time announcer: its sound file. What it does stands in ui/edit. [control]
#pragma once

#include "ui/windows/form_window.h"

namespace zv {

struct AnnouncerWindow {
    AnnouncerWindow();

    FormWindow form{"frmSett", "mTabCt1"};
    Control& btSound =
        form.control("btSound", ControlKind::button);  ///< the file; red when it cannot be played
    Control& btOK = form.control("btOK", ControlKind::button, "sbtOK");
};

AnnouncerWindow& frmSettAnnouncer();

}  // namespace zv
