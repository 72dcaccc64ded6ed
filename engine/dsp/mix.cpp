#include "engine/dsp/mix.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>

#include "engine/dsp/lanes.h"

namespace zv::engine::dsp {
namespace {
#define ZV_KERNELS "engine/dsp/mix_kernels.h"
#include "engine/dsp/two_paths.h"

bool machineIsWide() {
#if defined(__x86_64__)
    return __builtin_cpu_supports("avx2") != 0;
#else
    return false;
#endif
}

std::atomic<bool> chosen{machineIsWide()};

constexpr float kLoudest = 1e9F;  ///< sound is never louder; beyond it a sample is broken
constexpr float kMinus3dB = 0.70710678f;

/// What a channel gives to left and right.
struct Fold {
    float left, right;
};

Fold foldOf(std::uint32_t channel, std::uint32_t channels) {
    constexpr Fold left{1, 0}, right{0, 1}, centre{kMinus3dB, kMinus3dB}, none{0, 0};
    constexpr Fold backLeft{kMinus3dB, 0}, backRight{0, kMinus3dB};
    if (channel == 0) return left;
    if (channel == 1) return right;
    if (channels == 4) return channel == 2 ? backLeft : backRight;
    if (channel == 2) return centre;
    if (channels == 5) return channel == 3 ? backLeft : backRight;
    if (channel == 3) return none;
    return channel % 2 == 0 ? backLeft : backRight;
}

}  // namespace

bool wideChosen() { return chosen.load(std::memory_order_relaxed); }
bool usesWidePath() { return wideChosen(); }
void setWidePath(bool on) { chosen.store(on && machineIsWide(), std::memory_order_relaxed); }

void mixStereo(float* out, const float* in, std::size_t frames, float gain) {
    (wideChosen() ? wide::add1 : plain::add1)(out, in, 2 * frames, gain);
}

void mixStereo(float* out, std::span<const MixSource> sources, std::size_t frames) {
    const bool w = wideChosen();
    std::array<MixSource, 4> four;
    std::size_t held = 0;
    bool asTheyAre = true;
    for (const MixSource& source : sources) {
        if (source.silent()) continue;
        four[held++] = source;
        asTheyAre = asTheyAre && source.plain();
        if (held < four.size()) continue;
        if (asTheyAre) {
            (w ? wide::add4 : plain::add4)(out, four.data(), frames);
        } else {
            (w ? wide::addGained4 : plain::addGained4)(out, four.data(), frames);
        }
        held = 0;
        asTheyAre = true;
    }
    std::size_t done = 0;
    if (held >= 2 && asTheyAre) {
        (w ? wide::add2 : plain::add2)(out, four[0].frames, four[1].frames, 2 * frames, four[0].fixedGain(),
                                       four[1].fixedGain());
        done = 2;
    }
    for (; done < held; ++done) {
        if (four[done].plain()) {
            mixStereo(out, four[done].frames, frames, four[done].fixedGain());
        } else {
            (w ? wide::addGained1 : plain::addGained1)(out, four[done], frames);
        }
    }
}

void mixMono(float* out, std::span<const MixSource> sources, std::size_t frames) {
    const bool w = wideChosen();
    for (; sources.size() >= 4; sources = sources.subspan(4))
        (w ? wide::addMono4 : plain::addMono4)(out, sources.data(), frames);
    for (const MixSource& source : sources) (w ? wide::addMono1 : plain::addMono1)(out, source, frames);
}

void mixCurved(float* out, std::span<const MixSource> sources, std::size_t frames) {
    const bool w = wideChosen();
    for (; sources.size() >= 4; sources = sources.subspan(4))
        (w ? wide::addCurved4 : plain::addCurved4)(out, sources.data(), frames);
    for (const MixSource& source : sources) (w ? wide::addCurved1 : plain::addCurved1)(out, source, frames);
}

void curveGains(float* out, const GainCurve& curve, double base, std::size_t place, std::size_t count) {
    (wideChosen() ? wide::powered : plain::powered)(out, curve, base, place, count);
}

void mixStereo(float* out, const float* in, std::size_t frames, const GainRamp& ramp) {
    (wideChosen() ? wide::ramped<true> : plain::ramped<true>)(out, in, frames, ramp);
}

void mixStereo(float* out, const float* in, std::size_t frames, const float* gains) {
    (wideChosen() ? wide::gained<true> : plain::gained<true>)(out, in, frames, gains);
}

void addScaled(float* out, const float* in, std::size_t count, float gain) {
    (wideChosen() ? wide::add1 : plain::add1)(out, in, count, gain);
}

void scale(float* out, const float* in, std::size_t count, float gain) {
    if (gain == 1) {
        if (out != in && count > 0) std::memmove(out, in, count * sizeof(float));
        return;
    }
    (wideChosen() ? wide::scaled : plain::scaled)(out, in, count, gain);
}

void scaleStereo(float* out, const float* in, std::size_t frames, const GainRamp& ramp) {
    (wideChosen() ? wide::ramped<false> : plain::ramped<false>)(out, in, frames, ramp);
}

void scaleStereo(float* out, const float* in, std::size_t frames, const float* gains) {
    (wideChosen() ? wide::gained<false> : plain::gained<false>)(out, in, frames, gains);
}

void monoToStereo(float* out, const float* in, std::size_t frames) {
    for (std::size_t i = 0; i < frames; ++i) out[2 * i] = out[2 * i + 1] = in[i];
}

void foldToStereo(float* out, const float* in, std::size_t frames, std::uint32_t channels) {
    if (channels == 1) return monoToStereo(out, in, frames);
    if (channels == 2) return scale(out, in, 2 * frames, 1);
    constexpr std::uint32_t kMost = 32;
    std::array<Fold, kMost> folds{};
    const std::uint32_t used = std::min(channels, kMost);
    for (std::uint32_t c = 0; c < used; ++c) folds[c] = foldOf(c, channels);
    for (std::size_t i = 0; i < frames; ++i) {
        float left = 0, right = 0;
        for (std::uint32_t c = 0; c < used; ++c) {
            const float v = in[i * channels + c];
            left += v * folds[c].left;
            right += v * folds[c].right;
        }
        out[2 * i] = left;
        out[2 * i + 1] = right;
    }
}

void makeHarmless(std::span<float> samples) {
    (wideChosen() ? wide::harmless : plain::harmless)(samples.data(), samples.size(), kLoudest);
}

void toInt16(std::int16_t* out, const float* in, std::size_t count) {
    constexpr float kRounder = 12582912;  // 1.5 * 2^23: adding it rounds to a whole number, halves to even
    for (std::size_t i = 0; i < count; ++i) {
        float v = in[i] == in[i] ? in[i] * 32768 : 0;
        v = v > 32767 ? 32767 : v < -32768 ? -32768 : v;
        out[i] = static_cast<std::int16_t>((v + kRounder) - kRounder);
    }
}

}  // namespace zv::engine::dsp
