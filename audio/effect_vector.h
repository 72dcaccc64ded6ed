/// The effects of a jingle as the text FXV: eleven numbers separated by commas. And the presets, which hold the
/// same text with other signs. [control]
#pragma once

#include <array>
#include <string>
#include <vector>

namespace zv {

inline constexpr int kEqBands = 7;
inline constexpr int kFxvElements = 11;
inline constexpr int kMostTempoDown = 94;  ///< percent: slower or lower than that no rate is left

/// Values as sliders hold them.
struct EffectVector {
    std::array<double, kEqBands> sliders{};  ///< of the bands; the gain in dB is the negated value
    double reverbMs = 0;
    double tempo = 0;  ///< percent
    double rate = 0;   ///< Hz; in a preset the value of the rate's slider, tenths of a percent
    double pitch = 0;  ///< semitones
    bool operator==(const EffectVector&) const = default;

    double gain(int band) const { return 0.0 - sliders[static_cast<std::size_t>(band)]; }  ///< dB
};

/// What a text says. What it leaves out or what is no number stays neutral, what no sound can have is brought to
/// the nearest value that it can; `fault` then says what was wrong with it, else it is empty.
struct ReadEffects {
    EffectVector effects;
    std::string fault;
};
/// `freq` is the sound's own rate in Hz, which is the neutral one; 0 in a preset.
ReadEffects ParseFXV(const std::string& text, int freq);
std::string FXVText(const EffectVector& effects);

/// Rate in whole Hz of a slider in tenths of a percent, and back.
double RateOfSlider(double slider, int freq);
double SliderOfRate(double rate, int freq);

/// Largest values of the sliders from the settings: percent of tempo; tenths of a percent of rate, down and up;
/// semitones of pitch; dB of a band.
int MostTempo();
int MostRateDown();
int MostRateUp();
int MostPitch();
int MostGain();

// ---- presets: FXpresets.ini ----
/// Names in file order.
std::vector<std::string> EffectPresets();
/// As sliders hold it: the file has gains with the sign that is heard. A name that is not there is neutral.
EffectVector ReadEffectPreset(const std::string& name);
/// Replaces one of that name. Blanks around a name, brackets, "=" and line ends are left out of it; false when
/// nothing is left or the file cannot be written.
bool WriteEffectPreset(std::string& name, const EffectVector& effects);
void DeleteEffectPreset(const std::string& name);

}  // namespace zv
