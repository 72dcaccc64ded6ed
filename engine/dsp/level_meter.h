/// Peak and RMS of the sound of the last fraction of a second. One thread writes, any thread reads, nobody
/// waits.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zv::engine::dsp {

struct StereoLevel {
    float left = 0, right = 0;
};

/// Peaks and sums of squares of both sides.
struct StereoSums {
    float peakLeft = 0, peakRight = 0, powerLeft = 0, powerRight = 0;
};
/// Of `frames` stereo frames. [any]
StereoSums measureStereo(const float* stereo, std::size_t frames);
/// Of `frames` mono frames: both sides the same. [any]
StereoSums measureMono(const float* mono, std::size_t frames);

class LevelMeter {
  public:
    static constexpr std::size_t kBucket = 64;  ///< frames: the grain of the window

    /// Remembers at least `seconds` at `rate` Hz. [control] [worker]
    LevelMeter(double rate, double seconds);

    /// Takes stereo frames as they were heard, times `gain`. [audio]
    void feed(const float* stereo, std::size_t frames, float gain = 1);
    /// `frames` of silence. [audio]
    void feedSilence(std::size_t frames);
    /// Forgets everything. [audio]
    void reset();

    /// Over the last `seconds` that were fed (cut to what is remembered), to the next whole bucket. What lies
    /// before the first frame counts as silence. [any]
    StereoLevel peak(double seconds) const;
    StereoLevel rms(double seconds) const;

  private:
    struct Bucket {
        std::atomic<float> peakLeft{0}, peakRight{0}, powerLeft{0}, powerRight{0};
    };
    void close();
    std::size_t bucketsOf(double seconds) const;

    double rate_;
    std::vector<Bucket> ring_;
    std::atomic<std::uint64_t> written_{0};  // buckets closed so far
    float peakLeft_ = 0, peakRight_ = 0, powerLeft_ = 0, powerRight_ = 0;
    std::size_t inBucket_ = 0;
};

}  // namespace zv::engine::dsp
