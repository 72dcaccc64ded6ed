#include "ui/windows/history_window.h"

#include "startup/guard.h"

namespace zv {

namespace {

constexpr int kWidth = 640, kListHeight = 260, kDifferenceHeight = 72;  // pixels

}  // namespace

HistoryWindow::HistoryWindow() {
    form.describe(
        {.blocks = {{{.rows = {{.cells = {{&lblLine, {}, kRestOfRow}}},
                               {.cells = {{&lstHistory, "hsListTip", kRestOfRow}},
                                .height = kListHeight,
                                .grows = true},
                               {.cells = {{&lblDifference, {}, kRestOfRow}}, .height = kDifferenceHeight}}}}},
         .keys = {{.control = &btClose, .tip = "hsbtCloseTip", .role = KeyRole::cancel},
                  {.control = &btBack, .tip = "hsbtBackTip", .role = KeyRole::accept}},
         .width = kWidth});
    lstHistory.onChange = [this] {
        guarded("frmHistory.lstHistory_Change", [this] {
            if (onChosen) onChosen();
        });
    };
    btBack.onClick = [this] {
        guarded("frmHistory.btBack_Click", [this] {
            if (onBack) onBack();
        });
    };
    btClose.onClick = [this] { guarded("frmHistory.btClose_Click", [this] { form.close(); }); };
}

HistoryWindow& frmHistory() {
    static HistoryWindow window;
    return window;
}

}  // namespace zv
