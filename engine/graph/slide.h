/// A value that moves sample by sample. The gain of a frame depends on its number since the slide began
/// alone, never on where blocks end.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "engine/dsp/mix.h"

namespace zv::engine {

class Slide {
  public:
    /// The value now. [audio]
    float value() const;
    bool active() const { return length_ != 0; }
    /// At the end of the slide the channel stops.
    bool stopsAtEnd() const { return stop_; }
    std::uint64_t left() const { return length_ - at_; }

    /// At once; ends a running slide. [audio]
    void set(float value);
    /// From the value reached to `target` in `frames`: frame 0 has the value reached, frame `frames` the
    /// target. `logarithmic`: equal ratios, over at most 60 dB. [audio]
    void start(float target, std::uint64_t frames, bool logarithmic, bool stopAtEnd);
    /// Lets `frames` pass (cut to left()); true when the slide came to its end. [audio]
    bool advance(std::uint64_t frames);

    /// The gains of the frames to come: equal steps. Only of a slide that is linear, or not active.
    dsp::GainRamp ramp() const {
        return active() ? dsp::GainRamp{from_, step_, at_} : dsp::GainRamp{target_, 0, 0};
    }
    /// Whether ramp() holds for the next `frames` frames and beyond.
    bool ramps(std::uint64_t frames) const { return !active() || (!logarithmic_ && left() > frames); }

    /// out += in times this slide for `frames` frames, at most left() while active and at most a block. Does
    /// not advance. [audio]
    void mix(float* out, const float* in, std::size_t frames) const;
    /// Stereo frames in place; advances, and goes on with the target past the end. [audio]
    void scale(float* stereo, std::size_t frames);

  private:
    static constexpr std::size_t kGrid = 64;
    static constexpr std::size_t kMost = 256;
    void gains(float* out, std::size_t frames) const;
    double logGain(std::uint64_t at) const;

    float target_ = 1;
    bool logarithmic_ = false, stop_ = false;
    std::uint64_t at_ = 0, length_ = 0;
    double from_ = 1, step_ = 0;        // linear: a frame; logarithmic: ln of the ratio a frame
    std::array<double, kGrid> powers_;  // of the ratio, valid while a logarithmic slide runs
};

}  // namespace zv::engine
