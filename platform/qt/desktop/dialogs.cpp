// File dialogs, menus and the message boxes of the start on the desktop, in the program's own look.
#include <QApplication>
#include <QCursor>
#include <QEventLoop>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLibraryInfo>
#include <QMenu>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QPointer>
#include <QPushButton>
#include <QStringList>
#include <QTranslator>
#include <utility>

#include "platform/desktop.h"
#include "platform/dialog_language.h"
#include "platform/qt/view/keys.h"
#include "platform/qt/view/shell.h"
#include "platform/qt/view/theme.h"
#include "platform/qt/view/view.h"
#include "platform/waiting.h"

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

/// The toolkit's words in the program's language while one lives: from beside the program, else from the system.
class ToolkitWords final {
  public:
    ToolkitWords() {
        const QString language = dialogLanguage ? textOf(dialogLanguage()) : QString();
        if (language.isEmpty()) return;
        const QString name = QStringLiteral("qtbase_") + language;
        loaded_ =
            words_.load(name, QCoreApplication::applicationDirPath() + QStringLiteral("/translations")) ||
            words_.load(name, QLibraryInfo::path(QLibraryInfo::TranslationsPath));
        if (loaded_) QCoreApplication::installTranslator(&words_);
    }
    ~ToolkitWords() {
        if (loaded_) QCoreApplication::removeTranslator(&words_);
    }
    ToolkitWords(const ToolkitWords&) = delete;
    ToolkitWords& operator=(const ToolkitWords&) = delete;

  private:
    QTranslator words_;
    bool loaded_ = false;
};

/// Escape stops the sound, whatever else it closes.
class EscapeStops final : public QObject {
  public:
    explicit EscapeStops(QObject& watched) { watched.installEventFilter(this); }

    bool eventFilter(QObject*, QEvent* e) override {
        if (e->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(e)->key() == Qt::Key_Escape)
            shell::stopSound();
        return false;
    }
};

/// A press beside an open menu closes it, and counts where presses always do: on STOP and on a jingle.
class PressBeside final : public QObject {
  public:
    explicit PressBeside(QMenu& menu) : menu_(menu) { menu.installEventFilter(this); }

    bool eventFilter(QObject*, QEvent* e) override {
        if (e->type() != QEvent::MouseButtonPress) return false;
        const auto& mouse = *static_cast<QMouseEvent*>(e);
        if (menu_.rect().contains(mouse.position().toPoint())) return false;
        QWidget* under = QApplication::widgetAt(mouse.globalPosition().toPoint());
        const Control* record = shell::recordOf(under);
        if (record == nullptr || !worksMeanwhile ||
            !worksMeanwhile(*record, {shell::buttonOf(mouse.button()), shell::shiftOf(mouse.modifiers())}))
            return false;
        menu_.setAttribute(Qt::WA_NoMouseReplay);
        under_ = under;
        at_ = mouse.globalPosition();
        return false;
    }
    /// Once the menu is closed. The release comes by itself.
    void deliver() {
        if (!under_) return;
        QMouseEvent press(QEvent::MouseButtonPress, under_->mapFromGlobal(at_), at_, Qt::LeftButton,
                          Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(under_, &press);
    }

  private:
    QMenu& menu_;
    QPointer<QWidget> under_;
    QPointF at_;
};

BoxWords wordsOf(const BoxWords& own) {
    BoxWords words = boxWords ? boxWords() : BoxWords{};
    words.destroys = own.destroys;
    for (const auto word : {&BoxWords::ok, &BoxWords::cancel, &BoxWords::yes, &BoxWords::no}) {
        if (!(own.*word).empty()) words.*word = own.*word;
    }
    return words;
}

/// A file dialog in a window of its own that leaves the main window's sound alone: not modal, over the grid.
std::string chosenIn(QFileDialog& dialog) {
    shell::flushChanged();
    QEventLoop loop;
    dialog.setOption(QFileDialog::DontUseNativeDialog);  // the system's own would stop all else
    dialog.setModal(false);
    dialog.setPalette(shell::paletteOf(shell::programTheme()));
    const EscapeStops stops(dialog);
    QPointer<QWidget> before = QApplication::focusWidget();
    const Waiting waiting(Waiting::For::answer, nullptr, [&dialog] { dialog.reject(); });
    QObject::connect(&dialog, &QDialog::finished, &loop, &QEventLoop::quit);
    shell::noteOpened();
    if (placeOverGrid) {
        const auto [left, top] = placeOverGrid(dialog.sizeHint().width(), dialog.sizeHint().height());
        dialog.move(left, top);
    }
    dialog.show();
    loop.exec();
    if (before) before->setFocus(Qt::OtherFocusReason);
    const QStringList files = dialog.selectedFiles();
    return dialog.result() == QDialog::Accepted && !files.empty() ? utf8(files.front()) : std::string();
}

}  // namespace

BoxAnswer messageBox(const std::string& text, const std::string& title, BoxKind kind, BoxButtons buttons,
                     const BoxWords& own) {
    const BoxWords words = wordsOf(own);
    if (askOnCard) {
        if (const auto answer = askOnCard({text, title, kind, buttons, words}, {})) return *answer;
    }
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
    const ToolkitWords words;
    QFileDialog dialog(front(), textOf(title), textOf(folder), filterOf(filter));
    dialog.setFileMode(QFileDialog::ExistingFile);
    return chosenIn(dialog);
}

std::string folderDialog(const std::string& title, const std::string& folder) {
    const ToolkitWords words;
    QFileDialog dialog(front(), textOf(title), textOf(folder));
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    return chosenIn(dialog);
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
    PressBeside beside(menu);
    shell::noteOpened();
    const QWidget* at = shell::menuAskedFor;
    const QAction* chosen = menu.exec(at != nullptr ? at->mapToGlobal(at->rect().center()) : QCursor::pos());
    if (chosen == nullptr) return beside.deliver();
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
