/// The inside of a tempo channel: tempo, pitch and rate over a source of frames.
///
/// Neutral, the audio thread reads the source itself, bit-exact and without delay, and only reports what it
/// played. Stretched, it reads a ring that a worker fills ahead: the stretching library allocates, so none of
/// it runs in a callback. Going from one to the other, and every change of the parameters or of the loop, is
/// prepared by the worker as a new ring (a lane) whose first 10 ms are already cross-faded with what sounds
/// now, together with the exact frame at which the audio thread changes over; a lane that comes too late is
/// thrown away and made again.
///
/// Frames are counted at the source's rate. Use by one channel:
///   [control]  setParameters(); after a seek prime(); both may be called at any time
///   [audio]    render loop: while frames are wanted { if neutral(): up to neutralRun() frames from the
///   source, then
///              passed(); else read() }; restart() when the channel is moved, setRange() when loop or end
///              change
///   [worker]   work() every 10 to 20 ms, and at once after setParameters(), restart() and setRange();
///   offline
///              before every rendered block, on the rendering thread itself
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include "engine/ports.h"

namespace zv {

/// The source by frame number, for the worker: does not move the position of what is playing.
class FrameReader {
  public:
    virtual ~FrameReader() = default;
    /// Copies frames from `frame` on, interleaved, into `out`; returns the frames copied. Fewer than asked:
    /// the end of the data, or not decoded yet. Asked for places near the heard position and near the loop
    /// start, in rising order mostly. [worker] [control]
    virtual std::size_t readAt(std::uint64_t frame, std::span<float> out) = 0;
};

/// Where the source ends or wraps.
struct PlayRange {
    std::uint64_t end = ~std::uint64_t{0};  ///< frame after the last; all ones: unknown yet, the data ends it
    std::uint64_t loopStart = 0;            ///< frame
    bool loop = false;
    bool operator==(const PlayRange&) const = default;
};

struct TempoParameters {
    double tempo = 0;  ///< percent, -95..5000; 0 unchanged
    double pitch = 0;  ///< semitones, -60..60; 0 unchanged
    double rate = 1;   ///< speed and pitch together, 0.05..20; 1 unchanged
    bool neutral() const { return tempo == 0 && pitch == 0 && rate == 1; }
    /// Source frames a frame of output.
    double speed() const { return (1 + tempo * 0.01) * rate; }
    bool operator==(const TempoParameters&) const = default;
};

class TempoLane;

class TempoProcessor {
  public:
    /// `rate` and `channels` are the source's. Cheap: buffers come with the first stretch. [control]
    TempoProcessor(std::uint32_t rate, std::uint32_t channels, std::shared_ptr<StretcherSource> stretchers,
                   FrameReader& reader);
    ~TempoProcessor();

    // ---- [control]
    /// Cut to the ranges of TempoParameters. Heard within about 50 ms (at once on a channel that does not
    /// sound, when work() has run before it starts).
    void setParameters(const TempoParameters& parameters);
    TempoParameters parameters() const;
    /// Prepares the sound from `frame` on, so that the restart(frame) that follows is stretched from its
    /// first frame. Takes about a millisecond; nothing to do while neutral. Without it restart() sounds
    /// neutral for the first 50 ms.
    void prime(std::uint64_t frame, const PlayRange& range);

    // ---- [audio]
    /// The channel goes on at `frame`: what is held is dropped.
    void restart(std::uint64_t frame);
    /// Loop and end from now on. Governs the very next wrap that is heard.
    void setRange(const PlayRange& range);
    /// True: the next frame comes from the source itself, at sourceFrame(). Changes over when its frame has
    /// come.
    bool neutral();
    /// After neutral() was true: frames to take from the source before asking again; at least 1.
    std::size_t neutralRun() const;
    /// `frames` frames of the source were played; the source stands at `frame` now (wrapped where it
    /// wrapped).
    void passed(std::size_t frames, std::uint64_t frame);
    /// The next `frames` stretched frames where they lie, and read with that; valid until the next call of
    /// the audio thread. Empty where they do not lie in one piece or something else follows them: use read().
    std::span<const float> view(std::size_t frames);
    /// Stretched frames into `out`; returns the frames written. Fewer than asked: ask neutral() (the sound
    /// goes on from the source) and ended(), else the worker was late (counted by starvations()).
    std::size_t read(std::span<float> out);
    /// The source has come to its end and everything of it was read.
    bool ended() const { return ended_; }

    // ---- [any]
    /// Heard position in the source's frames; stretched it is exact to 10 ms.
    std::uint64_t sourceFrame() const { return heard_.load(std::memory_order_relaxed); }
    std::uint64_t starvations() const { return starvations_.load(std::memory_order_relaxed); }
    /// Whether work() would do something now.
    bool workDue() const;

    // ---- [worker]
    /// Fills ahead, prepares changes. Returns at once when nothing is due. Calls from several threads take
    /// turns.
    void work();

  private:
    /// What the audio thread tells the worker, whole: written between two raises of `version`.
    struct Published {
        std::atomic<std::uint32_t> version{0}, epoch{0};
        std::atomic<std::uint64_t> clock{0}, start{0}, source{0}, end{~std::uint64_t{0}}, loopStart{0};
        std::atomic<bool> loop{false};
        std::atomic<TempoLane*> current{nullptr};
    };
    struct Snapshot {
        std::uint32_t epoch;
        std::uint64_t clock, start, source;
        PlayRange range;
        TempoLane* current;
    };

    void publish();
    void report(std::size_t frames);
    TempoLane* next();
    void takeOver();
    void drop(TempoLane* lane);
    Snapshot snapshot() const;
    std::uint64_t turn() const;

    TempoLane* freeLane();
    void offer(TempoLane* lane);
    bool offerStands(const TempoLane& lane, const Snapshot& now, const TempoParameters& wanted) const;
    void enter(const Snapshot& now, const TempoParameters& wanted);
    void change(const Snapshot& now, const TempoParameters& wanted);
    std::int64_t bestLag(std::span<const float> old, std::uint64_t source, const PlayRange& range);

    const std::uint32_t rate_, channels_;
    const std::shared_ptr<StretcherSource> stretchers_;
    FrameReader& reader_;

    mutable std::mutex parametersMutex_;  // control and worker
    TempoParameters parameters_;
    std::atomic<bool> wanted_{false};        // not neutral
    std::atomic<std::uint32_t> changes_{0};  // of the parameters
    // What work() last found in order: nothing but filling is due until turn() is another one.
    std::atomic<std::uint64_t> settled_{~std::uint64_t{0}};

    // [audio]
    TempoLane *current_ = nullptr, *next_ = nullptr;
    bool ended_ = false;
    std::uint32_t epoch_ = 0;
    std::uint64_t clock_ = 0, start_ = 0,
                  source_ = 0;  // frames passed while neutral; where that began; the source's frame
    PlayRange range_;
    std::size_t heldLeft_ = 0;

    // from the worker to the audio thread
    std::atomic<TempoLane*> offered_{nullptr}, primed_{nullptr};
    std::atomic<std::uint64_t> heard_{0}, starvations_{0};
    Published published_;

    std::mutex workMutex_;  // of everything below: control and worker
    std::vector<std::unique_ptr<TempoLane>> lanes_;
    TempoLane* pending_ = nullptr;  // made last
    std::vector<float> old_, search_;
};

}  // namespace zv
