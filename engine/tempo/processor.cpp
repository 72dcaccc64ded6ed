#include "engine/tempo/processor.h"

#include <algorithm>
#include <cmath>

#include "engine/realtime/thread_tags.h"
#include "engine/tempo/lane.h"

namespace zv::engine {
namespace {

constexpr double kHoldSeconds = 0.05;  // that a position waits at most after a change
constexpr double kFadeSeconds = 0.01;  // from a lane that was left into the source

constexpr std::uint64_t kLeastFade = 128;  // frames of that

std::size_t framesOf(double seconds, std::uint32_t rate) { return static_cast<std::size_t>(seconds * rate); }

}  // namespace

TempoProcessor::TempoProcessor(std::uint32_t rate, std::uint32_t channels,
                               std::shared_ptr<StretcherSource> stretchers, FrameReader& reader)
    : rate_(std::max(rate, 1u)),
      channels_(std::max(channels, 1u)),
      stretchers_(std::move(stretchers)),
      reader_(reader) {}

TempoProcessor::~TempoProcessor() = default;

// ---- [control]

template <typename Change>
void TempoProcessor::change(Change change) {
    const std::lock_guard lock(curveMutex_);
    const std::uint64_t now = time_.load(std::memory_order_acquire);
    change(now);
    wanted_.store(curve_.moves(now) || !curve_.last().neutral(), std::memory_order_release);
    restsFrom_.store(curve_.restsFrom(now), std::memory_order_release);
    changes_.fetch_add(1, std::memory_order_release);
}

void TempoProcessor::setParameters(const TempoParameters& parameters) {
    change([&](std::uint64_t now) {
        curve_.move(TempoPart::Tempo, cutTempo(TempoPart::Tempo, parameters.tempo), now, 0, false);
        curve_.move(TempoPart::Pitch, cutTempo(TempoPart::Pitch, parameters.pitch), now, 0, false);
        curve_.move(TempoPart::Rate, cutTempo(TempoPart::Rate, parameters.rate), now, 0, false);
    });
}

void TempoProcessor::slide(TempoPart part, double value, std::uint64_t frames, bool ratios) {
    assertNotAudioThread();
    change([&](std::uint64_t now) { curve_.move(part, cutTempo(part, value), now, frames, ratios); });
}

TempoParameters TempoProcessor::parameters() const {
    const std::lock_guard lock(curveMutex_);
    return curve_.at(time_.load(std::memory_order_acquire));
}

bool TempoProcessor::sliding(TempoPart part) const {
    const std::lock_guard lock(curveMutex_);
    return curve_.line(part).moves(time_.load(std::memory_order_acquire));
}

// ---- [audio]

void TempoProcessor::drop(TempoLane* lane) {
    lane->state.store(TempoLane::State::retired, std::memory_order_release);
}

/// Seqlock writer: the version is odd while the data is being updated. A reader that finds the same even
/// version before and after its reading has read one state.
void TempoProcessor::publish() {
    constexpr auto release = std::memory_order_release;
    const std::uint32_t version = published_.version.load(std::memory_order_relaxed);
    published_.version.store(version + 1, std::memory_order_relaxed);
    published_.epoch.store(epoch_, release);
    published_.clock.store(clock_, release);
    published_.start.store(start_, release);
    published_.source.store(source_, release);
    published_.zero.store(time_.load(std::memory_order_relaxed) - (current_ ? current_->readAt() : clock_),
                          release);
    published_.current.store(current_, release);
    published_.version.store(version + 2, release);
}

void TempoProcessor::restart(std::uint64_t frame) {
    assertAudioThread();
    ++epoch_;
    ended_ = false;
    if (current_) drop(current_);
    if (fading_) drop(fading_);
    current_ = fading_ = nullptr;
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
    if (fading_) drop(fading_);
    current_ = next_;
    next_ = fading_ = nullptr;
    current_->state.store(TempoLane::State::playing, std::memory_order_release);
    heldLeft_ = framesOf(kHoldSeconds, rate_);
    publish();
}

/// The source goes on by itself at `source`, with the lane still sounding below its first frames.
void TempoProcessor::leaveAt(std::uint64_t source, std::size_t fade) {
    if (fading_) drop(fading_);
    fadeFrames_ = fade;
    fading_ = current_;
    fadeBegan_ = current_->readAt();
    current_ = nullptr;
    source_ = source;
    start_ = clock_ - 1;  // something sounds before this frame
    heard_.store(source, std::memory_order_relaxed);
    publish();
}

void TempoProcessor::fade(std::span<float> fromSource) {
    assertAudioThread();
    const std::size_t frames = fadeFrames_, wanted = fromSource.size() / channels_;
    std::array<float, 256> old;
    for (std::size_t done = 0; done < wanted && fading_;) {
        const auto at = static_cast<std::size_t>(fading_->readAt() - fadeBegan_);
        const std::size_t part = std::min(
            {wanted - done, frames - std::min(at, frames), std::max<std::size_t>(1, old.size() / channels_)});
        const std::size_t got = part * channels_ > old.size()
                                    ? 0
                                    : fading_->read({old.data(), part * channels_}, TempoLane::kNowhere);
        for (std::size_t i = 0; i < got * channels_; ++i) {
            float& v = fromSource[done * channels_ + i];
            v = old[i] + (v - old[i]) * fadeAt(at + i / channels_, frames);
        }
        done += got;
        if (got > 0 && at + got < frames) continue;
        drop(fading_);
        fading_ = nullptr;
    }
}

void TempoProcessor::pass(std::uint64_t frames) {
    time_.store(time_.load(std::memory_order_relaxed) + frames, std::memory_order_release);
}

bool TempoProcessor::neutral() {
    assertAudioThread();
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
    assertAudioThread();
    clock_ += frames;
    pass(frames);
    source_ = frame;
    heard_.store(frame, std::memory_order_relaxed);
    publish();
}

void TempoProcessor::idle(std::uint64_t frames) {
    assertAudioThread();
    pass(frames);
    publish();
}

void TempoProcessor::end() {
    ended_ = true;
    if (const std::uint64_t end = reader_.range().end; end != ~std::uint64_t{0})
        heard_.store(end, std::memory_order_relaxed);
}

/// Loop and end have changed, and the lane plays on otherwise from some frame on: `limit` is brought down to
/// where it is left. True when that is now: it was left, or has ended.
bool TempoProcessor::diverges(std::uint64_t& limit) {
    const PlayRange range = reader_.range();
    if (range == current_->range()) return false;
    const std::uint64_t now = current_->readAt();
    if (range != leaveRange_ || current_ != leaves_ || epoch_ != leaveEpoch_) {
        leaveRange_ = range;
        leaves_ = current_;
        leaveEpoch_ = epoch_;
        leaveDue_ = current_->divergesAt(range, now, leaveThere_);
    }
    // Beyond what was rendered so far: looked for again with the next call.
    if (leaveDue_ == TempoLane::kNowhere) {
        leaves_ = nullptr;
        return false;
    }
    const std::uint64_t fade = framesOf(kFadeSeconds, rate_), due = leaveDue_;
    std::uint64_t at = due;
    // Early enough to fade while both sound alike, unless another lane is there in time.
    if (leaveThere_ != TempoLane::kNowhere && limit > at) at = std::max(now, at - std::min(at, fade));
    limit = std::min(limit, at);
    if (at > now) return false;
    if (leaveThere_ == TempoLane::kNowhere) {
        end();
    } else {
        leaveAt(
            now < due ? current_->sourceAt(now) : leaveThere_,
            static_cast<std::size_t>(std::clamp<std::uint64_t>(due - std::min(due, now), kLeastFade, fade)));
    }
    leaves_ = nullptr;
    return true;
}

std::span<const float> TempoProcessor::view(std::size_t frames) {
    assertAudioThread();
    if (!current_ || ended_ || current_->leaves) return {};
    if (const TempoLane* lane = next(); lane && lane->switchAt < current_->readAt() + frames) return {};
    if (reader_.range() != current_->range()) return {};
    const std::span<const float> there = current_->view(frames);
    if (there.empty()) return there;
    report(frames);
    if (current_->exhausted()) end();
    return there;
}

std::size_t TempoProcessor::read(std::span<float> out) {
    assertAudioThread();
    const std::size_t wanted = out.size() / channels_;
    std::size_t done = 0;
    while (done < wanted && current_ && !ended_) {
        std::uint64_t limit = TempoLane::kNowhere;
        if (const TempoLane* lane = next()) {
            if (lane->switchAt == current_->readAt()) {
                takeOver();
                continue;
            }
            limit = lane->switchAt;
        }
        if (diverges(limit)) break;
        const std::size_t got = current_->read(out.subspan(done * channels_), limit);
        done += got;
        report(got);
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
            std::uint64_t none = 0;
            if (!diverges(none)) end();
        } else if (got == 0 && limit != current_->readAt()) {
            underruns_.fetch_add(1, std::memory_order_relaxed);
            break;
        }
    }
    return done;
}

/// The heard position. A lane may begin a few milliseconds before the place where the last one was left: the
/// position then waits, it does not go back.
void TempoProcessor::report(std::size_t frames) {
    pass(frames);
    const std::uint64_t before = heard_.load(std::memory_order_relaxed);
    const std::uint64_t now = current_->sourceAt(current_->readAt());
    const bool back = now < before && before - now < framesOf(kHoldSeconds, rate_);
    if (!(back && heldLeft_ > 0)) heard_.store(now, std::memory_order_relaxed);
    heldLeft_ -= std::min(heldLeft_, frames);
}

}  // namespace zv::engine
