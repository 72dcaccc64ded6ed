#include "engine/tempo/processor.h"

#include <algorithm>
#include <array>

namespace zv::engine {
namespace {

constexpr double kHoldSeconds = 0.05;  // that a position waits at most after a change

}  // namespace

TempoProcessor::TempoProcessor(std::uint32_t rate, std::uint32_t channels, FrameReader& reader)
    : rate_(std::max(rate, 1u)),
      channels_(std::max(channels, 1u)),
      reader_(reader),
      work_(rate_, channels_, reader, wishes_, meeting_) {}

void TempoProcessor::slide(TempoPart part, double value, std::uint64_t frames, bool ratios) {
    wishes_.slide(part, value, frames, ratios);
}

void TempoProcessor::publish() {
    const std::uint64_t at = current_ ? current_->readAt() : clock_;
    meeting_.publish(epoch_, clock_, start_, source_, wishes_.time() - at, current_);
}

void TempoProcessor::restart(std::uint64_t frame) {
    ++epoch_;
    ended_ = false;
    if (current_) current_->retire();
    if (fading_) fading_->retire();
    current_ = fading_ = nullptr;
    start_ = clock_;
    source_ = frame;
    // A lane that was primed for it, or one that waits for the start from here.
    TempoLane* primed = meeting_.primed.exchange(nullptr);
    if (TempoLane* lane =
            meeting_.offered.load(std::memory_order_relaxed) ? meeting_.offered.exchange(nullptr) : nullptr) {
        if (next_) next_->retire();
        next_ = lane;
    }
    for (TempoLane* lane : {primed, next_}) {
        if (!lane) continue;
        const bool fits =
            !current_ && lane->clean && lane->startSource == frame && lane->readAt() == 0 && wishes_.wanted();
        if (!fits) {
            lane->retire();
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
    if (meeting_.offered.load(std::memory_order_relaxed)) {
        TempoLane* lane = meeting_.offered.exchange(nullptr);
        if (lane && next_) next_->retire();
        if (lane) next_ = lane;
    }
    if (!next_) return nullptr;
    const bool late = next_->switchAt < (current_ ? current_->readAt() : clock_);
    const bool stands = next_->state.load(std::memory_order_acquire) == TempoLane::State::made;
    if (!late && stands && next_->after == current_ && next_->epoch == epoch_) return next_;
    next_->retire();
    next_ = nullptr;
    return nullptr;
}

void TempoProcessor::takeOver() {
    if (current_) current_->retire();
    if (fading_) fading_->retire();
    current_ = next_;
    next_ = fading_ = nullptr;
    current_->state.store(TempoLane::State::playing, std::memory_order_release);
    heldLeft_ = tempoFrames(kHoldSeconds, rate_);
    publish();
}

/// The source goes on by itself at `source`, with the lane still sounding below its first frames.
void TempoProcessor::leaveAt(std::uint64_t source, std::size_t fade) {
    if (fading_) fading_->retire();
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
        fading_->retire();
        fading_ = nullptr;
    }
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
    wishes_.pass(frames);
    source_ = frame;
    heard_.store(frame, std::memory_order_relaxed);
    publish();
}

void TempoProcessor::idle(std::uint64_t frames) {
    wishes_.pass(frames);
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
    const std::uint64_t fade = tempoFrames(kTempoFadeSeconds, rate_), due = leaveDue_;
    std::uint64_t at = due;
    // Early enough to fade while both sound alike, unless another lane is there in time.
    if (leaveThere_ != TempoLane::kNowhere && limit > at) at = std::max(now, at - std::min(at, fade));
    limit = std::min(limit, at);
    if (at > now) return false;
    if (leaveThere_ == TempoLane::kNowhere) {
        end();
    } else {
        leaveAt(now < due ? current_->sourceAt(now) : leaveThere_,
                static_cast<std::size_t>(
                    std::clamp<std::uint64_t>(due - std::min(due, now), kLeastTempoFade, fade)));
    }
    leaves_ = nullptr;
    return true;
}

std::span<const float> TempoProcessor::view(std::size_t frames) {
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
                current_->retire();
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
    wishes_.pass(frames);
    const std::uint64_t before = heard_.load(std::memory_order_relaxed);
    const std::uint64_t now = current_->sourceAt(current_->readAt());
    const bool back = now < before && before - now < tempoFrames(kHoldSeconds, rate_);
    if (!(back && heldLeft_ > 0)) heard_.store(now, std::memory_order_relaxed);
    heldLeft_ -= std::min(heldLeft_, frames);
}

}  // namespace zv::engine
