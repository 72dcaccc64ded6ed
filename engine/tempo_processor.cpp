#include "engine/tempo_processor.h"

#include <algorithm>
#include <cmath>

#include "engine/dsp/denormals.h"
#include "engine/tempo_lane.h"

namespace zv {
namespace {

constexpr double kLeadSeconds = 0.025;  // between the making of a change and its frame
constexpr double kFadeSeconds = 0.01;
constexpr double kAheadSeconds = 0.15;   // that a lane keeps rendered
constexpr double kRefillSeconds = 0.11;  // below which it is filled up
constexpr double kReadySeconds = 0.06;   // that a lane has when it is offered
constexpr double kRingSeconds = 0.3;
constexpr double kHoldSeconds = 0.05;    // that a position waits at most after a change
constexpr double kSearchSeconds = 0.01;  // to either side, for the best place to cross over

std::size_t framesOf(double seconds, std::uint32_t rate) { return static_cast<std::size_t>(seconds * rate); }

/// A little before or after `frame`; never before the beginning or behind the end.
std::uint64_t shifted(std::uint64_t frame, std::int64_t by, const PlayRange& range) {
    if (by >= 0) return advance(frame, static_cast<std::uint64_t>(by), range);
    return frame - std::min(frame, static_cast<std::uint64_t>(-by));
}

TempoParameters cut(const TempoParameters& p) {
    const auto in = [](double v, double low, double high, double fallback) {
        return std::isfinite(v) ? std::clamp(v, low, high) : fallback;
    };
    return {in(p.tempo, -95, 5000, 0), in(p.pitch, -60, 60, 0), in(p.rate, 0.05, 20, 1)};
}

}  // namespace

TempoProcessor::TempoProcessor(std::uint32_t rate, std::uint32_t channels,
                               std::shared_ptr<StretcherSource> stretchers, FrameReader& reader)
    : rate_(std::max(rate, 1u)),
      channels_(std::max(channels, 1u)),
      stretchers_(std::move(stretchers)),
      reader_(reader) {}

TempoProcessor::~TempoProcessor() = default;

// ---- [control]

void TempoProcessor::setParameters(const TempoParameters& parameters) {
    std::lock_guard lock(parametersMutex_);
    parameters_ = cut(parameters);
    wanted_.store(!parameters_.neutral(), std::memory_order_release);
    changes_.fetch_add(1, std::memory_order_release);
}

TempoParameters TempoProcessor::parameters() const {
    std::lock_guard lock(parametersMutex_);
    return parameters_;
}

void TempoProcessor::prime(std::uint64_t frame, const PlayRange& range) {
    const TempoParameters wanted = parameters();
    if (wanted.neutral() || !stretchers_) return;
    std::lock_guard lock(workMutex_);
    const FlushToZero flush;
    const auto good = [&](const TempoLane* lane) {
        return lane && lane->state.load(std::memory_order_acquire) == TempoLane::State::made && lane->clean &&
               lane->startSource == frame && lane->parameters == wanted && !lane->playsOtherwise(range);
    };
    if (good(primed_.load()) || (!published_.current.load() && good(pending_))) return;
    if (TempoLane* before = primed_.exchange(nullptr)) drop(before);
    TempoLane* lane = freeLane();
    if (!lane || !lane->open(*stretchers_, wanted)) return;
    lane->begin(frame, range, false);
    lane->after = nullptr;
    lane->fill(reader_, framesOf(kReadySeconds, rate_));
    lane->state.store(TempoLane::State::made, std::memory_order_release);
    primed_.store(lane);
}

// ---- [audio]

void TempoProcessor::drop(TempoLane* lane) {
    lane->state.store(TempoLane::State::retired, std::memory_order_release);
}

/// A reader that finds the same even version before and after has it whole: whoever sees a field of this turn
/// also sees the odd version that stands before it.
void TempoProcessor::publish() {
    constexpr auto release = std::memory_order_release;
    const std::uint32_t version = published_.version.load(std::memory_order_relaxed);
    published_.version.store(version + 1, std::memory_order_relaxed);
    published_.epoch.store(epoch_, release);
    published_.clock.store(clock_, release);
    published_.start.store(start_, release);
    published_.source.store(source_, release);
    published_.end.store(range_.end, release);
    published_.loopStart.store(range_.loopStart, release);
    published_.loop.store(range_.loop, release);
    published_.current.store(current_, release);
    published_.version.store(version + 2, release);
}

void TempoProcessor::restart(std::uint64_t frame) {
    ++epoch_;
    ended_ = false;
    if (current_) drop(current_);
    current_ = nullptr;
    start_ = clock_;
    source_ = frame;
    // A lane that was primed for it, or one that waits for the start from here.
    TempoLane* primed = primed_.exchange(nullptr);
    if (TempoLane* lane = offered_.load(std::memory_order_relaxed) ? offered_.exchange(nullptr) : nullptr) {
        if (next_) drop(next_);
        next_ = lane;
    }
    for (TempoLane* lane : {primed, next_}) {
        if (!lane) continue;
        const bool fits = !current_ && lane->clean && lane->startSource == frame && lane->readAt() == 0 &&
                          wanted_.load(std::memory_order_acquire);
        if (!fits) {
            drop(lane);
            continue;
        }
        lane->state.store(TempoLane::State::playing, std::memory_order_release);
        current_ = lane;
    }
    next_ = nullptr;
    heard_.store(frame, std::memory_order_relaxed);
    publish();
}

void TempoProcessor::setRange(const PlayRange& range) {
    if (range == range_) return;
    range_ = range;
    publish();
}

/// The lane to change over to, if it can still be done. A newer offer replaces an older one.
TempoLane* TempoProcessor::next() {
    if (offered_.load(std::memory_order_relaxed)) {
        TempoLane* lane = offered_.exchange(nullptr);
        if (lane && next_) drop(next_);
        if (lane) next_ = lane;
    }
    if (!next_) return nullptr;
    const bool late = next_->switchAt < (current_ ? current_->readAt() : clock_);
    if (!late && next_->after == current_ && next_->epoch == epoch_) return next_;
    drop(next_);
    next_ = nullptr;
    return nullptr;
}

void TempoProcessor::takeOver() {
    if (current_) drop(current_);
    current_ = next_;
    next_ = nullptr;
    current_->state.store(TempoLane::State::playing, std::memory_order_release);
    heldLeft_ = framesOf(kHoldSeconds, rate_);
    publish();
}

bool TempoProcessor::neutral() {
    if (current_) return false;
    const TempoLane* lane = next();
    if (!lane || lane->switchAt > clock_) return true;
    takeOver();
    return false;
}

std::size_t TempoProcessor::neutralRun() const {
    return next_ && next_->switchAt > clock_ ? static_cast<std::size_t>(next_->switchAt - clock_)
                                             : ~std::size_t{0};
}

void TempoProcessor::passed(std::size_t frames, std::uint64_t frame) {
    clock_ += frames;
    source_ = frame;
    heard_.store(frame, std::memory_order_relaxed);
    publish();
}

std::span<const float> TempoProcessor::view(std::size_t frames) {
    if (!current_ || ended_ || current_->leaves) return {};
    if (const TempoLane* lane = next(); lane && lane->switchAt < current_->readAt() + frames) return {};
    const std::span<const float> there = current_->view(frames);
    if (there.empty()) return there;
    if (current_->exhausted()) ended_ = true;
    report(frames);
    return there;
}

std::size_t TempoProcessor::read(std::span<float> out) {
    const std::size_t wanted = out.size() / channels_;
    std::size_t done = 0;
    while (done < wanted && current_ && !ended_) {
        std::uint64_t limit = ~std::uint64_t{0};
        if (const TempoLane* lane = next()) {
            if (lane->switchAt == current_->readAt()) {
                takeOver();
                continue;
            }
            limit = lane->switchAt;
        }
        const std::size_t got = current_->read(out.subspan(done * channels_), limit);
        done += got;
        if (current_->exhausted()) {
            if (current_->leaves) {
                source_ = current_->leaveSource;
                drop(current_);
                current_ = nullptr;
                start_ = clock_ - 1;  // something sounds before this frame
                heard_.store(source_, std::memory_order_relaxed);
                publish();
                return done;
            }
            ended_ = true;
        } else if (got == 0 && limit != current_->readAt()) {
            starvations_.fetch_add(1, std::memory_order_relaxed);
            break;
        }
    }
    if (current_) report(done);
    return done;
}

/// The heard position. A lane may begin a few milliseconds before the place where the last one was left: the
/// position then waits, it does not go back.
void TempoProcessor::report(std::size_t frames) {
    const std::uint64_t before = heard_.load(std::memory_order_relaxed);
    const std::uint64_t now = current_->sourceAt(current_->readAt());
    const bool back = now < before && before - now < framesOf(kHoldSeconds, rate_);
    if (!(back && heldLeft_ > 0)) heard_.store(now, std::memory_order_relaxed);
    heldLeft_ -= std::min(heldLeft_, frames);
}

// ---- [worker]

TempoProcessor::Snapshot TempoProcessor::snapshot() const {
    constexpr auto acquire = std::memory_order_acquire;
    for (;;) {
        const std::uint32_t before = published_.version.load(acquire);
        const Snapshot s{
            published_.epoch.load(acquire),
            published_.clock.load(acquire),
            published_.start.load(acquire),
            published_.source.load(acquire),
            {published_.end.load(acquire), published_.loopStart.load(acquire), published_.loop.load(acquire)},
            published_.current.load(acquire)};
        if (before % 2 == 0 && published_.version.load(std::memory_order_relaxed) == before) return s;
    }
}

/// Which orders of the audio thread and of the callers hold.
std::uint64_t TempoProcessor::turn() const {
    return std::uint64_t{changes_.load(std::memory_order_acquire)} << 32 |
           published_.version.load(std::memory_order_acquire);
}

bool TempoProcessor::workDue() const {
    const TempoLane* current = published_.current.load(std::memory_order_acquire);
    if (settled_.load(std::memory_order_acquire) == turn())
        return current && !current->finished() && current->ahead() < framesOf(kRefillSeconds, rate_);
    return wanted_.load(std::memory_order_acquire) || current || offered_.load();
}

TempoLane* TempoProcessor::freeLane() {
    constexpr std::size_t kMostLanes =
        5;  // playing, offered, primed, and what the audio side has not let go of yet
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

void TempoProcessor::offer(TempoLane* lane) {
    lane->state.store(TempoLane::State::made, std::memory_order_release);
    pending_ = lane;
    if (TempoLane* before = offered_.exchange(lane)) drop(before);
}

/// Whether a lane that waits is still what is wanted, and in time.
bool TempoProcessor::offerStands(const TempoLane& lane, const Snapshot& now,
                                 const TempoParameters& wanted) const {
    if (lane.epoch != now.epoch || lane.after != now.current) return false;
    if (lane.leaves ? !wanted.neutral() : lane.parameters != wanted) return false;
    if (lane.playsOtherwise(now.range)) return false;
    return lane.switchAt >= (now.current ? now.current->readAt() : now.clock);
}

/// From the source itself into a first lane. Both begin with the same frames: the fade is hardly one.
void TempoProcessor::enter(const Snapshot& now, const TempoParameters& wanted) {
    const bool fresh = now.clock == now.start;  // nothing has sounded from here
    if (TempoLane* primed = primed_.load(); fresh && primed && primed->startSource == now.source &&
                                            primed->parameters == wanted &&
                                            !primed->playsOtherwise(now.range)) {
        if (!primed_.compare_exchange_strong(primed, nullptr)) return;
        primed->epoch = now.epoch;
        primed->switchAt = now.clock;
        offer(primed);
        return;
    }
    TempoLane* lane = freeLane();
    if (!lane) return;
    const std::size_t lead = fresh ? 0 : framesOf(kLeadSeconds, rate_);
    const std::uint64_t source = advance(now.source, lead, now.range);
    if (source == now.range.end && !now.range.loop) return;  // over before it could begin
    if (!lane->open(*stretchers_, wanted)) return;
    lane->begin(source, now.range, false);
    lane->after = nullptr;
    lane->epoch = now.epoch;
    lane->switchAt = now.clock + lead;
    lane->fill(reader_, framesOf(kReadySeconds, rate_));
    if (!fresh) {
        std::uint64_t from = source;
        old_.assign(framesOf(kFadeSeconds, rate_) * channels_, 0.0f);
        readInOrder(reader_, from, old_, channels_, now.range);
        lane->fadeFrom(old_);
    }
    offer(lane);
}

/// From one lane to another, or back to the source.
void TempoProcessor::change(const Snapshot& now, const TempoParameters& wanted) {
    TempoLane& current = *now.current;
    const std::size_t fade = framesOf(kFadeSeconds, rate_), lead = framesOf(kLeadSeconds, rate_);
    const std::uint64_t at = current.readAt() + lead;
    current.fill(reader_, lead + fade + framesOf(kLeadSeconds, rate_));
    old_.resize(fade * channels_);
    if (!current.peek(at, old_)) return;  // near its end, or waiting for data
    TempoLane* lane = freeLane();
    if (!lane) return;
    const std::uint64_t place = current.sourceAt(at);
    if (wanted.neutral()) {
        const std::uint64_t start = shifted(place, bestLag(old_, place, now.range), now.range);
        std::vector<float>& fresh = search_;
        fresh.assign(fade * channels_, 0.0f);
        std::uint64_t next = start;
        readInOrder(reader_, next, fresh, channels_, now.range);
        lane->openLeaving(fresh, start, next, now.range);
    } else {
        if (!lane->open(*stretchers_, wanted)) return;
        const std::uint64_t start = shifted(place, std::llround(lane->lag()), now.range);
        // Only sound of the same pitch can be laid over itself.
        const bool alike = wanted.pitch == current.parameters.pitch && wanted.rate == current.parameters.rate;
        lane->begin(alike ? shifted(start, bestLag(old_, start, now.range), now.range) : start, now.range,
                    true);
        lane->fill(reader_, framesOf(kReadySeconds, rate_));
    }
    lane->fadeFrom(old_);
    lane->after = &current;
    lane->epoch = now.epoch;
    lane->switchAt = at;
    offer(lane);
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
    if (!workDue() || !stretchers_) return;
    std::unique_lock lock(workMutex_, std::try_to_lock);
    if (!lock) return;
    const std::uint64_t turn = this->turn();  // before anything is looked at
    const TempoParameters wanted = parameters();
    const FlushToZero flush;
    const Snapshot now = snapshot();
    const std::size_t ahead = framesOf(kAheadSeconds, rate_);

    // The lane that sounds is served first; a retired one is nobody's concern any more.
    const bool sounding =
        now.current && now.current->state.load(std::memory_order_acquire) == TempoLane::State::playing;
    if (sounding) {
        if (!now.current->leaves && !now.current->playsOtherwise(now.range)) now.current->adopt(now.range);
        // By the stretch, not by the crumb: a stretcher's state has to come into the caches each time.
        if (now.current->ahead() < framesOf(kRefillSeconds, rate_)) now.current->fill(reader_, ahead);
    } else if (now.current) {
        return;  // it has just changed over: next time
    }
    if (pending_ && pending_->state.load(std::memory_order_acquire) == TempoLane::State::made &&
        offerStands(*pending_, now, wanted)) {
        if (pending_->ahead() < framesOf(kReadySeconds, rate_))
            pending_->fill(reader_, framesOf(kReadySeconds, rate_));
        if (!now.current) settled_.store(turn, std::memory_order_release);
        return;
    }
    pending_ = nullptr;
    if (!now.current) {
        if (!wanted.neutral()) enter(now, wanted);
    } else if (!now.current->leaves &&
               (now.current->parameters != wanted || now.current->playsOtherwise(now.range))) {
        change(now, wanted);
    } else if (!now.current->leaves) {
        settled_.store(turn, std::memory_order_release);
    }
}

}  // namespace zv
