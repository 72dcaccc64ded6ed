/// The small window that asks for a file's new name. [control]
#pragma once

#include <functional>

#include "ui/windows/form_window.h"

namespace zv {

struct RenameWindow {
    RenameWindow();

    FormWindow form{"frmRenameFile", "mRFTitle"};
    Control& txtFilename = form.control("txtFilename", ControlKind::textBox);
    Control& lblNewFilename = form.control("lblNewFilename", ControlKind::label);
    Control& btOK = form.control("btOK", ControlKind::button, "rfbtOK");
    Control& btCancel = form.control("btCancel", ControlKind::button, "rfbtCancel");

    /// The text changed; OK or Enter; Cancel, Escape or the window's close.
    std::function<void()> onTyped, onAccepted, onCancelled;
};

RenameWindow& frmRenameFile();

}  // namespace zv
