#include "engine/api/workers.h"

#include <algorithm>
#include <chrono>

#include "engine/dsp/denormals.h"
#include "engine/realtime/thread_tags.h"

namespace zv::engine {
namespace {

constexpr int kThreads = 2;
constexpr auto kTick = std::chrono::milliseconds(16);  ///< while something sounds
constexpr std::size_t kMany = 16;                      ///< stretched channels due at once: for more than one
constexpr auto kIdleTick = std::chrono::milliseconds(250);
constexpr int kSoon = 100;  ///< urgencies below belong to sounding channels

}  // namespace

void Workers::start() {
    assertControlThread();
    if (!threads_.empty()) return;
    for (int i = 0; i < kThreads; ++i) threads_.emplace_back([this, i] { run(i > 0); });
}

void Workers::stop() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    wanted_.notify_all();
    for (auto& thread : threads_) thread.join();
    threads_.clear();
    stopping_ = false;
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
        woken_ = helpWanted_ = true;
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
    assertNotAudioThread();
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

bool Workers::serveOnce(const Work& work) {
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

/// One looks after everything in time; the helper sleeps until there is more than one can do at once.
void Workers::run(bool helper) {
    const FlushToZero flush;
    const ThreadSection worker(ThreadKind::Worker);
    bool& called = helper ? helpWanted_ : woken_;
    while (!stopping_) {
        bool busy = true;
        try {
            const Work work = collect();
            if (!helper && work.tempos.size() >= kMany) callHelper();
            if (serveOnce(work)) {
                if (!helper) callHelper();
                continue;
            }
            busy = !helper && work.busy();
        } catch (...) {
            // Out of memory at worst: what is missing stays silent, the next round tries again.
        }
        std::unique_lock lock(mutex_);
        wanted_.wait_for(lock, busy ? kTick : kIdleTick, [&] { return called || stopping_; });
        called = false;
    }
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

void Workers::serveAll() {
    assertControlThread();
    while (serveOnce(collect())) {
    }
}

std::size_t Workers::memory() {
    std::size_t bytes = 0;
    for (const auto& sound : collect().sounds) bytes += sound->memory();
    return bytes;
}

}  // namespace zv::engine
