/// A lane of a tempo channel: stretched sound rendered ahead by the worker, read by the audio thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "engine/tempo_processor.h"

namespace zv {

/// Where in the source the frame lies that is `frames` of play after `frame`. [any]
std::uint64_t advance(std::uint64_t frame, std::uint64_t frames, const PlayRange& range);
/// The same source read in the order of play: follows the loop. Returns the frames read. [worker] [control]
std::size_t readInOrder(FrameReader& reader, std::uint64_t& frame, std::span<float> out,
                        std::uint32_t channels, const PlayRange& range);

class TempoLane {
  public:
    enum class State : std::uint8_t { free, made, playing, retired };

    TempoLane(std::uint32_t rate, std::uint32_t channels, std::size_t frames);

    std::atomic<State> state{State::free};

    // ---- fixed when it is offered
    TempoParameters parameters;
    std::uint32_t epoch = 0;     ///< restarts of the channel when it was made
    TempoLane* after = nullptr;  ///< the lane that it follows; null: the source itself
    std::uint64_t switchAt = 0;  ///< frame of `after`, or of the channel's clock, at which it takes over
    bool leaves = false;         ///< a cross-fade back to the source, which goes on at leaveSource
    std::uint64_t leaveSource = 0;
    std::uint64_t startSource = 0;  ///< of frame 0
    bool clean = false;             ///< begins in place, with nothing faded in: good for any start from there

    // ---- [worker]
    /// Takes the stretcher's parameters, before begin(); false when the stretcher cannot be had.
    bool open(StretcherSource& stretchers, const TempoParameters& wanted);
    /// Source frames by which the sound lies behind the place it is counted at, on average; after open().
    double lag() const { return lag_; }
    /// The first frame is source frame `start`. `settled`: it is counted by that much earlier, as all later
    /// ones are; else the count waits at `start` (nothing sounded before).
    void begin(std::uint64_t start, const PlayRange& where, bool settled);
    /// Begins a lane of `content` only, after which the source goes on at `next`.
    void openLeaving(std::span<const float> content, std::uint64_t start, std::uint64_t next,
                     const PlayRange& where);
    /// Renders until `ahead` frames wait for the reader, or the source gives no more.
    void fill(FrameReader& reader, std::size_t ahead);
    /// Fades from `old` into the frames written first; before anyone reads.
    void fadeFrom(std::span<const float> old);
    /// Copies frames that wait; false when not all of them are there.
    bool peek(std::uint64_t frame, std::span<float> out) const;
    /// Whether something that `other` would play otherwise was rendered already.
    bool playsOtherwise(const PlayRange& other) const;
    /// Goes on under `other`, which changes nothing of what was rendered.
    void adopt(const PlayRange& other);
    bool finished() const { return endAt_.load(std::memory_order_acquire) != kNoEnd; }
    std::size_t ahead() const {
        return static_cast<std::size_t>(written_.load(std::memory_order_acquire) - readAt());
    }

    // ---- [audio]
    /// Takes frames up to lane frame `limit`; returns how many.
    std::size_t read(std::span<float> out, std::uint64_t limit);
    /// The next `frames` where they lie, taken with that; empty where they are not all there in one piece.
    /// The worker leaves them alone until a good while after the next call.
    std::span<const float> view(std::size_t frames);
    bool exhausted() const { return readAt() >= endAt_.load(std::memory_order_acquire); }

    // ---- [any]
    std::uint64_t readAt() const { return read_.load(std::memory_order_acquire); }
    /// The source's frame that is heard, on average, with lane frame `frame`.
    std::uint64_t sourceAt(std::uint64_t frame) const;
    PlayRange range() const;

  private:
    static constexpr std::uint64_t kNoEnd = ~std::uint64_t{0};

    bool feed(FrameReader& reader);
    void store(std::span<const float> frames);

    std::uint32_t rate_, channels_;
    std::size_t size_;  // frames of the ring, a power of two
    std::vector<float> ring_, chunk_;
    std::unique_ptr<Stretcher> stretcher_;
    std::atomic<std::uint64_t> written_{0}, read_{0}, endAt_{kNoEnd};
    // One by one is enough: adopt() only changes what lies ahead of everything rendered.
    std::atomic<std::uint64_t> end_{0}, loopStart_{0};
    std::atomic<bool> loop_{false};
    double speed_ = 1, lag_ = 0, least_ = 0;
    std::uint64_t fed_ = 0, nextSource_ = 0;  // source frames handed to the stretcher; the next one
    std::uint64_t lead_ = 0;                  // of fed_: only to fill the transposer's filter
    std::size_t skip_ = 0;                    // frames of output that belong to it and are still to come
    bool wrapped_ = false, flushed_ = false;
};

}  // namespace zv
