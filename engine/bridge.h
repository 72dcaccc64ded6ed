/// Sound on its way between two threads with two clocks: one writes at its pace, the other reads at its own,
/// and a correction too slow and too small to be heard keeps the distance. Where both run on one clock and at
/// one rate, the reader gets the writer's samples themselves, to the bit.
///
/// Why it can neither run dry nor lag: clocks differ by a few hundred parts per million at most, the reader's
/// speed follows the filtered distance by up to 480, and the distance is kept between one period and 100 ms.
#pragma once

#include <atomic>
#include <cstdint>
#include <span>
#include <vector>

#include "engine/dsp/resampler.h"
#include "engine/ring.h"

namespace zv {

struct BridgeOptions {
    std::uint32_t inRate = 44100, outRate = 44100;  ///< Hz, nominal
    bool oneClock = false;                          ///< writer and reader can not drift apart
    double targetMs = 40;                           ///< distance held between them
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

    /// The same, now: what is written from here on is not lost. [audio] of the reader.
    void clear();

    /// Distance in frames of the writer. [any]
    std::size_t filled() const { return ring_.filled() / 2; }
    /// Times the reader found too little after it had begun. [any]
    std::uint64_t starvations() const { return starvations_.load(std::memory_order_relaxed); }
    /// The correction in force, parts per million. [any]
    double correction() const { return published_.load(std::memory_order_relaxed); }

  private:
    void readInStep(std::span<float> stereo);
    void readCorrected(std::span<float> stereo);
    void follow(double distance, double seconds);

    const BridgeOptions options_;
    const bool inStep_;
    Ring<float> ring_;
    dsp::Resampler resampler_;
    std::vector<float> in_;
    std::atomic<bool> restart_{false};
    std::atomic<std::uint64_t> starvations_{0};
    std::atomic<double> published_{0};
    bool running_ = false;
    double average_ = 0, integral_ = 0;  // of the deviation, frames
    bool averaging_ = false;
};

}  // namespace zv
