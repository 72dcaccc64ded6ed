#include "ui/windows/report_window.h"

#include <string>

#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/upcalls.h"
#include "ui/records/main_window.h"
#include "ui/windows/form_window.h"

namespace zv {
namespace {

constexpr int kWidth = 640, kReportHeight = 150, kTextHeight = 72;  // pixels

void hide() { frmReportError().form.close(); }

void show(const std::string& title, const std::string& text) {
    ReportWindow& report = frmReportError();
    report.form.window.caption = title;
    report.txtReport.caption = text;
    report.form.open(&report.txtDescription);
    SelectAllText(report.txtDescription);
}

/// Ends without a question, as after too many errors.
void endProgram() {
    hide();
    if (frmMain().window.onClose) frmMain().window.onClose();
}

}  // namespace

ReportWindow::ReportWindow() {
    // Sending and the support site come with the online services; the report is on the clipboard meanwhile.
    btSend.enabled = false;
    btGoForum.enabled = false;
    lblAccountReminder.visible = false;
    lblNotification.visible = false;
    form.describe(
        {.header = {.title = lblFuse},
         .blocks =
             {{{.rows = {{.cells = {{&txtReport, {}, kRestOfRow}}, .height = kReportHeight, .grows = true},
                         {.label = "ErrorDescription",
                          .cells = {{&txtDescription, {}, kRestOfRow}},
                          .height = kTextHeight},
                         {.label = "ErrorYourEmail", .cells = {{&txtEmail, "ErrorEmail", kRestOfRow}}},
                         {.cells = {{&lblAccountReminder, {}, kRestOfRow}}},
                         {.cells = {{&lblNotification, {}, kRestOfRow}}}}}}},
         .keysLeft = {{.control = &btKill, .role = KeyRole::destroy}},
         .keys = {{.control = &btGoForum},
                  {.control = &btSend},
                  {.control = &btCancel, .role = KeyRole::accept}},
         .width = kWidth});
    btCancel.onClick = [] { guarded("frmReportError.btCancel_Click", hide); };
    btKill.onClick = [] { guarded("frmReportError.btKill_Click", endProgram); };
}

ReportWindow& frmReportError() {
    static ReportWindow form;
    return form;
}

void FillReportUpcalls() {
    startupUpcalls.reportWindowOpen = [] { return frmReportError().form.isOpen(); };
    startupUpcalls.showReportWindow = show;
    startupUpcalls.unloadOtherWindows = CloseForms;
    startupUpcalls.endProgram = endProgram;
}

}  // namespace zv
