#include "ui/windows/announcer_window.h"

namespace zv {

AnnouncerWindow::AnnouncerWindow() {
    constexpr int kWidth = 520;  // pixels
    form.describe(
        {.blocks =
             {{{.rows = {{.label = "taSound",
                          .cells = {{.control = &btSound, .tip = "taSoundTip", .width = kRestOfRow}}}}}}},
         .note = "sMIDIActsAtOnce",
         .keys = {{.control = &btOK, .tip = "sMIDIOKTip", .role = KeyRole::accept}},
         .width = kWidth});
}

AnnouncerWindow& frmSettAnnouncer() {
    static AnnouncerWindow window;
    return window;
}

}  // namespace zv
