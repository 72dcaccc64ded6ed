// Message boxes, file dialogs and menus on the desktop, in the program's own look.
#include <QApplication>
#include <QCursor>
#include <QFileDialog>
#include <QKeyEvent>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>
#include <QPixmap>
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

/// A disc with the kind's sign, in the program's own symbols.
QPixmap iconOf(BoxKind kind, double ratio) {
    constexpr int kSize = 40;
    struct Sign {
        BoxKind kind;
        const char* symbol;
        QColor colour;
    };
    const QColor accent = shell::programTheme().accent;
    const Sign signs[]{{BoxKind::information, "i", accent},
                       {BoxKind::warning, "!", QColor(0xE0, 0x8A, 0x1E)},
                       {BoxKind::stop, "x", QColor(0xB0, 0x24, 0x1E)},
                       {BoxKind::question, nullptr, accent}};
    QPixmap pixmap(QSize(kSize, kSize) * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    for (const Sign& sign : signs) {
        if (sign.kind != kind) continue;
        p.setPen(Qt::NoPen);
        p.setBrush(sign.colour);
        p.drawEllipse(0, 0, kSize, kSize);
        p.setPen(Qt::white);
        p.setFont(sign.symbol != nullptr ? shell::symbolFont(24) : shell::textFont(24, QFont::Bold));
        p.drawText(QRect(0, 0, kSize, kSize), Qt::AlignCenter,
                   QString::fromLatin1(sign.symbol != nullptr ? sign.symbol : "?"));
    }
    return pixmap;
}

/// Names of file patterns as the toolkit wants them.
QString filterOf(const std::string& filter) {
    if (filter.empty()) return {};
    // On systems that tell letters' cases apart, a file may have the extension in either.
    QStringList patterns;
    const QString whole = textOf(filter);
    const QString name = whole.contains(QLatin1Char('|')) ? whole.section(QLatin1Char('|'), 0, 0) : whole;
    for (const QString& pattern :
         whole.section(QLatin1Char('|'), -1).split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        patterns << pattern;
        if (pattern.toUpper() != pattern) patterns << pattern.toUpper();
    }
    return QStringLiteral("%1 (%2)").arg(name, patterns.join(QLatin1Char(' ')));
}

/// Escape stops the sound, whatever else it closes.
class EscapeStops final : public QObject {
  public:
    explicit EscapeStops(QObject& watched) { watched.installEventFilter(this); }

    bool eventFilter(QObject*, QEvent* e) override {
        if (e->type() != QEvent::KeyPress || static_cast<QKeyEvent*>(e)->key() != Qt::Key_Escape)
            return false;
        const Control* main = findControl("frmMain");
        if (main != nullptr && main->onKeyDown) {
            KeyEvent escape{Key::escape};
            shell::call([&] { main->onKeyDown(escape); });
        }
        return false;
    }
};

}  // namespace

BoxAnswer messageBox(const std::string& text, const std::string& title, BoxKind kind, BoxButtons buttons) {
    shell::flushChanged();
    QMessageBox box(front());
    if (front() != nullptr) box.setPalette(front()->palette());
    box.setWindowTitle(textOf(title));
    box.setText(textOf(text));
    box.setTextFormat(Qt::PlainText);
    box.setIconPixmap(iconOf(kind, box.devicePixelRatioF()));
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
    const BoxWords words = boxWords ? boxWords() : BoxWords{};
    const std::pair<QMessageBox::StandardButton, const std::string&> captions[]{
        {QMessageBox::Ok, words.ok},
        {QMessageBox::Cancel, words.cancel},
        {QMessageBox::Yes, words.yes},
        {QMessageBox::No, words.no}};
    for (const auto& [which, word] : captions) {
        if (QAbstractButton* button = box.button(which); button != nullptr && !word.empty())
            button->setText(textOf(word));
    }
    const EscapeStops stops(box);
    shell::noteOpened();
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
    shell::noteOpened();
    return utf8(QFileDialog::getOpenFileName(front(), textOf(title), textOf(folder), filterOf(filter)));
}

std::string saveFileDialog(const std::string& title, const std::string& folder, const std::string& name) {
    shell::noteOpened();
    const QString start = folder.empty() ? textOf(name) : textOf(folder) + QLatin1Char('/') + textOf(name);
    return utf8(QFileDialog::getSaveFileName(front(), textOf(title), start));
}

std::string folderDialog(const std::string& title, const std::string& folder) {
    shell::noteOpened();
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
    const EscapeStops stops(menu);
    shell::noteOpened();
    const QWidget* at = shell::menuAskedFor;
    const QAction* chosen = menu.exec(at != nullptr ? at->mapToGlobal(at->rect().center()) : QCursor::pos());
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
