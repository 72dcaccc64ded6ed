// The signals that ask the program to end, handed to the event loop.
#include <sys/eventfd.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <csignal>
#include <cstdint>
#include <utility>

#include "platform/wake.h"

namespace zv {
namespace {

int descriptor = -1;

/// Only what is safe in a signal handler.
void note(int) {
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t bytes = write(descriptor, &one, sizeof one);
}

}  // namespace

void onEndAsked(std::function<void()> handler) {
    if (descriptor >= 0) return;
    descriptor = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (descriptor < 0) return;
    auto* notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [handler = std::move(handler)] {
        std::uint64_t count = 0;
        [[maybe_unused]] const ssize_t bytes = read(descriptor, &count, sizeof count);
        handler();
    });
    struct sigaction action = {};
    action.sa_handler = note;
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        struct sigaction before = {};
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);
    }
}

}  // namespace zv
