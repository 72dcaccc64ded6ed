/// Peaking equaliser: any number of bands in one effect, stereo. Biquads after Robert Bristow-Johnson,
/// "Cookbook formulae for audio equalizer biquad filter coefficients" (peakingEQ). Eight bands are computed at
/// once: each band filters an earlier frame than the band before it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zv::engine::dsp {

/// A band as the caller names it.
struct PeakBand {
    double centreHz = 1000;
    double gainDb = 0;   ///< 0 changes nothing
    double octaves = 1;  ///< bandwidth between the points of half the gain in dB, in force when q is 0
    double q = 0;        ///< quality, 0 = use octaves
    bool operator==(const PeakBand&) const = default;
};

/// Whether `band` leaves sound at `rate` as it is. [any]
bool isFlat(const PeakBand& band, double rate);

/// Eight bands of the equaliser with their state. Each is the cookbook's filter as a pair of
/// trapezoidal integrators, because the direct form is too coarse in 32 bits for bands of some 100 Hz:
///   d = x - i2;  i1' = p i1 + q d;  i2' = i2 + q i1 + b d;  y = (g x + c1 i1) - c2 i2
/// A flat band has g = 1 and c1 = c2 = 0: the very samples, whatever the integrators hold.
struct alignas(32) EqGroup {
    using Lanes = std::array<float, 8>;
    enum Coefficient { kP, kQ, kB, kG, kC1, kC2, kCoefficients };
    using Table = std::array<Lanes, kCoefficients>;
    struct Memory {
        Lanes i1{}, i2{};
    };
    Table now{}, step{}, target{};  // step: a frame, while a change is under way
    Memory left, right;
    std::array<PeakBand, 8> bands;
    std::array<bool, 8> flat{};  // the lane's target changes nothing
    std::uint32_t rampLeft = 0;  // frames until now equals target
    bool active = false;
};

class PeakEq {
  public:
    /// Room for `bands` bands, rounded up to the next multiple of 8. [control] [worker]
    explicit PeakEq(double rate, std::size_t bands = 8);

    /// Sets band `index`, of those there is room for, to finite values. While sound passes, the change is spread over 20 ms;
    /// before the first frame after construction or reset() it is there at once. Costs a few sines, no
    /// allocation. [audio]
    void setBand(std::size_t index, const PeakBand& band);
    /// Filters stereo frames in place. All bands flat: returns at once, the samples untouched. [audio]
    void process(float* stereo, std::size_t frames);
    /// Prefetches the state that process() reads: with a hundred units in turn none is in the cache.
    /// [audio]
    void prefetch() const;
    /// Empties the memory and ends changes under way; no cost when nothing has passed. [audio]
    void reset();
    /// True when process() leaves the samples alone. [audio]
    bool bypassed() const { return active_ == 0; }

  private:
    void run(EqGroup& group, float* stereo, std::size_t frames);
    void rest(EqGroup& group);

    double rate_;
    std::uint32_t rampFrames_;
    std::vector<EqGroup> groups_;
    std::size_t active_ = 0;
    bool passed_ = false;  // sound has passed since construction or reset
};

}  // namespace zv::engine::dsp
