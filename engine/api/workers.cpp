#include "engine/api/workers.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "engine/dsp/denormals.h"
#include "engine/realtime/thread_tags.h"

namespace zv::engine {
namespace {

constexpr std::size_t kMostThreads = 24;  ///< those that hang included
constexpr std::int64_t kHangsMs = 60;     ///< a thread that reads for so long is taken over from
constexpr auto kStopPatience = std::chrono::milliseconds(500);
constexpr auto kTick = std::chrono::milliseconds(32);      ///< while something sounds
constexpr auto kSoonTick = std::chrono::milliseconds(16);  ///< while a tempo channel is about to change
constexpr auto kWatchTick =
    std::chrono::milliseconds(25);  ///< while something sounds or was asked for: how often the watcher looks
constexpr std::size_t kMany = 16;   ///< stretched channels due at once: for more than one
constexpr auto kIdleTick = std::chrono::milliseconds(250);
constexpr int kSoon = 100;  ///< urgencies below belong to sounding channels

std::int64_t steadyMs() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

}  // namespace

void Workers::start() {
    const std::lock_guard lock(mutex_);
    stopping_ = false;
    for (const Thread** place : {&leader_, &helper_}) {
        addThread();
        *place = &threads_.back();
    }
    addThread();
}

void Workers::addThread() {
    if (threads_.size() >= kMostThreads) return;
    Thread& made = threads_.emplace_back();
    made.thread = std::thread([this, &made] { run(made); });
}

void Workers::stop() {
    std::list<Thread> ended;
    {
        std::unique_lock lock(mutex_);
        stopping_ = true;
        wanted_.notify_all();
        ended_.wait_for(lock, kStopPatience, [&] { return std::ranges::all_of(threads_, &Thread::ended); });
        for (auto thread = threads_.begin(); thread != threads_.end();) {
            const auto next = std::next(thread);
            if (thread->ended)
                ended.splice(ended.end(), threads_, thread);
            else if (thread->thread.joinable())
                thread->thread.detach();
            thread = next;
        }
        leader_ = helper_ = nullptr;
    }
    for (Thread& thread : ended)
        if (thread.thread.joinable()) thread.thread.join();
}

void Workers::add(const std::shared_ptr<PagedSound>& sound) {
    const std::lock_guard lock(mutex_);
    sounds_.push_back(sound);
}

void Workers::add(const std::shared_ptr<TempoProcessor>& tempo, const std::shared_ptr<PagedSound>& reads) {
    const std::lock_guard lock(mutex_);
    tempos_.push_back({tempo, reads});
}

void Workers::wake() {
    {
        const std::lock_guard lock(mutex_);
        woken_ = helpWanted_ = watchWanted_ = true;
    }
    wanted_.notify_all();
}

void Workers::callHelper() {
    {
        const std::lock_guard lock(mutex_);
        if (helpWanted_) return;
        helpWanted_ = true;
    }
    wanted_.notify_all();
}

Workers::Work Workers::collect() {
    Work work;
    const std::lock_guard lock(mutex_);
    std::erase_if(sounds_, [&](const auto& known) {
        auto sound = known.lock();
        if (!sound) return true;
        work.sounds.push_back(std::move(sound));
        return false;
    });
    std::erase_if(tempos_, [&](const Stretching& known) {
        auto tempo = known.tempo.lock();
        auto reads = known.reads.lock();
        if (!tempo || !reads) return true;
        if (tempo->workDue()) {
            work.tempos.push_back(std::move(tempo));
            work.read.push_back(std::move(reads));
        }
        return false;
    });
    return work;
}

bool Workers::Work::busy() const {
    return std::ranges::any_of(sounds, [](const auto& sound) { return sound->sounding(); });
}

bool Workers::Work::lacksPages() const {
    return std::ranges::any_of(sounds, [](const auto& sound) { return sound->urgency() >= 0; });
}

bool Workers::Work::changes() const {
    return std::ranges::any_of(tempos, [](const auto& tempo) { return tempo->workDue(); });
}

bool Workers::serveOnce(const Work& work, bool leader) {
    if (leader && (work.tempos.size() >= kMany || work.lacksPages())) callHelper();
    for (const auto& tempo : work.tempos) tempo->work();
    // The most urgent page of all sounds, then look anew: a press in between goes first.
    std::vector<std::pair<int, PagedSound*>> order;
    for (const auto& sound : work.sounds)
        if (const int urgency = sound->urgency(); urgency >= 0) order.emplace_back(urgency, sound.get());
    if (order.empty()) {
        for (const auto& sound : work.sounds) sound->tidy();
        return false;
    }
    std::ranges::stable_sort(order, {}, &std::pair<int, PagedSound*>::first);
    bool done = false;
    for (const auto& [urgency, sound] : order) {
        if (done && urgency >= kSoon) break;
        done = sound->service() || done;
    }
    return done;
}

Workers::Role Workers::roleOf(const Thread& self) {
    const std::lock_guard lock(mutex_);
    if (leader_ == &self) return Role::leads;
    if (helper_ == &self) return Role::helps;
    if (stopping_) return Role::watches;
    for (const Thread** place : {&leader_, &helper_}) {
        const std::int64_t since = (*place)->readsSince.load(std::memory_order_relaxed);
        if (since == 0 || steadyMs() - since < kHangsMs) continue;
        *place = &self;
        addThread();
        return place == &leader_ ? Role::leads : Role::helps;
    }
    return Role::watches;
}

/// How long a thread that found nothing to do may sleep when nobody calls it.
std::chrono::milliseconds Workers::rest(const Thread& self, bool wasCalled) const {
    const std::chrono::milliseconds tick(leaderTick_.load(std::memory_order_relaxed));
    if (leader_ == &self) return tick;
    if (helper_ == &self) return kIdleTick;
    // The watcher takes over at the very moment at which a thread counts as hanging.
    std::chrono::milliseconds soonest = wasCalled || tick < kIdleTick ? kWatchTick : kIdleTick;
    for (const Thread* reader : {leader_, helper_})
        if (const std::int64_t since = reader ? reader->readsSince.load(std::memory_order_relaxed) : 0)
            soonest = std::clamp(std::chrono::milliseconds(since + kHangsMs - steadyMs()),
                                 std::chrono::milliseconds(1), soonest);
    return soonest;
}

void Workers::run(Thread& self) {
    const FlushToZero flush;
    const ThreadSection worker(ThreadKind::Worker);
    for (bool wasCalled = true;;) {
        const Role role = roleOf(self);
        try {
            if (role == Role::leads || (role == Role::helps && wasCalled)) {
                self.readsSince.store(steadyMs(), std::memory_order_relaxed);
                const Work work = collect();
                const bool served = serveOnce(work, role == Role::leads);
                self.readsSince.store(0, std::memory_order_relaxed);
                if (role == Role::leads) {
                    const auto tick = !work.busy() ? kIdleTick : work.changes() ? kSoonTick : kTick;
                    leaderTick_.store(tick.count(), std::memory_order_relaxed);
                }
                if (served) {
                    const std::lock_guard lock(mutex_);
                    if (stopping_) break;
                    continue;
                }
            }
        } catch (...) {
            // Out of memory at worst: what is missing stays silent, the next round tries again.
            self.readsSince.store(0, std::memory_order_relaxed);
        }
        std::unique_lock lock(mutex_);
        bool& called = leader_ == &self ? woken_ : helper_ == &self ? helpWanted_ : watchWanted_;
        wanted_.wait_for(lock, rest(self, wasCalled), [&] { return called || stopping_; });
        wasCalled = std::exchange(called, false);
        if (stopping_) break;
    }
    const std::lock_guard lock(mutex_);
    self.ended = true;
    ended_.notify_all();
}

void Workers::serveBlock() {
    assertNotAudioThread();
    // Room for one block at sixteen times the rate, at the present position and where a loop returns to.
    constexpr std::uint64_t room = PagedSound::kPage;
    const Work work = collect();
    for (const auto& sound : work.sounds) {
        if (!sound->sounding()) continue;
        sound->ensure(sound->focus(), room);
        if (const PlayRange range = sound->range(); range.loop) sound->ensure(range.loopStart, room);
        sound->tidy();
    }
    for (const auto& tempo : work.tempos) tempo->work();
}

}  // namespace zv::engine
