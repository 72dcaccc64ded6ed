#include "engine/tempo/work.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <mutex>
#include <thread>

#include "engine/dsp/denormals.h"
#include "engine/realtime/thread_tags.h"

namespace zv::engine {
namespace {

constexpr double kLeadSeconds = 0.025;    // between the making of a change and its frame
constexpr double kHurrySeconds = 0.006;   // the same where there is no time for that
constexpr double kAheadSeconds = 0.15;    // that a lane keeps rendered
constexpr double kRefillSeconds = 0.125;  // below which it is filled up
constexpr auto kPrimeWait = std::chrono::milliseconds(5);
constexpr auto kPrimeStep = std::chrono::microseconds(200);
constexpr double kReadySeconds = 0.06;  // that a lane has when it is offered
constexpr double kRingSeconds = 0.3;
constexpr double kSearchSeconds = 0.01;  // to either side, for the best place to cross over
constexpr double kAlike = 0.03;          // pitches so near to each other can be laid over each other

/// A little before or after `frame`; never before the beginning or behind the end.
std::uint64_t shifted(std::uint64_t frame, std::int64_t by, const PlayRange& range) {
    if (by >= 0) return advance(frame, static_cast<std::uint64_t>(by), range);
    return frame - std::min(frame, static_cast<std::uint64_t>(-by));
}

}  // namespace

/// Which commands of the audio thread and of the callers hold.
std::uint64_t TempoWork::turn() const {
    return std::uint64_t{wishes_.changes()} << 32 |
           meeting_.published.version.load(std::memory_order_acquire);
}

bool TempoWork::due() const {
    const TempoLane* current = meeting_.published.current.load(std::memory_order_acquire);
    if (settled_.load(std::memory_order_acquire) == turn()) {
        if (!current) return false;
        return (!current->finished() && current->ahead() < tempoFrames(kRefillSeconds, rate_)) ||
               current->range() != reader_.range();
    }
    return wishes_.wanted() || current || meeting_.offered.load();
}

TempoLane* TempoWork::freeLane() {
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
    lanes_.push_back(std::make_unique<TempoLane>(rate_, channels_, tempoFrames(kRingSeconds, rate_)));
    return lanes_.back().get();
}

void TempoWork::offer(TempoLane* lane, const TempoSnapshot& now, std::uint64_t switchAt) {
    lane->after = now.current;
    lane->epoch = now.epoch;
    lane->switchAt = switchAt;
    lane->state.store(TempoLane::State::made, std::memory_order_release);
    pending_ = lane;
    if (TempoLane* before = meeting_.offered.exchange(lane)) before->retire();
}

/// Whether a lane that begins (or began) at time `base` plays what is wanted.
bool TempoWork::follows(const TempoLane& lane, const Wish& wish, std::uint64_t base) {
    if (lane.leaves) return wish.curve.last().neutral() && !wish.curve.moves(base);
    const bool moves = wish.curve.moves(base) || lane.curve.moves(lane.base);
    if (lane.changes == wish.changes) return !moves || lane.base == base;
    return !moves && lane.curve.last() == wish.curve.last();
}

/// Whether a lane that waits is still what is wanted, and in time.
bool TempoWork::offerStands(const TempoLane& lane, const TempoSnapshot& now, const Wish& wish) {
    if (lane.epoch != now.epoch || lane.after != now.current) return false;
    if (lane.playsOtherwise(now.range) || lane.switchAt < now.at()) return false;
    // A lane that continues what sounds is taken although the wishes have changed since. Else no change would be
    // heard while somebody turns a knob.
    return !lane.clean || follows(lane, wish, now.zero + lane.switchAt);
}

void TempoWork::prime(std::uint64_t frame) {
    assertNotAudioThread();
    if (!wishes_.wanted()) return;
    std::unique_lock lock(mutex_, std::try_to_lock);
    // In small steps: the sanitizer of threads does not see a lock that is waited for with a limit.
    for (auto waited = kPrimeStep; !lock && waited <= kPrimeWait; waited += kPrimeStep) {
        std::this_thread::sleep_for(kPrimeStep);
        lock.try_lock();
    }
    if (!lock) return;
    const Wish wish = wishes_.wish();
    const std::uint64_t time = wishes_.time();
    if (wish.curve.last().neutral() && !wish.curve.moves(time)) return;
    const FlushToZero flush;
    const PlayRange range = reader_.range();
    const auto good = [&](const TempoLane* lane) {
        return lane && lane->state.load(std::memory_order_acquire) == TempoLane::State::made && lane->clean &&
               lane->startSource == frame && follows(*lane, wish, time) && !lane->playsOtherwise(range);
    };
    if (good(meeting_.primed.load()) || (!meeting_.published.current.load() && good(pending_))) return;
    if (TempoLane* before = meeting_.primed.exchange(nullptr)) before->retire();
    TempoLane* lane = freeLane();
    if (!lane) return;
    lane->open(wish.curve, wish.changes, time);
    lane->begin(frame, range, false);
    lane->after = nullptr;
    lane->fill(reader_, tempoFrames(kReadySeconds, rate_));
    lane->state.store(TempoLane::State::made, std::memory_order_release);
    meeting_.primed.store(lane);
}

/// From the source itself into a first lane. Both hold the same frames there, so the cross-fade is hardly heard.
void TempoWork::enter(const TempoSnapshot& now, const Wish& wish) {
    const bool fresh = now.clock == now.start;  // nothing has sounded from here
    const std::uint64_t lead = fresh ? 0 : tempoFrames(kLeadSeconds, rate_);
    const std::uint64_t switchAt = now.clock + lead, base = now.zero + switchAt;
    if (TempoLane* primed = meeting_.primed.load(); fresh && primed && primed->startSource == now.source &&
                                                    follows(*primed, wish, base) &&
                                                    !primed->playsOtherwise(now.range)) {
        if (meeting_.primed.compare_exchange_strong(primed, nullptr)) offer(primed, now, switchAt);
        return;
    }
    const std::uint64_t source = advance(now.source, lead, now.range);
    if (source == now.range.end && !now.range.loop) return;  // over before it could begin
    TempoLane* lane = freeLane();
    if (!lane) return;
    lane->open(wish.curve, wish.changes, base);
    lane->begin(source, now.range, false);
    lane->fill(reader_, tempoFrames(kReadySeconds, rate_));
    if (!fresh) {
        std::uint64_t from = source;
        old_.assign(tempoFrames(kTempoFadeSeconds, rate_) * channels_, 0.0f);
        readInOrder(reader_, from, old_, channels_, now.range);
        lane->fadeFrom(old_);
    }
    offer(lane, now, switchAt);
}

/// From one lane to another, or back to the source. `follows`: the lane does what is wanted, and is only left
/// when that has come to rest.
void TempoWork::replace(const TempoSnapshot& now, const Wish& wish, bool follows) {
    TempoLane& current = *now.current;
    const std::size_t lead = tempoFrames(kLeadSeconds, rate_);
    std::size_t fade = tempoFrames(kTempoFadeSeconds, rate_);
    const std::uint64_t heard = current.readAt();
    std::uint64_t at = heard + lead, there = 0;
    // Where the loop or the end has changed it is done before the sound comes to that place; with no time for
    // it the audio thread goes on from the source by itself.
    const std::uint64_t limit = current.divergesAt(now.range, heard, there);
    if (limit != TempoLane::kNowhere) {
        if (there == TempoLane::kNowhere) return;  // it ends there
        const std::uint64_t soonest = heard + tempoFrames(kHurrySeconds, rate_);
        if (limit < soonest + kLeastTempoFade) return;
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
        lane->open(wish.curve, wish.changes, base);
        const std::uint64_t start = shifted(place, std::llround(lane->lag()), now.range);
        // Only sound of the same pitch can be laid over itself.
        const double was = current.curve.at(current.base + at).transposition(),
                     is = wish.curve.at(base).transposition();
        const bool alike = std::fabs(was / is - 1) < kAlike;
        lane->begin(alike ? shifted(start, bestLag(old_, start, now.range), now.range) : start, now.range,
                    true);
        lane->fill(reader_, tempoFrames(kReadySeconds, rate_));
    }
    lane->fadeFrom(old_);
    offer(lane, now, at);
}

/// How many frames from `source` the sound lies that resembles `old` most. Negative lags are two's
/// complement.
std::int64_t TempoWork::bestLag(std::span<const float> old, std::uint64_t source, const PlayRange& range) {
    const std::uint64_t floor = range.loop && source >= range.loopStart ? range.loopStart : 0;
    const std::size_t reach = tempoFrames(kSearchSeconds, rate_), frames = old.size() / channels_;
    const auto back =
        static_cast<std::size_t>(std::min<std::uint64_t>(reach, source - std::min(source, floor)));
    std::vector<float> around((back + reach + frames) * channels_);
    std::uint64_t from = source - back;
    const std::size_t got = readInOrder(reader_, from, around, channels_, range);
    if (from < source || got < frames) return 0;  // the loop's seam, or the end, lies in it
    const auto mono = [this](std::span<const float> in) {
        std::vector<float> out(in.size() / channels_);
        for (std::size_t i = 0; i < in.size(); ++i) out[i / channels_] += in[i];
        return out;
    };
    const std::vector<float> here = mono(old), there = mono(std::span(around).first(got * channels_));
    double best = 0;
    std::size_t place = back;
    for (std::size_t lag = 0; lag + frames <= got && lag <= back + reach; ++lag) {
        float product = 0, power = 1e-9f;
        for (std::size_t i = 0; i < frames; i += 2) {  // every second frame suffices
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

void TempoWork::work() {
    assertNotAudioThread();
    if (!due()) return;
    std::unique_lock lock(mutex_, std::try_to_lock);
    if (!lock) return;
    const std::uint64_t turn = this->turn();  // before anything is looked at
    const Wish wish = wishes_.wish();
    const FlushToZero flush;
    const TempoSnapshot now = meeting_.snapshot(reader_);

    // Refill the playing lane first; skip retired ones.
    const bool sounding =
        now.current && now.current->state.load(std::memory_order_acquire) == TempoLane::State::playing;
    if (sounding) {
        if (!now.current->leaves && !now.current->playsOtherwise(now.range)) now.current->adopt(now.range);
        // Fill in long stretches: each call brings the stretcher's state into the caches anew.
        if (now.current->ahead() < tempoFrames(kRefillSeconds, rate_))
            now.current->fill(reader_, tempoFrames(kAheadSeconds, rate_));
    } else if (now.current) {
        return;  // the audio thread has just changed over: left for the next call
    }
    if (pending_ && pending_->state.load(std::memory_order_acquire) == TempoLane::State::made &&
        offerStands(*pending_, now, wish)) {
        if (pending_->ahead() < tempoFrames(kReadySeconds, rate_))
            pending_->fill(reader_, tempoFrames(kReadySeconds, rate_));
        if (!now.current && follows(*pending_, wish, now.zero + pending_->switchAt))
            settled_.store(turn, std::memory_order_release);
        return;
    }
    if (pending_ && pending_->playsOtherwise(now.range)) {
        auto made = TempoLane::State::made;
        pending_->state.compare_exchange_strong(made, TempoLane::State::withdrawn);
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
