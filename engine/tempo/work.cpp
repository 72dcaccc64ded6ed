// What the worker does for a tempo channel: fills ahead, prepares changes.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <mutex>
#include <thread>

#include "engine/dsp/denormals.h"
#include "engine/realtime/thread_tags.h"
#include "engine/tempo/lane.h"
#include "engine/tempo/processor.h"

namespace zv::engine {
namespace {

constexpr double kLeadSeconds = 0.025;   // between the making of a change and its frame
constexpr double kHurrySeconds = 0.006;  // the same where there is no time for that
constexpr double kFadeSeconds = 0.01;
constexpr std::size_t kLeastFade = 128;   // frames of that, at least
constexpr double kAheadSeconds = 0.15;    // that a lane keeps rendered
constexpr double kRefillSeconds = 0.125;  // below which it is filled up
constexpr auto kPrimeWait = std::chrono::milliseconds(5);
constexpr auto kPrimeStep = std::chrono::microseconds(200);
constexpr double kReadySeconds = 0.06;  // that a lane has when it is offered
constexpr double kRingSeconds = 0.3;
constexpr double kSearchSeconds = 0.01;  // to either side, for the best place to cross over
constexpr double kAlike = 0.03;          // pitches so near to each other can be laid over each other

std::size_t framesOf(double seconds, std::uint32_t rate) { return static_cast<std::size_t>(seconds * rate); }

/// A little before or after `frame`; never before the beginning or behind the end.
std::uint64_t shifted(std::uint64_t frame, std::int64_t by, const PlayRange& range) {
    if (by >= 0) return advance(frame, static_cast<std::uint64_t>(by), range);
    return frame - std::min(frame, static_cast<std::uint64_t>(-by));
}

}  // namespace

std::uint64_t TempoProcessor::Snapshot::at() const { return current ? current->readAt() : clock; }

TempoProcessor::Snapshot TempoProcessor::snapshot() const {
    constexpr auto acquire = std::memory_order_acquire;
    for (;;) {
        const std::uint32_t before = published_.version.load(acquire);
        Snapshot s{published_.epoch.load(acquire),
                   published_.clock.load(acquire),
                   published_.start.load(acquire),
                   published_.source.load(acquire),
                   published_.zero.load(acquire),
                   published_.current.load(acquire),
                   {}};
        if (before % 2 != 0 || published_.version.load(std::memory_order_relaxed) != before) continue;
        s.range = reader_.range();
        return s;
    }
}

TempoProcessor::Wish TempoProcessor::wish() const {
    const std::lock_guard lock(curveMutex_);
    return {curve_, changes_.load(std::memory_order_acquire)};
}

/// Which commands of the audio thread and of the callers hold.
std::uint64_t TempoProcessor::turn() const {
    return std::uint64_t{changes_.load(std::memory_order_acquire)} << 32 |
           published_.version.load(std::memory_order_acquire);
}

bool TempoProcessor::workDue() const {
    const TempoLane* current = published_.current.load(std::memory_order_acquire);
    if (settled_.load(std::memory_order_acquire) == turn()) {
        if (!current) return false;
        return (!current->finished() && current->ahead() < framesOf(kRefillSeconds, rate_)) ||
               current->range() != reader_.range();
    }
    return wanted_.load(std::memory_order_acquire) || current || offered_.load();
}

TempoLane* TempoProcessor::freeLane() {
    // Playing, fading out, offered, primed, and what the audio side has not let go of yet.
    constexpr std::size_t kMostLanes = 6;
    for (auto& lane : lanes_) {
        const auto state = lane->state.load(std::memory_order_acquire);
        if (state == TempoLane::State::free || state == TempoLane::State::retired) {
            lane->state.store(TempoLane::State::free, std::memory_order_relaxed);
            return lane.get();
        }
    }
    if (lanes_.size() == kMostLanes) return nullptr;
    lanes_.push_back(std::make_unique<TempoLane>(rate_, channels_, framesOf(kRingSeconds, rate_)));
    return lanes_.back().get();
}

void TempoProcessor::offer(TempoLane* lane, const Snapshot& now, std::uint64_t switchAt) {
    lane->after = now.current;
    lane->epoch = now.epoch;
    lane->switchAt = switchAt;
    lane->state.store(TempoLane::State::made, std::memory_order_release);
    pending_ = lane;
    if (TempoLane* before = offered_.exchange(lane)) drop(before);
}

/// Whether a lane that begins (or began) at time `base` plays what is wanted.
bool TempoProcessor::follows(const TempoLane& lane, const Wish& wish, std::uint64_t base) const {
    if (lane.leaves) return wish.curve.last().neutral() && !wish.curve.moves(base);
    const bool moves = wish.curve.moves(base) || lane.curve.moves(lane.base);
    if (lane.changes == wish.changes) return !moves || lane.base == base;
    return !moves && lane.curve.last() == wish.curve.last();
}

/// Whether a lane that waits is still what is wanted, and in time.
bool TempoProcessor::offerStands(const TempoLane& lane, const Snapshot& now, const Wish& wish) const {
    if (lane.epoch != now.epoch || lane.after != now.current) return false;
    if (lane.playsOtherwise(now.range) || lane.switchAt < now.at()) return false;
    // One that continues what sounds is heard first, though wishes have changed since: while somebody turns a
    // knob they always have.
    return !lane.clean || follows(lane, wish, now.zero + lane.switchAt);
}

void TempoProcessor::prime(std::uint64_t frame) {
    assertNotAudioThread();
    if (!wanted_.load(std::memory_order_acquire)) return;
    std::unique_lock lock(workMutex_, std::try_to_lock);
    // In small steps: the sanitizer of threads does not see a lock that is waited for with a limit.
    for (auto waited = kPrimeStep; !lock && waited <= kPrimeWait; waited += kPrimeStep) {
        std::this_thread::sleep_for(kPrimeStep);
        lock.try_lock();
    }
    if (!lock) return;
    const Wish wish = this->wish();
    const std::uint64_t time = time_.load(std::memory_order_acquire);
    if ((wish.curve.last().neutral() && !wish.curve.moves(time)) || !stretchers_) return;
    const FlushToZero flush;
    const PlayRange range = reader_.range();
    const auto good = [&](const TempoLane* lane) {
        return lane && lane->state.load(std::memory_order_acquire) == TempoLane::State::made && lane->clean &&
               lane->startSource == frame && follows(*lane, wish, time) && !lane->playsOtherwise(range);
    };
    if (good(primed_.load()) || (!published_.current.load() && good(pending_))) return;
    if (TempoLane* before = primed_.exchange(nullptr)) drop(before);
    TempoLane* lane = freeLane();
    if (!lane || !lane->open(*stretchers_, wish.curve, wish.changes, time)) return;
    lane->begin(frame, range, false);
    lane->after = nullptr;
    lane->fill(reader_, framesOf(kReadySeconds, rate_));
    lane->state.store(TempoLane::State::made, std::memory_order_release);
    primed_.store(lane);
}

/// From the source itself into a first lane. Both begin with the same frames: the fade is hardly one.
void TempoProcessor::enter(const Snapshot& now, const Wish& wish) {
    const bool fresh = now.clock == now.start;  // nothing has sounded from here
    const std::uint64_t lead = fresh ? 0 : framesOf(kLeadSeconds, rate_);
    const std::uint64_t switchAt = now.clock + lead, base = now.zero + switchAt;
    if (TempoLane* primed = primed_.load(); fresh && primed && primed->startSource == now.source &&
                                            follows(*primed, wish, base) &&
                                            !primed->playsOtherwise(now.range)) {
        if (primed_.compare_exchange_strong(primed, nullptr)) offer(primed, now, switchAt);
        return;
    }
    const std::uint64_t source = advance(now.source, lead, now.range);
    if (source == now.range.end && !now.range.loop) return;  // over before it could begin
    TempoLane* lane = freeLane();
    if (!lane || !lane->open(*stretchers_, wish.curve, wish.changes, base)) return;
    lane->begin(source, now.range, false);
    lane->fill(reader_, framesOf(kReadySeconds, rate_));
    if (!fresh) {
        std::uint64_t from = source;
        old_.assign(framesOf(kFadeSeconds, rate_) * channels_, 0.0f);
        readInOrder(reader_, from, old_, channels_, now.range);
        lane->fadeFrom(old_);
    }
    offer(lane, now, switchAt);
}

/// From one lane to another, or back to the source. `follows`: the lane does what is wanted, and is only left
/// when that has come to rest.
void TempoProcessor::replace(const Snapshot& now, const Wish& wish, bool follows) {
    TempoLane& current = *now.current;
    const std::size_t lead = framesOf(kLeadSeconds, rate_);
    std::size_t fade = framesOf(kFadeSeconds, rate_);
    const std::uint64_t heard = current.readAt();
    std::uint64_t at = heard + lead, there = 0;
    // Where the loop or the end has changed it is done before the sound comes to that place; with no time for
    // it the audio thread goes on from the source by itself.
    const std::uint64_t limit = current.divergesAt(now.range, heard, there);
    if (limit != TempoLane::kNowhere) {
        if (there == TempoLane::kNowhere) return;  // it ends there
        const std::uint64_t soonest = heard + framesOf(kHurrySeconds, rate_);
        if (limit < soonest + kLeastFade) return;
        at = std::clamp(limit - std::min<std::uint64_t>(limit, fade), soonest, at);
        fade = std::min<std::size_t>(fade, limit - at);
    }
    const bool leaves = wish.curve.last().neutral() && (follows || !wish.curve.moves(now.zero + at));
    if (leaves) at = std::max(at, wish.curve.restsFrom(now.zero + at) - now.zero);
    current.fill(reader_, lead + fade + lead);
    old_.resize(fade * channels_);
    if (!current.peek(at, old_)) return;  // later, near its end, or waiting for data
    TempoLane* lane = freeLane();
    if (!lane) return;
    const std::uint64_t place = current.sourceAt(at), base = now.zero + at;
    if (leaves) {
        const std::uint64_t start = shifted(place, bestLag(old_, place, now.range), now.range);
        std::vector<float>& fresh = search_;
        fresh.assign(fade * channels_, 0.0f);
        std::uint64_t next = start;
        readInOrder(reader_, next, fresh, channels_, now.range);
        lane->openLeaving(fresh, start, next, now.range);
    } else {
        if (!lane->open(*stretchers_, wish.curve, wish.changes, base)) return;
        const std::uint64_t start = shifted(place, std::llround(lane->lag()), now.range);
        // Only sound of the same pitch can be laid over itself.
        const double was = current.curve.at(current.base + at).transposition(),
                     is = wish.curve.at(base).transposition();
        const bool alike = std::fabs(was / is - 1) < kAlike;
        lane->begin(alike ? shifted(start, bestLag(old_, start, now.range), now.range) : start, now.range,
                    true);
        lane->fill(reader_, framesOf(kReadySeconds, rate_));
    }
    lane->fadeFrom(old_);
    offer(lane, now, at);
}

/// How many frames from `source` the sound lies that resembles `old` most. Negative lags are two's
/// complement.
std::int64_t TempoProcessor::bestLag(std::span<const float> old, std::uint64_t source,
                                     const PlayRange& range) {
    const std::uint64_t floor = range.loop && source >= range.loopStart ? range.loopStart : 0;
    const std::size_t reach = framesOf(kSearchSeconds, rate_), frames = old.size() / channels_;
    const auto back =
        static_cast<std::size_t>(std::min<std::uint64_t>(reach, source - std::min(source, floor)));
    std::vector<float> around((back + reach + frames) * channels_), there(back + reach + frames),
        here(frames);
    std::uint64_t from = source - back;
    const std::size_t got = readInOrder(reader_, from, around, channels_, range);
    if (from < source || got < frames) return 0;  // the loop's seam, or the end, lies in it
    const auto mono = [this](std::span<const float> in, std::vector<float>& out) {
        for (std::size_t i = 0; i < in.size() / channels_; ++i) {
            out[i] = 0;
            for (std::uint32_t c = 0; c < channels_; ++c) out[i] += in[i * channels_ + c];
        }
    };
    mono(old, here);
    mono(std::span<const float>(around).first(got * channels_), there);
    double best = 0;
    std::size_t place = back;
    for (std::size_t lag = 0; lag + frames <= got && lag <= back + reach; ++lag) {
        float product = 0, power = 1e-9f;
        for (std::size_t i = 0; i < frames; i += 2) {  // every other frame tells enough
            product += here[i] * there[lag + i];
            power += there[lag + i] * there[lag + i];
        }
        const double score = product / std::sqrt(static_cast<double>(power));
        if (score <= best) continue;
        best = score;
        place = lag;
    }
    return static_cast<std::int64_t>(place) - static_cast<std::int64_t>(back);
}

void TempoProcessor::work() {
    assertNotAudioThread();
    if (!workDue() || !stretchers_) return;
    std::unique_lock lock(workMutex_, std::try_to_lock);
    if (!lock) return;
    const std::uint64_t turn = this->turn();  // before anything is looked at
    const Wish wish = this->wish();
    const FlushToZero flush;
    const Snapshot now = snapshot();

    // Refill the playing lane first; skip retired ones.
    const bool sounding =
        now.current && now.current->state.load(std::memory_order_acquire) == TempoLane::State::playing;
    if (sounding) {
        if (!now.current->leaves && !now.current->playsOtherwise(now.range)) now.current->adopt(now.range);
        // By the stretch, not by the crumb: a stretcher's state has to come into the caches each time.
        if (now.current->ahead() < framesOf(kRefillSeconds, rate_))
            now.current->fill(reader_, framesOf(kAheadSeconds, rate_));
    } else if (now.current) {
        return;  // it has just changed over: next time
    }
    if (pending_ && pending_->state.load(std::memory_order_acquire) == TempoLane::State::made &&
        offerStands(*pending_, now, wish)) {
        if (pending_->ahead() < framesOf(kReadySeconds, rate_))
            pending_->fill(reader_, framesOf(kReadySeconds, rate_));
        if (!now.current && follows(*pending_, wish, now.zero + pending_->switchAt))
            settled_.store(turn, std::memory_order_release);
        return;
    }
    pending_ = nullptr;
    if (!now.current) {
        const bool neutral = wish.curve.last().neutral() && !wish.curve.moves(now.zero + now.clock);
        if (neutral)
            settled_.store(turn, std::memory_order_release);
        else
            enter(now, wish);
        return;
    }
    if (now.current->leaves) return;
    // A slide that ends in the source itself is left as soon as its end has been rendered.
    const bool ready = follows(*now.current, wish, now.zero) && !now.current->playsOtherwise(now.range);
    if (!ready || wish.curve.last().neutral())
        replace(now, wish, ready);
    else
        settled_.store(turn, std::memory_order_release);
}

}  // namespace zv::engine
