/// The window of earlier states (ui/edit/history.h fills and answers it). [control]
#pragma once

#include <functional>

#include "platform/controls.h"
#include "ui/windows/form_window.h"

namespace zv {

struct HistoryWindow {
    FormWindow form{"frmHistory", "hsTitle"};
    Control& lblLine = form.control("lblHistoryLine", ControlKind::label, "hsLine");
    Control& lstHistory = form.control("lstHistory", ControlKind::listBox);
    Control& lblDifference = form.control("lblHistoryDifference", ControlKind::label);
    Control& btBack = form.control("btHistoryBack", ControlKind::button, "hsbtBack");
    Control& btClose = form.control("btHistoryClose", ControlKind::button, "hsbtClose");

    std::function<void()> onChosen;  ///< another row is selected
    std::function<void()> onBack;    ///< the selected state is wanted

    HistoryWindow();
};

HistoryWindow& frmHistory();

}  // namespace zv
