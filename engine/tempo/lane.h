/// A lane of a tempo channel: stretched sound rendered ahead by the worker, read by the audio thread.
///
/// The source passes the stretcher, which changes its tempo, and then the transposer, which changes pitch and
/// speed together; what stays unchanged throughout is left out. A lane follows a curve of parameters from the
/// frame on at which it takes over. The transposer follows it in steps of 64 frames; the stretcher works in
/// sequences, each of which is given the tempo that brings it where the curve is at its end.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "engine/dsp/stretcher.h"
#include "engine/dsp/transposer.h"
#include "engine/realtime/frame_reader.h"
#include "engine/tempo/curve.h"

namespace zv::engine {

/// The source frame reached after playing `frames` frames from `frame` on, loop included. [any]
std::uint64_t advance(std::uint64_t frame, std::uint64_t frames, const PlayRange& range);
/// The same source read in the order of play: follows the loop. Returns the frames read. [worker] [control]
std::size_t readInOrder(FrameReader& reader, std::uint64_t& frame, std::span<float> out,
                        std::uint32_t channels, const PlayRange& range);

/// Share of the new sound, 0 to 1, at `frame` of a cross-fade of `frames`. [any]
float fadeAt(std::size_t frame, std::size_t frames);

class TempoLane {
  public:
    /// withdrawn: offered, but loop or end have changed since, and it may already lie behind them.
    enum class State : std::uint8_t { free, made, withdrawn, playing, retired };
    static constexpr std::uint64_t kNowhere = ~std::uint64_t{0};

    TempoLane(std::uint32_t rate, std::uint32_t channels, std::size_t frames);

    std::atomic<State> state{State::free};

    // ---- fixed when it is offered
    TempoCurve curve;
    std::uint32_t changes = 0;   ///< number of that curve among the channel's
    std::uint64_t base = 0;      ///< time of its frame 0
    std::uint32_t epoch = 0;     ///< restarts of the channel when it was made
    TempoLane* after = nullptr;  ///< the lane that it follows; null: the source itself
    std::uint64_t switchAt = 0;  ///< frame of `after`, or of the channel's clock, at which it takes over
    bool leaves = false;         ///< a cross-fade back to the source, which goes on at leaveSource
    std::uint64_t leaveSource = 0;
    std::uint64_t startSource = 0;  ///< of frame 0
    bool clean = false;             ///< no cross-fade at its beginning: any start at startSource may use it

    // ---- [worker]
    /// Takes the curve, whose frame `from` is the lane's first, before begin().
    void open(const TempoCurve& wanted, std::uint32_t number, std::uint64_t from);
    /// Average delay of the stretcher's sound, in source frames; after open().
    double lag() const { return lagAt(curve.at(base)); }
    /// The first frame is source frame `start`. `settled`: positions begin lag() earlier, as in a lane that
    /// has run for long; else they stay at `start` until that much has passed (nothing sounded before).
    void begin(std::uint64_t start, const PlayRange& where, bool settled);
    /// Begins a lane of `content` only, after which the source goes on at `next`.
    void openLeaving(std::span<const float> content, std::uint64_t start, std::uint64_t next,
                     const PlayRange& where);
    /// Renders until `ahead` frames wait for the reader, or the source gives no more.
    void fill(FrameReader& reader, std::size_t ahead);
    /// Fades from `old` into the frames written first; before anyone reads.
    void fadeFrom(std::span<const float> old);
    /// Copies rendered frames without taking them; false when not all of them are rendered.
    bool peek(std::uint64_t frame, std::span<float> out) const;
    /// True when a frame already rendered would be another one under `other`.
    bool playsOtherwise(const PlayRange& other) const;
    /// Follows `other` from now on; what was rendered must be the same under it.
    void adopt(const PlayRange& other);
    bool finished() const { return endAt_.load(std::memory_order_acquire) != kNowhere; }
    std::size_t ahead() const {
        return static_cast<std::size_t>(written_.load(std::memory_order_acquire) - readAt());
    }

    // ---- [audio]
    /// Takes frames up to lane frame `limit`; returns how many.
    std::size_t read(std::span<float> out, std::uint64_t limit);
    /// Takes the next `frames` and returns them in place; empty when the ring does not hold them in one piece.
    /// The worker does not overwrite them before the next call.
    std::span<const float> view(std::size_t frames);
    bool exhausted() const { return readAt() >= endAt_.load(std::memory_order_acquire); }

    // ---- [any]
    /// Whoever holds it has no use for it any more: it may be made anew.
    void retire() { state.store(State::retired, std::memory_order_release); }
    std::uint64_t readAt() const { return read_.load(std::memory_order_acquire); }
    /// The source's frame that is heard, on average, with lane frame `frame`: one that was rendered and not
    /// heard long ago.
    std::uint64_t sourceAt(std::uint64_t frame) const;
    /// The first lane frame from `from` on that is another one under `other`; kNowhere: none of those
    /// rendered. `there`: where the source goes on then, kNowhere where it ends.
    std::uint64_t divergesAt(const PlayRange& other, std::uint64_t from, std::uint64_t& there) const;
    PlayRange range() const;

  private:
    bool step(FrameReader& reader);
    bool makeTransposed(FrameReader& reader, std::size_t frames, double speed);
    std::size_t makeStretched(FrameReader& reader, std::span<float> out);
    std::size_t fromSource(FrameReader& reader, std::span<float> out);
    void steer();
    void setStretch(double ratio);
    void chart(std::uint64_t frames, double speed);
    void store(std::span<const float> frames);
    std::size_t rest(double speed) const;
    double lagAt(const TempoParameters& p) const;
    double placeAt(std::uint64_t frame) const;

    std::uint32_t rate_, channels_;
    std::size_t size_;  // frames of the ring, a power of two
    std::vector<float> ring_, chunk_, piece_, grid_;
    std::vector<double> places_;  // source frames from startSource on, one entry a grid step of lane frames
    std::unique_ptr<dsp::Stretcher> stretcher_;
    std::unique_ptr<dsp::Transposer> transposer_;
    std::atomic<std::uint64_t> written_{0}, read_{0}, endAt_{kNowhere};
    // Separate atomic values suffice: adopt() only changes what has not been rendered yet.
    std::atomic<std::uint64_t> end_{0}, loopStart_{0};
    std::atomic<bool> loop_{false};

    bool stretches_ = false, transposes_ = false;
    bool settled_ = false, wrapped_ = false, flushed_ = false;
    double least_ = 0, lag_ = 0;              // lag_: at the beginning; kept all the way
    std::uint64_t fed_ = 0, nextSource_ = 0;  // source frames taken; the next one
    std::uint64_t lead_ = 0;                  // of fed_: only to fill the transposer's filter
    double place_ = 0;                        // source frames that the curve has covered at written_
    std::uint64_t charted_ = 0;               // entries of places_ that are valid
    double stretch_ = 1;                      // ratio set in the stretcher
    double consumed_ = 0;                     // source frames in all that it made, on average
    std::uint64_t made_ = 0;                  // frames that it made
    bool steered_ = false;                    // the tempo of the next sequence is set
};

}  // namespace zv::engine
