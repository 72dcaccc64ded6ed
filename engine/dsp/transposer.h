/// Sound read at another speed, which may change at any time: pitch and rate glide without a seam. A windowed
/// sinc whose cutoff follows the speed, so that nothing folds over; flat to 0.41 of the lower rate.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace zv::engine::dsp {

struct TransposerRows;  // the filter at many places between two frames, for one cutoff

class Transposer {
  public:
    explicit Transposer(std::uint32_t channels);  ///< reset() must come next [worker] [control]
    ~Transposer();

    /// Frames that the filter reaches to either side at `speed` (source frames a frame of output).
    static std::size_t reach(double speed);

    /// Forgets everything; the first frame it makes is the one behind the first `lead` that are pushed.
    /// [worker]
    void reset(std::size_t lead);
    /// Frames that push() must still bring before `frames` can be made. [worker]
    std::size_t needed(std::size_t frames, double speed) const;
    void push(std::span<const float> in);  ///< interleaved [worker]
    /// Makes out.size() / channels frames; needed() must be 0 for them. [worker]
    void make(std::span<float> out, double speed);
    /// Where the next frame lies, in the frames that were pushed. [worker]
    double position() const { return static_cast<double>(whole_) + fraction_; }

  private:
    const TransposerRows* rowsFor(double scale);

    const std::uint32_t channels_;
    std::int64_t whole_ = 0;  ///< the next frame to make, in frames that were pushed
    double fraction_ = 0;
    std::int64_t first_ = 0;  ///< pushed frame at the beginning of the window; may lie before 0
    std::size_t filled_ = 0, stride_ = 0;
    std::vector<float> window_;  ///< one channel after the other
    double lastScale_ = 0;
    int steady_ = 0;  ///< calls with that cutoff
    std::unique_ptr<TransposerRows> own_;
};

}  // namespace zv::engine::dsp
