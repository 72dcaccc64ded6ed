/// Levels on demand. Where a channel's sound is mixed straight from decoded pages, the audio side only
/// notes which frames were heard. A thread that asks for a level computes it from the pages, at that
/// moment.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

#include "engine/dsp/level_meter.h"

namespace zv::engine {

/// The last frames that were heard, newest last. One thread writes, any thread reads, nobody waits.
class Trail {
  public:
    struct Run {
        std::uint64_t from = 0, to = 0;
        float gain = 1;
    };
    static constexpr std::size_t kRuns = 32;

    void reset();  ///< [audio]
    /// Frames that were heard with `gain`. [audio]
    void add(std::uint64_t from, std::uint32_t count, float gain);
    /// The newest runs, at most `frames` frames in all; returns how many runs were written, newest first.
    /// [any]
    std::size_t last(std::uint64_t frames, std::array<Run, kRuns>& out) const;

  private:
    struct Slot {
        std::atomic<std::uint64_t> from{0}, to{0};
        std::atomic<float> gain{1};
    };
    std::array<Slot, kRuns> slots_;
    std::atomic<std::uint64_t> count_{0}, oldest_{0};  ///< runs ever begun; the first of the present start
    std::uint64_t next_ = ~std::uint64_t{0};           ///< frame that would continue the newest run
    float gain_ = 1;                                   ///< of that run
};

/// What a plugged channel's levels come from.
struct Metering {
    Metering(double rate, double seconds) : meter(rate, seconds) {}
    dsp::LevelMeter meter;  ///< sound that had to be computed
    Trail trail;            ///< sound straight from pages
    std::atomic<bool> trails{
        false};  ///< true: the last block was noted in `trail`; false: measured by `meter`
};

}  // namespace zv::engine
