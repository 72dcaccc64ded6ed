#include "engine/tempo/lane.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zv::engine {
namespace {

constexpr std::size_t kChunk = 512;  // frames handed on at a time
constexpr std::size_t kGrid =
    64;  // frames through which the parameters stand still; places are noted so often
constexpr double kMostLagSeconds = 0.008;
constexpr double kMostSteering = 2;  // times the curve's own tempo, either way
constexpr std::uint64_t kUnknown = ~std::uint64_t{0};

bool loops(const PlayRange& range) {
    return range.loop && range.end != kUnknown && range.loopStart < range.end;
}

}  // namespace

float fadeAt(std::size_t frame, std::size_t frames) {
    const float way = (static_cast<float>(frame) + 0.5F) / static_cast<float>(frames);
    return way * way * (3 - 2 * way);  // without a corner at either end
}

std::uint64_t advance(std::uint64_t frame, std::uint64_t frames, const PlayRange& range) {
    if (range.end == kUnknown) return frame + frames;
    if (frame < range.end && frames < range.end - frame) return frame + frames;
    if (!loops(range)) return range.end;
    // What lies past the end wraps at once.
    const std::uint64_t past = frame < range.end ? frames - (range.end - frame) : frames;
    return range.loopStart + past % (range.end - range.loopStart);
}

std::size_t readInOrder(FrameReader& reader, std::uint64_t& frame, std::span<float> out,
                        std::uint32_t channels, const PlayRange& range) {
    const std::size_t wanted = out.size() / channels;
    std::size_t done = 0;
    while (done < wanted) {
        if (frame >= range.end) {
            if (!loops(range)) break;
            frame = range.loopStart;
        }
        const auto part = static_cast<std::size_t>(std::min<std::uint64_t>(wanted - done, range.end - frame));
        const std::size_t got = reader.readAt(frame, out.subspan(done * channels, part * channels));
        frame += got;
        done += got;
        if (got < part) break;
    }
    return done;
}

TempoLane::TempoLane(std::uint32_t rate, std::uint32_t channels, std::size_t frames)
    : rate_(rate), channels_(channels), size_(kGrid) {
    while (size_ < frames) size_ *= 2;
    ring_.resize(size_ * channels_);
    places_.resize(2 * size_ / kGrid);
    chunk_.resize(kChunk * channels_);
    piece_.resize(kChunk * channels_);
    grid_.resize(kGrid * channels_);
}

void TempoLane::open(const TempoCurve& wanted, std::uint32_t number, std::uint64_t from) {
    curve = wanted;
    changes = number;
    base = from;
    leaves = false;
    stretches_ = curve.stretches(base);
    transposes_ = curve.transposes(base);
    if (transposes_ && !transposer_) transposer_ = std::make_unique<dsp::Transposer>(channels_);
    if (!stretches_) return;
    if (stretcher_)
        stretcher_->clear();
    else
        stretcher_ = std::make_unique<dsp::Stretcher>(rate_, channels_);
    setStretch(curve.at(base).stretch());
}

void TempoLane::setStretch(double ratio) {
    stretch_ = ratio;
    stretcher_->setTempo(ratio);
}

/// Sound is cut into sequences that play at their own speed and are strung together at another: their middle
/// lies in place, their beginnings and ends do not. The first one begins in place.
double TempoLane::lagAt(const TempoParameters& p) const {
    if (!stretches_) return 0;
    const double lag = (p.stretch() - 1) * static_cast<double>(stretcher_->sequence()) / 2;
    // A lane that nothing precedes has a limited lag: its positions stay near to what speed and time give.
    const double most = kMostLagSeconds * rate_;
    return settled_ ? lag : std::clamp(lag, -most, most);
}

void TempoLane::begin(std::uint64_t start, const PlayRange& where, bool settled) {
    adopt(where);
    startSource = start;
    settled_ = settled;
    clean = !settled_;
    const TempoParameters p = curve.at(base);
    // A filter that begins in the middle of a sound would take the beginning for an edge.
    lead_ = transposes_ ? std::min<std::uint64_t>(start, dsp::Transposer::reach(p.transposition())) : 0;
    if (transposes_) transposer_->reset(lead_);
    nextSource_ = start - lead_;
    lag_ = lag();
    least_ = settled_ ? -std::min(lag_, static_cast<double>(start)) : 0;
    fed_ = made_ = 0;
    place_ = 0;
    consumed_ = -static_cast<double>(lead_) * stretch_;
    wrapped_ = flushed_ = steered_ = false;
    charted_ = 0;
    written_ = read_ = 0;
    endAt_ = kNowhere;
    chart(0, p.speed());
}

void TempoLane::openLeaving(std::span<const float> content, std::uint64_t start, std::uint64_t next,
                            const PlayRange& where) {
    curve = {};
    stretches_ = transposes_ = false;
    adopt(where);
    leaves = true;
    clean = settled_ = false;
    startSource = nextSource_ = start;
    leaveSource = next;
    least_ = place_ = lag_ = 0;
    wrapped_ = false;
    flushed_ = true;
    charted_ = 0;
    written_ = read_ = 0;
    chart(content.size() / channels_, 1);
    store(content);
    endAt_ = content.size() / channels_;
}

/// Notes where the next `frames` frames lie, through which the speed stands still, and the grid's next step.
void TempoLane::chart(std::uint64_t frames, double speed) {
    const std::uint64_t at = written_.load(std::memory_order_relaxed);
    const std::size_t mask = places_.size() - 1;
    const std::uint64_t last = (at + frames + kGrid - 1) / kGrid;
    while (charted_ <= last) {
        const double there =
            place_ + speed * (static_cast<double>(charted_ * kGrid) - static_cast<double>(at));
        double counted = std::max(least_, there - lag_);
        if (charted_ > 0) counted = std::max(counted, places_[(charted_ - 1) & mask]);
        places_[charted_++ & mask] = counted;
    }
    place_ += speed * static_cast<double>(frames);
}

void TempoLane::store(std::span<const float> frames) {
    const std::uint64_t at = written_.load(std::memory_order_relaxed);
    const std::size_t count = frames.size() / channels_, start = at & (size_ - 1);
    const std::size_t first = std::min(count, size_ - start);
    std::copy_n(frames.data(), first * channels_, ring_.data() + start * channels_);
    std::copy_n(frames.data() + first * channels_, (count - first) * channels_, ring_.data());
    written_.store(at + count, std::memory_order_release);
}

/// The source in the order of play, with silence behind its end; 0 frames: not decoded yet.
std::size_t TempoLane::fromSource(FrameReader& reader, std::span<float> out) {
    if (!flushed_) {
        const PlayRange range = this->range();
        const std::uint64_t before = nextSource_;
        const std::size_t got = readInOrder(reader, nextSource_, out, channels_, range);
        fed_ += got;
        if (nextSource_ != before + got) wrapped_ = true;
        if (got > 0 || (nextSource_ < range.end && range.end != kUnknown)) return got;
        flushed_ = true;
    }
    std::ranges::fill(out, 0.0F);
    return out.size() / channels_;
}

/// The tempo of the next sequence: at its end the sound has come to where the curve is by then, however its
/// lag has changed on the way.
void TempoLane::steer() {
    const std::uint64_t now = written_.load(std::memory_order_relaxed);
    if (!curve.moves(base + now)) {
        const double last = curve.last().stretch();
        if (stretch_ != last) setStretch(last);
        return;
    }
    double at = transposes_ ? transposer_->position() : static_cast<double>(made_), place = place_;
    std::uint64_t frame = now;
    const auto walk = [&](double until) {
        while (at < until) {
            const TempoParameters p = curve.at(base + frame + kGrid / 2);
            const double pass = p.transposition() * kGrid, part = std::min(1.0, (until - at) / pass);
            place += p.speed() * kGrid * part;
            at += pass * part;
            frame += kGrid;
        }
    };
    const auto begin = static_cast<double>(made_);
    walk(begin);
    const double own = curve.at(base + frame).stretch();
    setStretch(own);
    const auto sequence = static_cast<double>(stretcher_->sequence());
    walk(begin + sequence);
    place += lagAt(curve.at(base + frame)) - lag_;
    setStretch(std::clamp((place - consumed_) / sequence, own / kMostSteering, own * kMostSteering));
}

/// What the stretcher makes; 0 frames: the source is not decoded yet.
std::size_t TempoLane::makeStretched(FrameReader& reader, std::span<float> out) {
    if (!stretches_) return fromSource(reader, out);
    while (stretcher_->ready() == 0) {
        if (!std::exchange(steered_, true)) steer();
        if (const std::size_t lacking = stretcher_->lacking(); lacking > 0) {
            const std::span<float> part(chunk_.data(), std::min(lacking, kChunk) * channels_);
            const std::size_t got = fromSource(reader, part);
            if (got == 0) return 0;
            stretcher_->put(part.first(got * channels_));
            continue;
        }
        const std::size_t made = stretcher_->make();
        made_ += made;
        consumed_ += stretch_ * static_cast<double>(made);
        steered_ = false;
    }
    return stretcher_->take(out);
}

/// Fills grid_ through the transposer; false while the source is not decoded.
bool TempoLane::makeTransposed(FrameReader& reader, std::size_t frames, double speed) {
    while (const std::size_t needed = transposer_->needed(frames, speed)) {
        const std::size_t got = makeStretched(reader, {piece_.data(), std::min(needed, kChunk) * channels_});
        if (got == 0) return false;
        transposer_->push({piece_.data(), got * channels_});
    }
    transposer_->make({grid_.data(), frames * channels_}, speed);
    return true;
}

/// Frames that the source still has to give at `speed`. Behind its end silence follows: what belongs to the
/// source counts.
std::size_t TempoLane::rest(double speed) const {
    if (!flushed_) return ~std::size_t{0};
    const double behind = lagAt(curve.at(base + written_.load(std::memory_order_relaxed))) - lag_;
    const double left = static_cast<double>(fed_ - std::min(fed_, lead_)) - place_ - behind;
    return static_cast<std::size_t>(std::max(0.0, std::round(left / speed)));
}

/// Renders the next stretch; false when there is none (yet).
bool TempoLane::step(FrameReader& reader) {
    const std::uint64_t at = written_.load(std::memory_order_relaxed);
    const bool moves = curve.moves(base + at);
    const TempoParameters p = moves ? curve.at(base + at + kGrid / 2) : curve.last();
    const double speed = p.speed();
    std::size_t frames = moves || transposes_ ? kGrid - at % kGrid : kChunk;
    const std::size_t start = at & (size_ - 1);
    frames = std::min({frames, rest(speed), size_ - start});
    if (frames > 0 && transposes_) {
        if (!makeTransposed(reader, frames, p.transposition())) return false;
        frames = std::min(frames, rest(speed));
        std::copy_n(grid_.data(), frames * channels_, ring_.data() + start * channels_);
    } else if (frames > 0) {
        frames = makeStretched(reader, {ring_.data() + start * channels_, frames * channels_});
        if (frames == 0) return false;
        frames = std::min(frames, rest(speed));
    }
    if (frames == 0) {
        endAt_.store(at, std::memory_order_release);
        return false;
    }
    chart(frames, speed);
    written_.store(at + frames, std::memory_order_release);
    return true;
}

void TempoLane::fill(FrameReader& reader, std::size_t ahead) {
    ahead = std::min(ahead, size_ - kChunk);
    while (!finished() && this->ahead() < ahead && step(reader)) {
    }
}

void TempoLane::fadeFrom(std::span<const float> old) {
    clean = false;
    const std::size_t frames = std::min<std::size_t>(old.size() / channels_, ahead());
    for (std::size_t i = 0; i < frames; ++i) {
        const float t = fadeAt(i, frames);
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

double TempoLane::placeAt(std::uint64_t frame) const {
    const std::size_t mask = places_.size() - 1;
    const std::uint64_t entry = frame / kGrid, part = frame % kGrid;
    const double from = places_[entry & mask];
    if (part == 0) return from;
    return from + (places_[(entry + 1) & mask] - from) * static_cast<double>(part) / kGrid;
}

std::uint64_t TempoLane::sourceAt(std::uint64_t frame) const {
    const double played = placeAt(frame);
    if (played < 0)
        return startSource -
               static_cast<std::uint64_t>(std::min<double>(-played, static_cast<double>(startSource)));
    return advance(startSource, static_cast<std::uint64_t>(std::llround(played)), range());
}

std::uint64_t TempoLane::divergesAt(const PlayRange& other, std::uint64_t from, std::uint64_t& there) const {
    const PlayRange own = range();
    const std::uint64_t here = sourceAt(from), first = std::min(own.end, other.end);
    const bool same = other.end == own.end && loops(other) == loops(own) &&
                      (!loops(own) || other.loopStart == own.loopStart);
    if (same || first == kUnknown) return kNowhere;
    there = other.end > own.end ? own.end : loops(other) ? other.loopStart : kNowhere;
    if (here >= first) return from;
    const std::uint64_t written = written_.load(std::memory_order_acquire);
    const double until = placeAt(from) + static_cast<double>(first - here);
    if (placeAt(written) < until) return finished() ? std::max(written, from) : kNowhere;
    std::uint64_t low = from, high = written;  // the place only rises
    while (low < high) {
        const std::uint64_t middle = low + (high - low) / 2;
        if (placeAt(middle) < until)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

}  // namespace zv::engine
