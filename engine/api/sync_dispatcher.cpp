#include "engine/api/sync_dispatcher.h"

#include <chrono>
#include <utility>

#include "engine/realtime/thread_tags.h"

namespace zv::engine {
namespace {
constexpr auto kPoll = std::chrono::milliseconds(2);
constexpr auto kIdlePoll = std::chrono::milliseconds(100);
}  // namespace

void SyncDispatcher::start(bool (*drain)(), bool polls) {
    drain_ = drain;
    polls_ = polls;
    stopping_ = false;
    thread_ = std::thread([this] { run(); });
}

void SyncDispatcher::stop() {
    if (!thread_.joinable()) return;
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

void SyncDispatcher::settle() {
    if (!thread_.joinable() || isThisThread()) return;
    std::unique_lock lock(mutex_);
    const std::uint64_t mine = ++asked_;
    changed_.notify_all();
    changed_.wait(lock, [&] { return done_ >= mine; });
}

void SyncDispatcher::watch() {
    {
        const std::lock_guard lock(mutex_);
        if (watching_) return;
        watching_ = true;
    }
    changed_.notify_all();
}

void SyncDispatcher::run() {
    const ThreadSection dispatcher(ThreadKind::Sync);
    std::unique_lock lock(mutex_);
    while (!stopping_) {
        const auto due = [this] { return stopping_ || asked_ != done_; };
        if (polls_) {
            const bool watching = std::exchange(watching_, false);
            changed_.wait_for(lock, watching ? kPoll : kIdlePoll,
                              [&] { return due() || (!watching && watching_); });
        } else {
            changed_.wait(lock, due);
        }
        const std::uint64_t upTo = asked_;
        lock.unlock();
        const bool more = drain_();
        lock.lock();
        watching_ |= more;
        done_ = upTo;
        changed_.notify_all();
    }
    done_ = asked_;
    changed_.notify_all();
}

}  // namespace zv::engine
