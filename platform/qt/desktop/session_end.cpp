#include "platform/qt/desktop/session_end.h"

#include <QGuiApplication>
#include <QSessionManager>
#include <QSocketNotifier>

#ifndef _WIN32
#include <sys/eventfd.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#endif

#include "platform/desktop.h"
#include "platform/qt/view/shell.h"

namespace zv {
namespace {

void tell() {
    if (onSessionEnd) onSessionEnd();
    shell::flushChanged();
}

#ifndef _WIN32
int descriptor = -1;

/// A signal's handler may do next to nothing: it writes to a descriptor that the event loop watches.
void noteSignal(int) {
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t bytes = write(descriptor, &one, sizeof one);
}

void watchSignals() {
    if (descriptor >= 0) return;
    descriptor = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (descriptor < 0) return;
    auto* notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [] {
        std::uint64_t count = 0;
        [[maybe_unused]] const ssize_t bytes = read(descriptor, &count, sizeof count);
        tell();
    });
    struct sigaction action {};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) sigaction(signal, &action, nullptr);
}
#else
void watchSignals() {}
#endif

}  // namespace

void watchSessionEnd() {
    watchSignals();
    static bool watched = false;
    auto* program = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
    if (program == nullptr || watched) return;
    watched = true;
    // The session's manager waits for the direct call to return.
    QObject::connect(
        program, &QGuiApplication::commitDataRequest, program, [](QSessionManager&) { tell(); },
        Qt::DirectConnection);
}

}  // namespace zv
