/// Peaking equaliser: any number of bands in one effect, stereo. Biquads after Robert Bristow-Johnson,
/// "Cookbook formulae for audio equalizer biquad filter coefficients" (peakingEQ), eight bands computed at
/// once.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zv::dsp {

/// A band as the caller names it.
struct PeakBand {
    double centreHz = 1000;
    double gainDb = 0;   ///< 0 changes nothing
    double octaves = 1;  ///< bandwidth between the points of half the gain in dB, in force when q is 0
    double q = 0;        ///< quality, 0 = use octaves
};

/// Coefficients of one biquad, a0 divided out.
struct Biquad {
    float b0 = 1, b1 = 0, b2 = 0, a1 = 0, a2 = 0;
};

/// The cookbook formula. A band of 0 dB, at or above half the rate, or with senseless numbers gives a
/// biquad that changes nothing (b equals a). [any]
Biquad designPeak(const PeakBand& band, double rate);
/// Whether `band` changes anything at `rate`. [any]
bool isFlat(const PeakBand& band, double rate);

class PeakEq {
  public:
    /// Room for `bands` bands (8 at least). [control] [worker]
    explicit PeakEq(double rate, std::size_t bands = 8);

    std::size_t capacity() const { return groups_.size() * kLanes; }
    /// Sets band `index` (ignored beyond capacity()). While sound passes, the change is spread over 20 ms;
    /// before the first frame after construction or reset() it is there at once. Costs a few sines, no
    /// allocation. [audio]
    void setBand(std::size_t index, const PeakBand& band);
    /// Filters stereo frames in place. All bands flat: returns at once, the samples untouched. [audio]
    void process(float* stereo, std::size_t frames);
    /// Empties the state and ends ramps; nothing to do (and no cost) when nothing has passed. [audio]
    void reset();
    /// True when process() leaves the samples alone. [audio]
    bool bypassed() const { return active_ == 0; }

  private:
    static constexpr std::size_t kLanes = 8;

  public:
    /// One number a band. [audio] internals, public for the kernels only
    struct alignas(32) Lanes {
        std::array<float, kLanes> v{};
    };
    struct Coefficients {
        Lanes b0, b1, b2, a1, a2;
    };
    struct State {
        Lanes s1, s2;
    };
    struct Group {
        Coefficients now, step, target;
        State left, right;
        std::array<bool, kLanes> flat{};  // the target of the lane changes nothing
        std::uint32_t rampLeft = 0;       // frames
        std::uint32_t settleLeft = 0;     // frames until a flat group may be left out
        bool active = false;
    };

  private:
    void startRamp(Group& group);
    void finishRamp(Group& group);

    double rate_;
    std::uint32_t rampFrames_;
    std::vector<Group> groups_;
    std::size_t active_ = 0;
    bool passed_ = false;  // sound has passed since construction or reset
};

}  // namespace zv::dsp
