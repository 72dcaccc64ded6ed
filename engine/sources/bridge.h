/// Sound on its way between two threads with two clocks: one writes at its pace, the other reads at its own,
/// and a correction too slow and too small to be heard keeps the distance. Where both run on one clock and at
/// one rate, the reader gets the writer's samples themselves, to the bit.
///
/// Why it can neither run dry nor lag: clocks differ by a few hundred parts per million at most, the reader's
/// speed follows the filtered distance by up to 480, and the distance is kept between one period and 100 ms.
/// How short it may be shows by itself: what was left at the worst moment of some seconds lets it grow or
/// shrink.
#pragma once

#include <atomic>
#include <cstdint>
#include <span>
#include <vector>

#include "engine/dsp/resampler.h"
#include "engine/realtime/ring.h"

namespace zv::engine {

struct BridgeOptions {
    std::uint32_t inRate = 44100, outRate = 44100;  ///< Hz, nominal
    bool oneClock = false;                          ///< writer and reader can not drift apart
    double targetMs = 40;                           ///< distance held between them, to begin with
    double leastMs = 0, mostMs = 0;                 ///< within which it is learnt; 0: it stays
    double ppmPerMs = 10;                           ///< how hard a deviation of the distance is answered
};

class Bridge {
  public:
    /// Stereo. [control]
    explicit Bridge(const BridgeOptions& options);

    /// [audio] of the writer. What finds no room is lost (the reader has stopped).
    void write(std::span<const float> stereo);
    /// Fills `stereo`, silence where nothing is there yet. [audio] of the reader.
    void read(std::span<float> stereo);
    /// The reader begins anew with an empty bridge at its next read. [any]
    void restart() { restart_.store(true, std::memory_order_release); }

    /// Empties the bridge now; what is written from here on is kept. [audio] of the reader.
    void clear();

    /// The writer rests: what it wrote last was silence. The reader skips that, counts no underrun, and begins anew with
    /// all of what is written next. [audio] of the writer.
    void rest() { restedAt_.store(ring_.mark(), std::memory_order_release); }

    // ---- for a reader whose writer is gone: it writes for itself and keeps its distance
    /// Whether the reader plays behind the writer and would lose sound by a fresh start.
    bool follows() const { return running_ && !inStep_; }
    /// Frames to be written before readOwn() reads the next `frames`: those, and what is missing of the distance.
    std::size_t due(std::size_t frames);
    /// Whether the next read of `frames` would be an underrun.
    bool runsDry(std::size_t frames) const;
    void readOwn(std::span<float> stereo);

    /// Distance in frames of the writer. [any]
    std::size_t filled() const { return ring_.filled() / 2; }
    /// Times the reader found too little after it had begun. [any]
    std::uint64_t underruns() const { return underruns_.load(std::memory_order_relaxed); }
    /// The correction in force, parts per million. [any]
    double correction() const { return published_.load(std::memory_order_relaxed); }
    /// The distance that is aimed at, ms. [any]
    double target() const { return publishedTarget_.load(std::memory_order_relaxed); }

  private:
    void beginAnew();
    void readInStep(std::span<float> stereo);
    void readCorrected(std::span<float> stereo);
    void convert(std::span<float> stereo);
    void follow(double distance, std::size_t frames);
    void learn(double spareMs, double seconds);
    void aimAt(double ms);
    double perMs() const { return options_.inRate * 0.001; }

    const BridgeOptions options_;
    const bool inStep_;
    Ring<float> ring_;
    dsp::Resampler resampler_;
    std::vector<float> in_;
    std::atomic<bool> restart_{false};
    std::atomic<std::uint64_t> underruns_{0};
    std::atomic<double> published_{0}, publishedTarget_{0};
    std::atomic<std::size_t> restedAt_{0};
    std::size_t seenRest_ = 0;
    bool running_ = false;
    double target_;  // ms
    double leastSpare_ = 0, watched_ = 0,
           calm_ = 0;                    // ms left at the worst moment of so many seconds; since when ample
    double average_ = 0, integral_ = 0;  // of the deviation, frames
    bool averaging_ = false;
    double debt_ = 0;            // source frames by which equal rates are to be corrected
    std::size_t glideLeft_ = 0;  // output frames in which that is being done
};

}  // namespace zv::engine
