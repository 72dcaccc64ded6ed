/// A value that moves sample by sample. The gain of a frame depends on its number since the slide began
/// alone, never on where blocks end.
#pragma once

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
    /// Whether it neither ends nor is replaced within the next `frames` frames.
    bool goesOn(std::uint64_t frames) const { return !active() || left() > frames; }
    /// Runs in equal ratios: gains() holds, else ramp().
    bool curved() const { return active() && logarithmic_; }
    /// The gains of the next `frames` frames of a curved one. [audio]
    void gains(float* out, std::size_t frames) const;

    /// out += in times this slide for `frames` frames, at most left() while active and at most a block. Does
    /// not advance. [audio]
    void mix(float* out, const float* in, std::size_t frames) const;
    /// Stereo frames in place; advances, and goes on with the target past the end. [audio]
    void scale(float* stereo, std::size_t frames);

  private:
    static constexpr std::size_t kSpan = dsp::GainCurve::kSpan;
    static constexpr std::size_t kMost = 256;

    float target_ = 1;
    bool logarithmic_ = false, stop_ = false;
    std::uint64_t at_ = 0, length_ = 0;
    double from_ = 1, step_ = 0;  // linear: what a frame adds
    double base_ = 1;             // logarithmic: the gain at the last multiple of kSpan
    dsp::GainCurve curve_;
};

}  // namespace zv::engine
