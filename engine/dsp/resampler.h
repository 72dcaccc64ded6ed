/// Sample rate conversion of stereo: windowed-sinc polyphase, any ratio, streaming.
///
/// Quality: flat within 0.1 dB to 0.45 of the lower rate; images and aliases under -90 dB (the stop band
/// begins at half the lower rate). Equal rates with a correction of 0: the samples themselves, without delay.
/// Output frame n is the source at exactly n * inRate / outRate frames (no start-up delay: the converter asks
/// for the few frames ahead that it needs; see inputNeeded). The source before frame 0 is silence.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace zv::engine::dsp {

struct ResamplerTable;  // filter coefficients, shared by all converters of a ratio

/// Where a converter of two channels stands between the frames of its source: equal ones can be converted together.
struct ResamplerPhase {
    const ResamplerTable* table = nullptr;  ///< kept for ever
    std::uint64_t fraction = 0, stepWhole = 0, stepFraction = 0;
    bool operator==(const ResamplerPhase&) const = default;
};

class Resampler {
  public:
    /// Rates in Hz, 1 and up. Coefficient tables are made once a ratio and kept. [control] [worker]
    Resampler(std::uint32_t inRate, std::uint32_t outRate);
    ~Resampler();

    /// Source frames that must be handed to process() to make the next `outFrames`. [audio]
    std::size_t inputNeeded(std::size_t outFrames) const;
    /// Output frames from the next one on that stand before this source frame. [audio]
    std::uint64_t framesBefore(std::uint64_t sourceFrame) const;
    /// Makes out.size() / 2 frames from exactly inputNeeded() frames. At the end of the source hand
    /// over silence. Any sizes; no allocation. [audio]
    void process(std::span<const float> in, std::span<float> out);

    /// Slow correction of the speed in parts per million, -2000..2000: with +100 the source is consumed 100
    /// ppm faster. Takes effect with the next frame, without a jump in the sound. [audio]
    void setCorrection(double ppm);
    double correction() const { return correctionPpm_; }
    /// Equal rates: gives one source frame more (above 0) or less in the next kGlideFrames output frames, spread
    /// evenly; setCorrection(0) must follow then, and frames pass through unchanged again. [audio]
    void glide(int direction);
    static constexpr std::size_t kGlideFrames = 2048;  ///< a power of two: 488 parts per million

    // ---- sounds of one rate and phase are converted together: their windows are added up, and the sum converted
    /// After reset(): begins less than a source frame later, in the phase of a converter that began `outFrames`
    /// earlier. [audio]
    void align(std::uint64_t outFrames);
    ResamplerPhase phase() const {
        return {table_.get(), at_.fraction, step_.whole, step_.fraction};
    }  ///< [audio]
    /// Output frames whose source can be taken in at once. [audio]
    std::size_t mostAtOnce() const;
    /// Takes exactly inputNeeded(frames) frames in, without making anything of them yet. [audio]
    void take(std::span<const float> in) { push(in.data(), in.size() / 2); }
    /// Window frames that the next `outFrames` are made of. [audio]
    std::size_t span(std::size_t outFrames) const;
    /// sum += gain * window, left side and then, `stride` on, the right one. [audio]
    void addWindow(float* sum, std::size_t stride, std::size_t outFrames, float gain) const;
    /// Makes stereo frames of such a sum of windows that were in this phase. [audio]
    static void convertWindow(const ResamplerPhase& phase, const float* sum, std::size_t stride,
                              std::span<float> out);
    /// Moves on by `outFrames`, which convertWindow() has made. [audio]
    void advance(std::size_t outFrames);

    /// Forgets the sound that is held; the next output frame is source frame 0 again. [audio]
    void reset();
    /// Source frames (with fraction) from the last reset to the next output frame: the heard position.
    /// [audio]
    double position() const;
    /// Source frames that were handed over beyond position(); what a position counter must take off. [audio]
    double held() const { return static_cast<double>(fed_) - position(); }
    /// Source frames handed over since the last reset. [audio]
    std::uint64_t fed() const { return fed_; }
    /// Forgets the last `frames` of them, at most held(): inputNeeded() asks for others in their place. [audio]
    void takeBack(std::size_t frames);
    /// True when frames pass through unchanged now. [audio]
    bool bypassed() const { return step_.whole == 1 && step_.fraction == 0 && at_.fraction == 0; }

  private:
    /// Frames in 64.64 fixed point.
    struct Fixed {
        std::uint64_t whole = 0, fraction = 0;
        Fixed& operator+=(const Fixed& o) {
            fraction += o.fraction;
            whole += o.whole + (fraction < o.fraction ? 1 : 0);
            return *this;
        }
    };
    void push(const float* in, std::size_t frames);
    void render(float* out, std::size_t frames);

    std::shared_ptr<const ResamplerTable> table_;
    std::uint32_t inRate_, outRate_;
    double correctionPpm_ = 0;
    Fixed at_, step_;            // the next output frame, in source frames since reset; what one frame adds
    std::uint64_t fed_ = 0;      // source frames handed over since reset
    std::vector<float> window_;  // the last of them, one side after the other; begins with silence
    std::size_t stride_ = 0;     // frames of room in the window, from one side to the other
    std::size_t filled_ = 0;     // frames in window_
};

}  // namespace zv::engine::dsp
