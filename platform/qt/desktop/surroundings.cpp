// The rest of the desktop: keyboard state, clipboard, monitors, launching, the system's name and language.
#include <sys/resource.h>

#include <QApplication>
#include <QClipboard>
#include <QCursor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QLocale>
#include <QPointer>
#include <QProcess>
#include <QScreen>
#include <QSysInfo>
#include <QUrl>
#include <array>

#include "platform/desktop.h"
#include "platform/qt/view/keys.h"
#include "platform/qt/view/theme.h"
#include "platform/qt/view/view.h"

namespace zv {

using shell::textOf;
using shell::utf8;

namespace {

constexpr int kFileManagerMs = 5000;  ///< it may have to be started first

/// Notes whether anything came from which a modifier key may have changed: while the program is the active
/// one, its windows are told of every key, so that the display server need not be asked at each tick.
class KeyWatch : public QObject {
  public:
    explicit KeyWatch(QCoreApplication* program) : QObject(program) { program->installEventFilter(this); }

    bool eventFilter(QObject*, QEvent* e) override {
        switch (e->type()) {
            case QEvent::KeyPress:
            case QEvent::KeyRelease:
            case QEvent::ShortcutOverride:
            case QEvent::MouseButtonPress:
            case QEvent::MouseMove:
            case QEvent::HoverMove:
            case QEvent::FocusIn:
            case QEvent::FocusOut:
            case QEvent::WindowActivate:
            case QEvent::WindowDeactivate:
            case QEvent::ApplicationStateChange:
                stirred = true;
                break;
            default:
                break;
        }
        return false;
    }

    bool stirred = true;
    int held = 0;
};

}  // namespace

int modifierKeys() {
    static const QPointer<KeyWatch> watch = new KeyWatch(QCoreApplication::instance());
    if (!watch) return shell::shiftOf(QGuiApplication::queryKeyboardModifiers());
    if (watch->stirred || watch->held != 0 || QGuiApplication::applicationState() != Qt::ApplicationActive) {
        watch->stirred = false;
        watch->held = shell::shiftOf(QGuiApplication::queryKeyboardModifiers());
    }
    return watch->held;
}

bool keyHeld(int virtualKey) {
    const int held = modifierKeys();
    switch (virtualKey) {
        case static_cast<int>(Key::shift):
            return (held & kShiftMask) != 0;
        case static_cast<int>(Key::control):
            return (held & kCtrlMask) != 0;
        case static_cast<int>(Key::alt):
            return (held & kAltMask) != 0;
        case 1:
            return (QGuiApplication::mouseButtons() & Qt::LeftButton) != 0;  // the mouse's buttons have
        case 2:
            return (QGuiApplication::mouseButtons() & Qt::RightButton) != 0;  // key numbers too
        default:
            return shell::isKeyDown(static_cast<Key>(virtualKey));
    }
}

bool mouseOver(const Control& window) {
    const shell::RecordView* view = shell::viewOf(window);
    return view != nullptr && view->widget.isVisible() &&
           view->widget.frameGeometry().contains(QCursor::pos());
}

void setClipboard(const std::string& text) { QGuiApplication::clipboard()->setText(textOf(text)); }

std::vector<Monitor> monitors() {
    std::vector<Monitor> out;
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect r = screen->geometry();
        out.push_back({r.left(), r.top(), r.width(), r.height()});
    }
    return out;
}

void openDocument(const std::string& target) {
    const QString text = textOf(target);
    const QFileInfo file(text);
    QDesktopServices::openUrl(file.exists() ? QUrl::fromLocalFile(file.absoluteFilePath()) : QUrl(text));
}

void showInFolder(const std::string& file) {
    const QFileInfo shown(textOf(file));
    const QUrl folder = QUrl::fromLocalFile(shown.absolutePath());
    // Every desktop's file manager offers this on the session's bus; without one the folder is opened.
    QDBusMessage request =
        QDBusMessage::createMethodCall("org.freedesktop.FileManager1", "/org/freedesktop/FileManager1",
                                       "org.freedesktop.FileManager1", "ShowItems");
    request << QStringList{QUrl::fromLocalFile(shown.absoluteFilePath()).toString(QUrl::FullyEncoded)}
            << QString();
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!shown.exists() || !bus.isConnected()) {
        QDesktopServices::openUrl(folder);
        return;
    }
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(request, kFileManagerMs), qApp);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, qApp, [answer, folder] {
        if (answer->isError()) QDesktopServices::openUrl(folder);
        answer->deleteLater();
    });
}

void runMinimised(const std::string& command) {
    QStringList words = QProcess::splitCommand(textOf(command));
    if (words.isEmpty()) return;
    const QString program = words.takeFirst();
    QProcess::startDetached(program, words, QFileInfo(program).absolutePath());
}

bool setProcessPriority(int priorityClass) {
    // Priority classes in their published numbers, and what they are called where priorities are a scale.
    static constexpr std::array<std::pair<int, int>, 5> kNice{
        std::pair{32, 0}, std::pair{16384, 5}, std::pair{32768, -5}, std::pair{128, -10}, std::pair{64, 19}};
    for (const auto& [ours, nice] : kNice) {
        if (ours == priorityClass) return setpriority(PRIO_PROCESS, 0, nice) == 0;
    }
    return false;
}

std::string systemDescription() { return utf8(QSysInfo::prettyProductName()); }

bool systemIsFrench() { return QLocale::system().language() == QLocale::French; }

}  // namespace zv
