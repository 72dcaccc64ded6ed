/// Reverb: a network of eight delay lines fed back through a Hadamard matrix, behind short diffusers, stereo.
/// Line of length D has the gain 10^(-3 D / T60), so that all of the tail falls by 60 dB in T60.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zv::engine::dsp {

struct ReverbSettings {
    double inGainDb = 0;       ///< -96..0, of dry and wet
    double mixDb = -96;        ///< -96..0: wet = 10^(mix/20), added to the dry sound; -96: bit-exact bypass
    double timeMs = 1000;      ///< T60, 1..20000
    double highRatio = 0.001;  ///< T60 of the highest frequencies / T60, 0.001..0.999
};

/// What moves when settings change, all of it in the same 20 ms.
struct ReverbGains {
    static constexpr std::size_t kLines = 8, kDiffusers = 3;
    std::array<float, kLines> line{};  ///< of the feedback: 60 dB in T60
    std::array<float, kLines> damp{};  ///< weight of the former frame in a line's damping
    float send = 0;                    ///< into the lines
    float dry = 1, wet = 0;  ///< `dry`: the input gain, whatever T60 and mix; `wet` normalised over T60
};

class Reverb {
  public:
    /// `rate` in Hz, 4000 to 768000. [control] [worker]
    explicit Reverb(double rate);

    /// While sound passes, changes are spread over 20 ms; before the first frame after construction or
    /// reset() they are there at once. Out-of-range values are cut to the range; all are
    /// finite. No allocation. [audio]
    void set(const ReverbSettings& settings);
    const ReverbSettings& settings() const { return settings_; }
    /// Stereo frames in place. [audio]
    void process(float* stereo, std::size_t frames);
    /// Prefetches the state that process() touches first: with a hundred units in turn none is in the cache.
    /// [audio]
    void prefetch() const;
    /// Silences the tail and ends ramps; nothing to do (and no cost) when nothing has passed. [audio]
    void reset();
    /// True when process() leaves the samples alone. [audio]
    bool bypassed() const { return !running_; }

    struct Run;

  private:
    /// A ring in memory_. Eight frames at once are read from it and replaced. It holds one frame more than its length,
    /// because the damping reads the frame before. Behind its end lies room for a copy of its first frames, so that
    /// eight frames in a row can run over the end.
    struct Line {
        std::size_t frames = 0, at = 0, offset = 0;  // in the ring; the next one; of the ring in memory_
    };
    /// A delay so short that each block copies it: memory_ holds its frames from the oldest to the newest.
    struct Diffuser {
        std::size_t length = 0, offset = 0;
    };
    static constexpr std::size_t kLines = ReverbGains::kLines, kDiffusers = ReverbGains::kDiffusers;

    void begin(const ReverbGains& goal, bool leaving);
    void block(float* stereo, std::size_t frames);
    void turn(Run& run, std::size_t groups, std::size_t lanes);
    void kernel(Run& run, std::size_t groups, std::size_t lanes);
    void clear();

    double rate_;
    ReverbSettings settings_;
    std::array<Line, kLines> lines_;
    std::array<std::array<Diffuser, kDiffusers>, 2> diffusers_;
    std::vector<float> memory_;
    ReverbGains from_, target_;
    std::uint32_t rampFrames_, rampAt_;
    bool running_ = false;  // process() computes
    bool leaving_ = false;  // towards the bypass at the end of the ramp
    bool passed_ = false;   // sound has passed since construction or reset
    bool filled_ = false;   // the memory is not silent
};

}  // namespace zv::engine::dsp
