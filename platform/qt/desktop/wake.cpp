// platform/wake.h: a descriptor that any thread writes and the event loop watches.
#include "platform/wake.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <atomic>
#include <cstdint>
#include <utility>

#include "platform/qt/view/shell.h"

namespace zv {
namespace {

std::atomic<int> descriptor{-1};
std::atomic<bool> woken{false};  ///< the descriptor is written once until the loop has seen it

std::function<void()>& handler() {
    static std::function<void()> h;
    return h;
}

void wake() {
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t bytes = read(descriptor.load(), &count, sizeof count);
    woken.exchange(false);  // sees what was queued before the writer found it set
    if (handler()) handler()();
    shell::flushChanged();
}

}  // namespace

void onWake(std::function<void()> h) {
    handler() = std::move(h);
    if (descriptor.load() >= 0 || QCoreApplication::instance() == nullptr) return;
    descriptor = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (descriptor.load() < 0) return;
    auto* notifier =
        new QSocketNotifier(descriptor.load(), QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [] { wake(); });
}

void wakeInterface() noexcept {
    const int file = descriptor.load();
    if (file < 0 || woken.exchange(true)) return;
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t bytes = write(file, &one, sizeof one);
}

}  // namespace zv
