/// A sound by frame number, as the stretching worker reads it, and where it ends or wraps.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace zv::engine {

/// Where the source ends or wraps.
struct PlayRange {
    std::uint64_t end = ~std::uint64_t{0};  ///< frame after the last; all ones: unknown yet, the data ends it
    std::uint64_t loopStart = 0;            ///< frame
    bool loop = false;
    bool operator==(const PlayRange&) const = default;
};

/// The source by frame number, for the worker: does not move the position of what is playing.
class FrameReader {
  public:
    virtual ~FrameReader() = default;
    /// Copies frames from `frame` on, interleaved, into `out`; returns the frames copied. Fewer than asked:
    /// the end of the data, or not decoded yet. Most calls ask near the heard position or the loop start, in
    /// rising order. [worker] [control]
    virtual std::size_t readAt(std::uint64_t frame, std::span<float> out) = 0;
    /// Where it ends or wraps now. [any]
    virtual PlayRange range() const = 0;
};

}  // namespace zv::engine
