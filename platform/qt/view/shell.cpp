#include "platform/qt/view/shell.h"

#include <QApplication>
#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <memory>

#include "platform/desktop.h"
#include "platform/qt/view/view.h"
#include "platform/qt/view/windows.h"

namespace zv::shell {
namespace {

std::unique_ptr<QApplication>& application() {
    static auto* app = new std::unique_ptr<QApplication>;
    return *app;
}

/// Takes the one queued call of a turn of the event loop.
class FlushTarget final : public QObject {
  public:
    static QEvent::Type flushEvent() {
        static const int type = QEvent::registerEventType();
        return static_cast<QEvent::Type>(type);
    }
    bool event(QEvent* e) override {
        if (e->type() != flushEvent()) return QObject::event(e);
        flushChanged();
        return true;
    }
};

QPointer<FlushTarget>& flushTarget() {
    static auto* target = new QPointer<FlushTarget>;
    return *target;
}

QtMessageHandler nextHandler = nullptr;

/// Drops the off-screen platform's own messages at the start; all others are passed on.
void tellAllButTheUsual(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    const bool usual = text.startsWith(QLatin1String("This plugin does not support")) ||
                       text.contains(QLatin1String("XDG_RUNTIME_DIR not set"));
    if (!usual && nextHandler != nullptr) nextHandler(type, context, text);
}

}  // namespace

void startQt(int& argc, char** argv, bool offscreen) {
    if (application()) return;
    if (offscreen) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("QT_SCALE_FACTOR",
                qEnvironmentVariableIsSet("ZENTROVA_SCALE") ? qgetenv("ZENTROVA_SCALE") : "1");
        qputenv("QT_FONT_DPI", "96");
        if (nextHandler == nullptr) nextHandler = qInstallMessageHandler(tellAllButTheUsual);
    }
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    application() = std::make_unique<QApplication>(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Zentrova"));
    QApplication::setQuitOnLastWindowClosed(false);
    installStyle();
    installAccessibility();
    installGate();
    windowUpcalls = {windowChanged, formChanged, advanceViews};
    flushTarget() = new FlushTarget;
    onFirstChange([] {
        if (flushTarget()) QCoreApplication::postEvent(flushTarget(), new QEvent(FlushTarget::flushEvent()));
    });
}

void endQt() {
    onFirstChange({});
    dropAllWindows();
    delete flushTarget();
    application().reset();
}

namespace {

void gatherClipped(const Control& from, std::string& names) {
    for (const Control* record : from.children()) {
        const RecordView* view = viewOf(*record);
        if (view == nullptr || !view->widget.isVisible()) continue;
        if (view->clipped()) {
            names += (names.empty() ? "" : " ") + record->name;
            if (record->index >= 0) names += "(" + std::to_string(record->index) + ")";
        }
        gatherClipped(*record, names);
    }
}

}  // namespace

std::string clippedTexts(const Control& window) {
    flushChanged();
    deliverEvents();
    std::string names;
    gatherClipped(window, names);
    return names;
}

bool isShown(const Control& control) {
    const Control* c = &control;
    for (; c->parent != nullptr; c = c->parent) {
        if (!c->visible()) return false;
    }
    const RecordView* view = viewOf(*c);
    return view != nullptr && view->widget.isVisible();
}

}  // namespace zv::shell
