#include "engine/tempo_lane.h"

#include <algorithm>
#include <cmath>

namespace zv {
namespace {

constexpr std::size_t kChunk = 512;  // source frames handed over at a time
constexpr std::uint64_t kTransposerFrames = 128;
constexpr double kMostLagSeconds = 0.008;
constexpr std::uint64_t kUnknown = ~std::uint64_t{0};

bool loops(const PlayRange& range) {
    return range.loop && range.end != kUnknown && range.loopStart < range.end;
}

}  // namespace

std::uint64_t advance(std::uint64_t frame, std::uint64_t frames, const PlayRange& range) {
    if (range.end == kUnknown) return frame + frames;
    // A position set behind the end plays on to the end of the data, as the source itself does.
    if (frame > range.end) return frame + frames;
    if (frames < range.end - frame) return frame + frames;
    if (!loops(range)) return range.end;
    return range.loopStart + (frames - (range.end - frame)) % (range.end - range.loopStart);
}

std::size_t readInOrder(FrameReader& reader, std::uint64_t& frame, std::span<float> out,
                        std::uint32_t channels, const PlayRange& range) {
    const std::size_t wanted = out.size() / channels;
    std::size_t done = 0;
    while (done < wanted) {
        if (frame == range.end) {
            if (!loops(range)) break;
            frame = range.loopStart;
        }
        std::size_t part = wanted - done;
        if (frame < range.end)
            part = static_cast<std::size_t>(std::min<std::uint64_t>(part, range.end - frame));
        const std::size_t got = reader.readAt(frame, out.subspan(done * channels, part * channels));
        frame += got;
        done += got;
        if (got < part) break;
    }
    return done;
}

TempoLane::TempoLane(std::uint32_t rate, std::uint32_t channels, std::size_t frames)
    : rate_(rate), channels_(channels), size_(1) {
    while (size_ < frames) size_ *= 2;
    ring_.resize(size_ * channels_);
    chunk_.resize(kChunk * channels_);
}

bool TempoLane::open(StretcherSource& stretchers, const TempoParameters& wanted) {
    if (stretcher_)
        stretcher_->clear();
    else
        stretcher_ = stretchers.make(rate_, channels_);
    if (!stretcher_) return false;
    parameters = wanted;
    leaves = false;
    stretcher_->setTempo(wanted.tempo);
    stretcher_->setPitch(wanted.pitch);
    stretcher_->setRate(wanted.rate);
    speed_ = wanted.speed();
    lag_ = stretcher_->lag();
    return true;
}

void TempoLane::begin(std::uint64_t start, const PlayRange& where, bool settled) {
    adopt(where);
    startSource = start;
    clean = !settled;
    // A transposer that begins in the middle of a sound would take the beginning for an edge.
    const bool transposes = parameters.pitch != 0 || parameters.rate != 1;
    lead_ = transposes ? std::min<std::uint64_t>(start, kTransposerFrames) : 0;
    skip_ = static_cast<std::size_t>(std::llround(static_cast<double>(lead_) / speed_));
    nextSource_ = start - lead_;
    // Where nothing sounded before, counting stays near to what speed and time say, however far apart the
    // sequences.
    const double most = kMostLagSeconds * rate_;
    if (!settled) lag_ = std::clamp(lag_, -most, most);
    least_ = settled ? -std::min(lag_, static_cast<double>(start)) : 0;
    fed_ = 0;
    wrapped_ = flushed_ = false;
    written_ = read_ = 0;
    endAt_ = kNoEnd;
}

void TempoLane::openLeaving(std::span<const float> content, std::uint64_t start, std::uint64_t next,
                            const PlayRange& where) {
    parameters = {};
    adopt(where);
    leaves = true;
    clean = false;
    startSource = start;
    leaveSource = next;
    speed_ = 1;
    lag_ = least_ = 0;
    wrapped_ = false;
    flushed_ = true;
    written_ = read_ = 0;
    store(content);
    endAt_ = content.size() / channels_;
}

void TempoLane::store(std::span<const float> frames) {
    const std::uint64_t at = written_.load(std::memory_order_relaxed);
    const std::size_t count = frames.size() / channels_, start = at & (size_ - 1);
    const std::size_t first = std::min(count, size_ - start);
    std::copy_n(frames.data(), first * channels_, ring_.data() + start * channels_);
    std::copy_n(frames.data() + first * channels_, (count - first) * channels_, ring_.data());
    written_.store(at + count, std::memory_order_release);
}

/// Hands the next stretch of the source over; false when there is none (yet).
bool TempoLane::feed(FrameReader& reader) {
    if (flushed_) return false;
    const PlayRange range = this->range();
    const std::uint64_t before = nextSource_;
    const std::size_t got = readInOrder(reader, nextSource_, chunk_, channels_, range);
    if (got > 0) {
        stretcher_->put({chunk_.data(), got * channels_});
        fed_ += got;
        if (nextSource_ != before + got) wrapped_ = true;
        return true;
    }
    const bool over = nextSource_ == range.end || range.end == kUnknown || nextSource_ > range.end;
    if (!over) return false;
    stretcher_->flush();
    flushed_ = true;
    return true;
}

void TempoLane::fill(FrameReader& reader, std::size_t ahead) {
    ahead = std::min(ahead, size_ - kChunk);
    while (!finished() && this->ahead() < ahead) {
        if (stretcher_->ready() == 0) {
            if (feed(reader)) continue;
            if (flushed_) endAt_.store(written_.load(std::memory_order_relaxed), std::memory_order_release);
            break;
        }
        std::size_t part = kChunk;
        if (skip_ > 0) {
            skip_ -= stretcher_->take({chunk_.data(), std::min(skip_, kChunk) * channels_});
            continue;
        }
        const std::uint64_t written = written_.load(std::memory_order_relaxed);
        if (flushed_) {  // a flush pushes silence out too: what belongs to the source counts
            const auto total = static_cast<std::uint64_t>(
                std::llround(static_cast<double>(fed_ - std::min(fed_, lead_)) / speed_));
            part = static_cast<std::size_t>(std::min<std::uint64_t>(part, total - std::min(total, written)));
        }
        const std::size_t got = part == 0 ? 0 : stretcher_->take({chunk_.data(), part * channels_});
        store({chunk_.data(), got * channels_});
        if (got == 0) endAt_.store(written_.load(std::memory_order_relaxed), std::memory_order_release);
    }
}

void TempoLane::fadeFrom(std::span<const float> old) {
    clean = false;
    const std::size_t frames = std::min<std::size_t>(old.size() / channels_, ahead());
    for (std::size_t i = 0; i < frames; ++i) {
        const float way = (static_cast<float>(i) + 0.5f) / static_cast<float>(frames);
        const float t = way * way * (3 - 2 * way);  // without a corner at either end
        for (std::uint32_t c = 0; c < channels_; ++c) {
            float& v = ring_[i * channels_ + c];
            v = old[i * channels_ + c] + (v - old[i * channels_ + c]) * t;
        }
    }
}

bool TempoLane::peek(std::uint64_t frame, std::span<float> out) const {
    const std::size_t count = out.size() / channels_;
    if (frame + count > written_.load(std::memory_order_relaxed)) return false;
    for (std::size_t i = 0; i < count; ++i)
        std::copy_n(ring_.data() + ((frame + i) & (size_ - 1)) * channels_, channels_,
                    out.data() + i * channels_);
    return true;
}

bool TempoLane::playsOtherwise(const PlayRange& other) const {
    const PlayRange range = this->range();
    if (other == range) return false;
    return wrapped_ || flushed_ || startSource > range.end || startSource > other.end ||
           nextSource_ > other.end;
}

void TempoLane::adopt(const PlayRange& other) {
    end_.store(other.end, std::memory_order_release);
    loopStart_.store(other.loopStart, std::memory_order_release);
    loop_.store(other.loop, std::memory_order_release);
}

PlayRange TempoLane::range() const {
    return {end_.load(std::memory_order_acquire), loopStart_.load(std::memory_order_acquire),
            loop_.load(std::memory_order_acquire)};
}

std::size_t TempoLane::read(std::span<float> out, std::uint64_t limit) {
    const std::uint64_t at = read_.load(std::memory_order_relaxed);
    limit = std::min(limit, written_.load(std::memory_order_acquire));
    const std::size_t wanted = out.size() / channels_;
    const std::size_t count =
        limit > at ? static_cast<std::size_t>(std::min<std::uint64_t>(wanted, limit - at)) : 0;
    const std::size_t start = at & (size_ - 1), first = std::min(count, size_ - start);
    std::copy_n(ring_.data() + start * channels_, first * channels_, out.data());
    std::copy_n(ring_.data(), (count - first) * channels_, out.data() + first * channels_);
    read_.store(at + count, std::memory_order_release);
    return count;
}

std::span<const float> TempoLane::view(std::size_t frames) {
    const std::uint64_t at = read_.load(std::memory_order_relaxed), start = at & (size_ - 1);
    if (start + frames > size_ || at + frames > written_.load(std::memory_order_acquire)) return {};
    // What is written from now on stays this far away from what was just read.
    if (frames > size_ / 4) return {};
    read_.store(at + frames, std::memory_order_release);
    return {ring_.data() + start * channels_, frames * channels_};
}

std::uint64_t TempoLane::sourceAt(std::uint64_t frame) const {
    const double played = std::max(least_, static_cast<double>(frame) * speed_ - lag_);
    if (played < 0)
        return startSource -
               static_cast<std::uint64_t>(std::min<double>(-played, static_cast<double>(startSource)));
    return advance(startSource, static_cast<std::uint64_t>(std::llround(played)), range());
}

}  // namespace zv
