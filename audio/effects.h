/// The effects of a jingle on its channel: equaliser, reverb, tempo, rate, pitch, volume. [control]
#pragma once

#include <array>
#include <cstdint>

#include "audio/effect_vector.h"

namespace zv {

/// What UpdateTempo changes.
enum class TempoPart { tempo = 0, rate = 1, pitch = 2 };

/// Centre frequencies in Hz from the setting EQBands. Throws std::out_of_range with fewer than seven.
std::array<double, kEqBands> EqCentres();
/// Puts the equaliser on `channel` and keeps its handle in JEqFx(index). `gains` in dB.
void SetDSP_EQ(int index, std::uint32_t channel, double initialGain, double bandwidth, double q,
               const std::array<double, kEqBands>& centres, const std::array<double, kEqBands>& gains);
/// The same for a channel that is no button's; returns the effect's handle.
std::uint32_t SetDSP_EQtmJnStrm(std::uint32_t channel, double initialGain, double bandwidth, double q,
                                const std::array<double, kEqBands>& centres,
                                const std::array<double, kEqBands>& gains);
/// Changes one band, gain in dB.
void UpdateFX(std::uint32_t effect, int band, double gain);
/// Reverb of `ms`: its time and the level of the wet sound rise together.
void UpdateReverb(std::uint32_t effect, double ms);
/// Wet level in dB for a reverb of `ms`: -96 at 0, 0 above 600.
double ReverbMix(double ms);
/// Tempo in percent, rate in Hz, pitch in semitones.
void UpdateTempo(std::uint32_t channel, TempoPart what, double value);
/// Level of a volume effect, percent.
void SetVolFx(std::uint32_t effect, double percent);

}  // namespace zv
