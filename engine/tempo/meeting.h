/// Where the two sides of a tempo channel meet: what the audio thread tells the worker, and the lanes that the
/// worker offers to it.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "engine/ports.h"
#include "engine/tempo/lane.h"

namespace zv::engine {

/// What the audio thread says of itself. Seqlock: the version is odd while the data is being updated.
struct TempoPublished {
    std::atomic<std::uint32_t> version{0}, epoch{0};
    std::atomic<std::uint64_t> clock{0}, start{0}, source{0}, zero{0};
    std::atomic<TempoLane*> current{nullptr};
};

/// One state of TempoPublished, with the source's range.
struct TempoSnapshot {
    std::uint32_t epoch;         ///< restarts of the channel
    std::uint64_t clock, start;  ///< frames passed while neutral; where that began
    std::uint64_t source;        ///< the source's frame
    std::uint64_t zero;          ///< time of frame 0 of the lane, or of the neutral clock
    TempoLane* current;          ///< the lane that plays; null: the source itself
    PlayRange range;
    /// Frame of the lane, or of the neutral clock, that is heard next.
    std::uint64_t at() const { return current ? current->readAt() : clock; }
};

struct TempoMeeting {
    TempoPublished published;
    /// From the worker to the audio thread: the lane to change over to, and the lane for a restart to come.
    std::atomic<TempoLane*> offered{nullptr}, primed{nullptr};

    /// [audio]
    void publish(std::uint32_t epoch, std::uint64_t clock, std::uint64_t start, std::uint64_t source,
                 std::uint64_t zero, TempoLane* current);
    /// [worker]
    TempoSnapshot snapshot(const FrameReader& reader) const;
};

inline constexpr double kTempoFadeSeconds = 0.01;      ///< of every change-over
inline constexpr std::uint64_t kLeastTempoFade = 128;  ///< frames of it, at least

inline std::size_t tempoFrames(double seconds, std::uint32_t rate) {
    return static_cast<std::size_t>(seconds * rate);
}

}  // namespace zv::engine
