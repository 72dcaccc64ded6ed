/// The inner loops of mixing: copy, scale and add blocks of interleaved float frames. Every function gives
/// the same bits on every processor (the wide paths use no fused multiply-add) and for any division of the
/// sound into blocks. Nothing allocates; buffers need no alignment; `frames` may be 0. [audio]
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace zv::engine::dsp {

/// A gain that moves in equal steps: frame i of a block has the gain float(from + step * (at + i)). `at`
/// counts frames since the ramp began, so that a ramp does not depend on where blocks end.
struct GainRamp {
    double from = 1;
    double step = 0;  ///< a frame
    std::uint64_t at = 0;
    float value(std::size_t i) const { return static_cast<float>(from + step * static_cast<double>(at + i)); }
};

/// One source of a mix: each sample times `before`, then times the gain.
struct MixSource {
    const float* frames = nullptr;  ///< interleaved stereo, or mono
    float before = 1;
    GainRamp gain;                 ///< with a step of 0: the gain `from`
    const float* gains = nullptr;  ///< for mixCurved() instead of it: one a frame
    bool plain() const { return gain.step == 0 && before == 1; }
    bool silent() const { return (gain.step == 0 && gain.from == 0) || before == 0; }
    float fixedGain() const { return static_cast<float>(gain.from); }
};

/// out += in * gain.
void mixStereo(float* out, const float* in, std::size_t frames, float gain);
/// All of `sources` in one call, up to four of them a pass: the result of mixStereo for each in turn.
void mixStereo(float* out, std::span<const MixSource> sources, std::size_t frames);
/// The same for mono sources, each to both sides.
void mixMono(float* out, std::span<const MixSource> sources, std::size_t frames);
/// The same for sources with `gains`.
void mixCurved(float* out, std::span<const MixSource> sources, std::size_t frames);
/// out += in * ramp.
void mixStereo(float* out, const float* in, std::size_t frames, const GainRamp& ramp);
/// Gains in equal ratios, by tables of their powers: place i of a span has the gain base * coarse[i / kFine] *
/// fine[i % kFine]; from span to span `base` is multiplied by `ratio`.
struct GainCurve {
    static constexpr std::size_t kFine = 16, kSpan = 256;
    std::array<double, kFine> fine;
    std::array<double, kSpan / kFine> coarse;
    double ratio;
    double value(double base, std::size_t place) const {
        return base * coarse[place / kFine] * fine[place % kFine];
    }
};
/// Writes the gains of `count` frames, the first of which has the place `place`.
void curveGains(float* out, const GainCurve& curve, double base, std::size_t place, std::size_t count);
/// out += in * gains[i], one gain a frame (a logarithmic slide).
void mixStereo(float* out, const float* in, std::size_t frames, const float* gains);

/// out += in * gain for `count` samples.
void addScaled(float* out, const float* in, std::size_t count, float gain);
/// out = in * gain for `count` samples; out may be in. A gain of 1 copies.
void scale(float* out, const float* in, std::size_t count, float gain);
/// Stereo frames times a ramp; out may be in.
void scaleStereo(float* out, const float* in, std::size_t frames, const GainRamp& ramp);
/// Stereo frames times one gain a frame; out may be in.
void scaleStereo(float* out, const float* in, std::size_t frames, const float* gains);

/// Mono to both sides, unchanged. `out` must not overlap `in`.
void monoToStereo(float* out, const float* in, std::size_t frames);
/// Any number of channels to stereo: 1 to both sides, 2 unchanged, more folded down. Channels are taken in
/// the customary order FL FR FC LFE BL BR SL SR (3: FL FR FC; 4: FL FR BL BR; 5: FL FR FC BL BR); centre and
/// surrounds enter at -3 dB, LFE not at all, channels beyond the eighth alternate left and right at -3 dB.
/// The sum is not scaled down: nothing clips before the device. `out` must not overlap `in` except when
/// channels is 2.
void foldToStereo(float* out, const float* in, std::size_t frames, std::uint32_t channels);

/// Samples that are no numbers, or above 1e9, become silence: in the state of a filter they would stay for ever.
/// [any]
void makeHarmless(std::span<float> samples);

/// Float to 16-bit: times 32768, rounded to the nearest (halves to even), cut to the range. NaN becomes 0.
void toInt16(std::int16_t* out, const float* in, std::size_t count);

/// Whether the wide (AVX2) path is in use; false forces the plain one. For tests of their equality. [control]
bool usesWidePath();
void setWidePath(bool on);

}  // namespace zv::engine::dsp
