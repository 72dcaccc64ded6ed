/// What callers wish of a tempo channel: the curve of its parameters, and the clock that the curve runs on.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>

#include "engine/tempo/curve.h"

namespace zv::engine {

class TempoWishes {
  public:
    /// The curve that is wanted, and its number among the channel's curves.
    struct Wish {
        TempoCurve curve;
        std::uint32_t changes;
    };

    /// From the value reached to `value`, cut to its range in TempoParameters, in `frames` of the clock; 0: at
    /// once. See TempoCurve::move. [control]
    void slide(TempoPart part, double value, std::uint64_t frames, bool ratios);
    TempoParameters now() const;         ///< in the middle of a slide too [any]
    bool sliding(TempoPart part) const;  ///< [any]
    Wish wish() const;                   ///< [control] [worker]

    /// Lets `frames` of the clock pass. [audio]
    void pass(std::uint64_t frames) {
        time_.store(time_.load(std::memory_order_relaxed) + frames, std::memory_order_release);
    }
    /// The clock: frames that passed. [any]
    std::uint64_t time() const { return time_.load(std::memory_order_acquire); }
    /// True while a slide runs. [any]
    bool slides() const {
        return static_cast<std::int64_t>(restsFrom_.load(std::memory_order_acquire) -
                                         time_.load(std::memory_order_relaxed)) > 0;
    }
    /// Anything but neutral is wanted, now or at the end of a slide. [any]
    bool wanted() const { return wanted_.load(std::memory_order_acquire); }
    /// Number of the present curve. [any]
    std::uint32_t changes() const { return changes_.load(std::memory_order_acquire); }

  private:
    mutable std::mutex mutex_;  // of curve_: control and worker
    TempoCurve curve_;
    std::atomic<bool> wanted_{false};
    std::atomic<std::uint32_t> changes_{0};
    std::atomic<std::uint64_t> time_{0};
    std::atomic<std::uint64_t> restsFrom_{0};  // from that time on nothing slides
};

}  // namespace zv::engine
