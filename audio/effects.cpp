#include "audio/effects.h"

#include <cmath>

#include "engine/bass.h"
#include "model/jingle.h"
#include "startup/helpers.h"
#include "startup/settings/editor_settings.h"

namespace zv {
namespace {

constexpr int kEqPriority = 5;
constexpr double kSilentMix = -96;  // dB
constexpr double kFullReverbMs = 600;

/// A number as it reads back from a text with two decimals.
double twoDecimals(double value) { return std::floor(value * 100 + 0.5) / 100; }

}  // namespace

std::array<double, kEqBands> EqCentres() {
    const auto parts = Split(editorSettings.EQBands, ",");
    std::array<double, kEqBands> centres{};
    for (std::size_t i = 0; i < centres.size(); ++i) centres[i] = Val(parts.at(i));
    return centres;
}

void SetDSP_EQ(int index, std::uint32_t channel, double initialGain, double bandwidth, double q,
               const std::array<double, kEqBands>& centres, const std::array<double, kEqBands>& gains) {
    JEqFx[static_cast<std::size_t>(index)] =
        SetDSP_EQtmJnStrm(channel, initialGain, bandwidth, q, centres, gains);
}

std::uint32_t SetDSP_EQtmJnStrm(std::uint32_t channel, double initialGain, double bandwidth, double q,
                                const std::array<double, kEqBands>& centres,
                                const std::array<double, kEqBands>& gains) {
    const std::uint32_t effect = BASS_ChannelSetFX(channel, BASS_FX_BFX_PEAKEQ, kEqPriority);
    BASS_BFX_PEAKEQ band{};
    band.fGain = static_cast<float>(initialGain);
    band.fBandwidth = static_cast<float>(bandwidth);
    band.fQ = static_cast<float>(q);
    band.lChannel = BASS_BFX_CHANALL;
    for (int i = 0; i < kEqBands; ++i) {
        band.lBand = i;
        band.fCenter = static_cast<float>(centres[static_cast<std::size_t>(i)]);
        BASS_FXSetParameters(effect, &band);
    }
    for (int i = 0; i < kEqBands; ++i) UpdateFX(effect, i, gains[static_cast<std::size_t>(i)]);
    return effect;
}

void UpdateFX(std::uint32_t effect, int band, double gain) {
    BASS_BFX_PEAKEQ parameters{};
    parameters.lBand = band;
    if (!BASS_FXGetParameters(effect, &parameters)) return;
    parameters.fGain = static_cast<float>(gain);
    BASS_FXSetParameters(effect, &parameters);
}

double ReverbMix(double ms) {
    if (ms <= 0) return kSilentMix;
    if (ms > kFullReverbMs) return 0;
    const double a = twoDecimals(std::log(1800.0) - std::log(3 * ms));
    const double b = twoDecimals(std::log(1800.0) - std::log(10.0));
    return kSilentMix * a / b;
}

void UpdateReverb(std::uint32_t effect, double ms) {
    BASS_DX8_REVERB parameters{};
    BASS_FXGetParameters(effect, &parameters);
    parameters.fReverbTime = static_cast<float>(ms);
    BASS_FXSetParameters(effect, &parameters);
    BASS_FXGetParameters(effect, &parameters);
    parameters.fReverbMix = static_cast<float>(ReverbMix(ms));
    BASS_FXSetParameters(effect, &parameters);
}

void UpdateTempo(std::uint32_t channel, TempoPart what, double value) {
    static constexpr DWORD attributes[] = {BASS_ATTRIB_TEMPO, BASS_ATTRIB_TEMPO_FREQ,
                                           BASS_ATTRIB_TEMPO_PITCH};
    BASS_ChannelSetAttribute(channel, attributes[static_cast<int>(what)], static_cast<float>(value));
}

void SetVolFx(std::uint32_t effect, double percent) {
    BASS_BFX_VOLUME volume{BASS_BFX_CHANALL, static_cast<float>(percent * 0.01)};
    BASS_FXSetParameters(effect, &volume);
}

}  // namespace zv
