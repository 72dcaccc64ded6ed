/// The window that shows a report of an unexpected error while the show goes on. [control]
#pragma once

#include <string>

#include "platform/controls.h"

namespace zv {

struct ReportWindow {
    ReportWindow();

    Control window;  ///< "frmReportError"
    Control lblFuse, txtReport, lblDescription, txtDescription, lblYourEmail, txtEmail;
    Control lblAccountReminder, lblNotification;
    Control btCancel, btKill, btSend, btGoForum;
};

ReportWindow& frmReportError();

/// Fills startupUpcalls' entries of the report: open, show, end of the program.
void FillReportUpcalls();

}  // namespace zv
