/// The inside of a tempo channel: tempo, pitch and rate over a source of frames.
///
/// Neutral, the audio thread reads the source itself, bit-exact and without delay, and only reports what it
/// played. Stretched, it reads a ring that a worker fills ahead: sound is stretched by sequences of up to 90 ms, which
/// no callback has the time for. Going from one to the other, and every change of the parameters or of the loop, is
/// prepared by the worker as a new ring (a lane) whose first 10 ms are already cross-faded with what sounds
/// now, together with the exact frame at which the audio thread changes over; a lane that comes too late is
/// thrown away and made again. A slide is no change: the lane follows it by itself.
///
/// When loop or end change so shortly before they are due that no lane can be ready, the audio thread leaves
/// the lane at that frame by itself, cross-fades into the source and is stretched again a moment later.
///
/// Frames are counted at the source's rate. Use by one channel:
///   [control]  slide(); after a seek prime(); all may be called at any time
///   [audio]    render loop, while frames are wanted: if neutral(), up to neutralRun() frames from the source,
///              then passed() and fade(); else view() or read(). restart() when the channel is moved; idle()
///              while it is not pulled and a slide runs
///   [worker]   work() every 10 to 20 ms, and at once after slide(), restart() and a change of the
///              source's range; offline before every rendered block, on the rendering thread itself
#pragma once

#include <atomic>
#include <cstdint>
#include <span>

#include "engine/realtime/frame_reader.h"
#include "engine/tempo/work.h"

namespace zv::engine {

class TempoProcessor {
  public:
    /// `rate` and `channels` are the source's. Cheap: buffers come with the first stretch. [control]
    TempoProcessor(std::uint32_t rate, std::uint32_t channels, FrameReader& reader);

    // ---- [control]
    /// One of tempo, pitch and rate, from the value it has reached to `value`, cut to its range in TempoParameters,
    /// in `frames` of the clock; 0: at once, which is heard within about 50 ms (at once on a channel that does not
    /// sound, when work() has run before it starts). See TempoCurve::move.
    void slide(TempoPart part, double value, std::uint64_t frames, bool ratios);
    /// Their present values, also in the middle of a slide. [any]
    TempoParameters parameters() const { return wishes_.now(); }
    bool sliding(TempoPart part) const { return wishes_.sliding(part); }  ///< [any]
    /// Prepares the sound from `frame` on, so that the restart(frame) that follows is stretched from its
    /// first frame. Takes about a millisecond; nothing to do while neutral. Without it restart() sounds
    /// neutral for the first 50 ms.
    /// Nothing is primed while a worker is at this channel for long.
    void prime(std::uint64_t frame) { work_.prime(frame); }

    // ---- [audio]
    /// The channel was moved to `frame`: drops what was rendered ahead.
    void restart(std::uint64_t frame);
    /// True: the next frame comes from the source itself, at sourceFrame(). Changes over when its frame has
    /// come.
    bool neutral();
    /// After neutral() was true: frames to take from the source before asking again; at least 1.
    std::size_t neutralRun() const;
    /// `frames` frames of the source were played; the source stands at `frame` now (wrapped where it
    /// wrapped).
    void passed(std::size_t frames, std::uint64_t frame);
    /// True while the source's sound must still be faded in, by fade().
    bool fades() const { return fading_ != nullptr; }
    void fade(std::span<float> fromSource);
    /// The next `frames` stretched frames where they lie, and read with that; valid until the next call of
    /// the audio thread. Empty where they do not lie in one piece or something else follows them: use read().
    std::span<const float> view(std::size_t frames);
    /// Stretched frames into `out`; returns the frames written. Fewer than asked: ask neutral() (the sound
    /// goes on from the source) and ended(), else the worker was late (counted by underruns()).
    std::size_t read(std::span<float> out);
    /// The source has come to its end and everything of it was read.
    bool ended() const { return ended_; }
    /// Time passes without sound: slides run on.
    void idle(std::uint64_t frames);
    /// True while a slide runs.
    bool slides() const { return wishes_.slides(); }

    // ---- [any]
    /// Anything but neutral is wanted, now or at the end of a slide.
    bool wanted() const { return wishes_.wanted(); }
    /// Heard position in the source's frames; stretched it is exact to 10 ms.
    std::uint64_t sourceFrame() const { return heard_.load(std::memory_order_relaxed); }
    std::uint64_t underruns() const { return underruns_.load(std::memory_order_relaxed); }
    /// Whether work() would do something now.
    bool workDue() const { return work_.due(); }

    // ---- [worker]
    /// Fills ahead, prepares changes. Returns at once when nothing is due. Calls from several threads take
    /// turns.
    void work() { work_.work(); }

  private:
    void publish();
    void report(std::size_t frames);
    TempoLane* next();
    void takeOver();
    void leaveAt(std::uint64_t source, std::size_t fade);
    bool diverges(std::uint64_t& limit);
    void end();

    const std::uint32_t rate_, channels_;
    FrameReader& reader_;
    TempoWishes wishes_;
    TempoMeeting meeting_;
    TempoWork work_;

    // [audio]
    TempoLane *current_ = nullptr, *next_ = nullptr;
    TempoLane* fading_ = nullptr;  // the lane just left, fading out under the source's sound
    std::uint64_t fadeBegan_ = 0;  // its frame then
    std::size_t fadeFrames_ = 0;
    TempoLane* leaves_ = nullptr;  // the lane that something else must follow from its frame leaveDue_ on
    std::uint32_t leaveEpoch_ = 0;
    std::uint64_t leaveDue_ = 0, leaveThere_ = 0;  // leaveThere_: see TempoLane::divergesAt
    PlayRange leaveRange_;
    bool ended_ = false;
    std::uint32_t epoch_ = 0;                           // see TempoSnapshot
    std::uint64_t clock_ = 0, start_ = 0, source_ = 0;  // see TempoSnapshot
    std::size_t heldLeft_ = 0;

    std::atomic<std::uint64_t> heard_{0}, underruns_{0};
};

}  // namespace zv::engine
