#include "ui/windows/level_window.h"

namespace zv {

LevelWindow::LevelWindow() {
    constexpr int kWidth = 480;  // pixels
    form.alwaysCentred = true;
    form.describe({.blocks = {{{.rows = {{.cells = {{.control = &lblNote, .width = kRestOfRow}}},
                                         {.cells = {{.control = &barDone, .width = kRestOfRow}}}}}}},
                   .keys = {{.control = &btCancel, .tip = "lvCancelTip", .role = KeyRole::cancel}},
                   .width = kWidth});
}

LevelWindow& frmLoudness() {
    static LevelWindow window;
    return window;
}

}  // namespace zv
