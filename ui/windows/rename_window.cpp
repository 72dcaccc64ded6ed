#include "ui/windows/rename_window.h"

#include "startup/guard.h"

namespace zv {

namespace {

constexpr int kWidth = 520;  // pixels

void answer(const char* procedure, const std::function<void()>& handler) {
    guarded(procedure, [&] {
        if (handler) handler();
    });
}

}  // namespace

RenameWindow::RenameWindow() {
    form.describe({.blocks = {{{.rows = {{.cells = {{&txtFilename, "mRFNameTip", kRestOfRow}}},
                                         {.label = "mRFFileWillBeRenamedAs",
                                          .cells = {{.control = &lblNewFilename, .width = kRestOfRow}}}}}}},
                   .keys = {{.control = &btCancel, .tip = "mRFCancelTip", .role = KeyRole::cancel},
                            {.control = &btOK, .tip = "mRFOKTip", .role = KeyRole::accept}},
                   .width = kWidth});
    txtFilename.onChange = [this] { answer("frmRenameFile.txtFilename_Change", onTyped); };
    btOK.onClick = [this] { answer("frmRenameFile.btOK_Click", onAccepted); };
    btCancel.onClick = [this] { answer("frmRenameFile.btCancel_Click", onCancelled); };
}

RenameWindow& frmRenameFile() {
    static RenameWindow window;
    return window;
}

}  // namespace zv
