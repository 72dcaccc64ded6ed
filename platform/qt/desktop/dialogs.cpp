// Message boxes, file dialogs and menus on the desktop, in the program's own look.
#include <QApplication>
#include <QCursor>
#include <QFileDialog>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QStringList>
#include <utility>

#include "platform/desktop.h"
#include "platform/qt/view/shell.h"
#include "platform/qt/view/theme.h"
#include "platform/qt/view/view.h"

namespace zv {
namespace {

using shell::textOf;
using shell::utf8;

QWidget* front() { return QApplication::activeWindow(); }

/// Names of file patterns as the toolkit wants them.
QString filterOf(const std::string& filter) {
    if (filter.empty()) return {};
    // On systems that tell letters' cases apart, a file may have the extension in either.
    QStringList patterns;
    for (const QString& pattern : textOf(filter).split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        patterns << pattern;
        if (pattern.toUpper() != pattern) patterns << pattern.toUpper();
    }
    return QStringLiteral("%1 (%2)").arg(textOf(filter), patterns.join(QLatin1Char(' ')));
}

}  // namespace

BoxAnswer messageBox(const std::string& text, const std::string& title, BoxKind kind, BoxButtons buttons) {
    shell::flushChanged();
    QMessageBox box(front());
    if (front() != nullptr) box.setPalette(front()->palette());
    box.setWindowTitle(textOf(title));
    box.setText(textOf(text));
    box.setTextFormat(Qt::PlainText);
    static constexpr std::pair<BoxKind, QMessageBox::Icon> kIcons[]{
        {BoxKind::information, QMessageBox::Information},
        {BoxKind::warning, QMessageBox::Warning},
        {BoxKind::stop, QMessageBox::Critical},
        {BoxKind::question, QMessageBox::Question}};
    for (const auto& [ours, theirs] : kIcons) {
        if (ours == kind) box.setIcon(theirs);
    }
    switch (buttons) {
        case BoxButtons::ok:
            box.setStandardButtons(QMessageBox::Ok);
            break;
        case BoxButtons::okCancel:
            box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
            break;
        case BoxButtons::yesNo:
            box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
            box.setEscapeButton(QMessageBox::No);
            break;
    }
    switch (box.exec()) {
        case QMessageBox::Yes:
            return BoxAnswer::yes;
        case QMessageBox::No:
            return BoxAnswer::no;
        case QMessageBox::Cancel:
            return BoxAnswer::cancel;
        default:
            return BoxAnswer::ok;
    }
}

std::string openFileDialog(const std::string& title, const std::string& folder, const std::string& filter) {
    return utf8(QFileDialog::getOpenFileName(front(), textOf(title), textOf(folder), filterOf(filter)));
}

std::string saveFileDialog(const std::string& title, const std::string& folder, const std::string& name) {
    const QString start = folder.empty() ? textOf(name) : textOf(folder) + QLatin1Char('/') + textOf(name);
    return utf8(QFileDialog::getSaveFileName(front(), textOf(title), start));
}

std::string folderDialog(const std::string& title, const std::string& folder) {
    return utf8(QFileDialog::getExistingDirectory(front(), textOf(title), textOf(folder)));
}

void popupMenu(Control& window, const std::vector<MenuItem>& items) {
    shell::flushChanged();
    shell::RecordView* view = shell::viewOf(window);
    QMenu menu(view != nullptr ? &view->widget : front());
    menu.setPalette(shell::paletteOf(shell::themeFor(window)));
    for (const MenuItem& item : items) {
        if (item.caption == "-") {
            menu.addSeparator();
            continue;
        }
        QAction* action = menu.addAction(textOf(item.caption));
        action->setEnabled(item.enabled);
        action->setCheckable(item.ticked);
        action->setChecked(item.ticked);
        action->setObjectName(textOf(item.name));
    }
    const QAction* chosen = menu.exec(QCursor::pos());
    if (chosen == nullptr) return;
    for (const MenuItem& item : items) {
        // The menu is gone before its command runs: it may open another one, or a dialog.
        if (textOf(item.name) == chosen->objectName() && item.chosen) {
            const auto command = item.chosen;
            menu.close();
            shell::call(command);
            return;
        }
    }
}

}  // namespace zv
