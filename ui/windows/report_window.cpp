#include "ui/windows/report_window.h"

#include <string>

#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings.h"
#include "startup/upcalls.h"
#include "ui/records/main_window.h"
#include "ui/windows/console_window.h"
#include "ui/windows/form_window.h"

namespace zv {
namespace {

constexpr int kWidth = 9000, kHeight = 6600;  // twips
constexpr int kMargin = 180, kLine = 300, kKeyHeight = 420;

bool reportOpen = false;

void place(Control& control, int left, int top, int width, int height) {
    control.left = left;
    control.top = top;
    control.width = width;
    control.height = height;
}

void hide() {
    reportOpen = false;
    hideWindow(frmReportError().window);
}

void fillTexts(ReportWindow& form) {
    form.lblFuse.caption = Ln("ErrorFuse");
    form.lblDescription.caption = Ln("ErrorDescription");
    form.lblYourEmail.caption = Ln("ErrorYourEmail");
    form.txtEmail.toolTip = Ln("ErrorEmail");
    form.lblAccountReminder.caption = Ln("ErrorAccountReminder");
    form.lblNotification.caption = Ln("ErrorNotification");
    form.btCancel.caption = Ln("ErrorCancel");
    form.btKill.caption = Ln("ErrorKill");
    form.btSend.caption = Ln("ErrorSend");
    form.btGoForum.caption = Ln("ErrorGoForum");
}

void show(const std::string& title, const std::string& text) {
    ReportWindow& form = frmReportError();
    fillTexts(form);
    form.window.caption = title;
    form.txtReport.caption = text;
    const Control& over = frmMain().window;
    form.window.left = over.left + (over.width - kWidth) / 2;
    form.window.top = over.top + (over.height - kHeight) / 2;
    reportOpen = true;
    showWindow(form.window);
    setAlwaysOnTop(form.window, settings.AlwaysOnTop == 1);
    setFocus(form.txtDescription);
    SelectAllText(form.txtDescription);
}

/// Ends without a question, as after too many errors.
void endProgram() {
    hide();
    if (frmMain().window.onClose) frmMain().window.onClose();
}

}  // namespace

ReportWindow::ReportWindow()
    : window("frmReportError", ControlKind::window),
      lblFuse("lblFuse", ControlKind::label, &window),
      txtReport("txtReport", ControlKind::textBox, &window),
      lblDescription("lblDescription", ControlKind::label, &window),
      txtDescription("txtDescription", ControlKind::textBox, &window),
      lblYourEmail("lblYourEmail", ControlKind::label, &window),
      txtEmail("txtEmail", ControlKind::textBox, &window),
      lblAccountReminder("lblAccountReminder", ControlKind::label, &window),
      lblNotification("lblNotification", ControlKind::label, &window),
      btCancel("btCancel", ControlKind::button, &window),
      btKill("btKill", ControlKind::button, &window),
      btSend("btSend", ControlKind::button, &window),
      btGoForum("btGoForum", ControlKind::button, &window) {
    window.width = kWidth;
    window.height = kHeight;
    lblFuse.fontBold = true;
    // Sending and the support site come with the online services; the report is on the clipboard meanwhile.
    btSend.enabled = false;
    btGoForum.enabled = false;
    lblAccountReminder.visible = false;
    lblNotification.visible = false;

    const int inner = kWidth - 2 * kMargin;
    int top = kMargin;
    const auto row = [&](Control& control, int height) {
        place(control, kMargin, top, inner, height);
        top += height + kMargin / 2;
    };
    row(lblFuse, kLine);
    row(txtReport, 2400);
    row(lblDescription, kLine);
    row(txtDescription, 1200);
    row(lblYourEmail, kLine);
    row(txtEmail, kLine + 60);
    Control* keys[] = {&btCancel, &btKill, &btGoForum, &btSend};
    const int key = (inner - 3 * kMargin) / 4 / kTwipsPerPixel * kTwipsPerPixel;
    for (int i = 0; i < 4; ++i)
        place(*keys[i], kMargin + i * (key + kMargin), kHeight - kMargin - kKeyHeight, key, kKeyHeight);

    btCancel.onClick = [] { guarded("frmReportError.btCancel_Click", hide); };
    btKill.onClick = [] { guarded("frmReportError.btKill_Click", endProgram); };
    window.onClose = [] { reportOpen = false; };
}

ReportWindow& frmReportError() {
    static ReportWindow form;
    return form;
}

void FillReportUpcalls() {
    startupUpcalls.reportWindowOpen = [] { return reportOpen; };
    startupUpcalls.showReportWindow = show;
    startupUpcalls.unloadOtherWindows = [] {
        hide();
        CloseConsole();
        CloseForms();
    };
    startupUpcalls.endProgram = endProgram;
}

}  // namespace zv
