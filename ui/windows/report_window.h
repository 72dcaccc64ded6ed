/// The window that shows a report of an unexpected error while the show goes on. [control]
#pragma once

#include "ui/windows/form_window.h"

namespace zv {

struct ReportWindow {
    ReportWindow();

    FormWindow form{"frmReportError"};
    Control& lblFuse = form.control("lblFuse", ControlKind::label, "ErrorFuse");
    Control& txtReport = form.control("txtReport", ControlKind::textBox);
    Control& txtDescription = form.control("txtDescription", ControlKind::textBox);
    Control& txtEmail = form.control("txtEmail", ControlKind::textBox);
    Control& lblAccountReminder =
        form.control("lblAccountReminder", ControlKind::label, "ErrorAccountReminder");
    Control& lblNotification = form.control("lblNotification", ControlKind::label, "ErrorNotification");
    Control& btCancel = form.control("btCancel", ControlKind::button, "ErrorCancel");
    Control& btKill = form.control("btKill", ControlKind::button, "ErrorKill");
    Control& btSend = form.control("btSend", ControlKind::button, "ErrorSend");
    Control& btGoForum = form.control("btGoForum", ControlKind::button, "ErrorGoForum");
};

ReportWindow& frmReportError();

/// Fills startupUpcalls' entries of the report: open, show, end of the program.
void FillReportUpcalls();

}  // namespace zv
