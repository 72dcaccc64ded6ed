// The event loop and the one system timer behind all timer records.
#include <QApplication>
#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <limits>

#include "platform/clock.h"
#include "platform/desktop.h"
#include "platform/qt/desktop/session_end.h"
#include "platform/qt/view/shell.h"
#include "platform/timers.h"

namespace zv {
namespace {

/// Timers that are due so soon after another one fire with it: an idle program wakes up half as often.
constexpr std::int64_t together = 4;  // ms

/// One precise single shot, set anew to the next due time of any timer record.
class TimerDriver final : public QObject {
  public:
    explicit TimerDriver(QObject* parent) : QObject(parent) {
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.setSingleShot(true);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { fire(); });
        onTimersChanged([this] { arm(); });
        arm();
    }
    ~TimerDriver() override { onTimersChanged({}); }

  private:
    void fire() {
        fireDueTimers(monotonicMs() + together);
        shell::flushChanged();
        arm();
    }

    void arm() {
        const auto due = nextTimerDue();
        if (!due) {
            timer_.stop();
            return;
        }
        const std::int64_t wait =
            std::clamp<std::int64_t>(*due - monotonicMs(), 0, std::numeric_limits<int>::max());
        timer_.start(static_cast<int>(wait));
    }

    QTimer timer_;
};

int exitStatus = 0;
bool quitAsked = false;

/// Made by the first turn of the events, gone with the application object.
void driveTimers() {
    static QPointer<TimerDriver> driver;
    if (!driver && QCoreApplication::instance() != nullptr)
        driver = new TimerDriver(QCoreApplication::instance());
}

}  // namespace

void processEvents() {
    driveTimers();
    shell::flushChanged();
    QCoreApplication::processEvents();
    shell::flushChanged();
}

void waitUntil(const std::function<bool()>& over) {
    driveTimers();
    while (!over() && !quitAsked) {
        shell::flushChanged();
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    shell::flushChanged();
}

int runEventLoop() {
    driveTimers();
    watchSessionEnd();
    // A quit during start-up, before the loop runs, counts.
    if (!quitAsked) QCoreApplication::exec();
    quitAsked = false;
    return exitStatus;
}

void quit(int status) {
    exitStatus = status;
    quitAsked = true;
    QCoreApplication::exit(status);
}

bool screenAvailable() {
    const bool served = qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
    return served || qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
}

}  // namespace zv
