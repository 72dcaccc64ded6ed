#include "audio/effect_vector.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "startup/helpers.h"
#include "startup/impulse.h"
#include "startup/settings/editor_settings.h"
#include "startup/stores.h"

namespace zv {
namespace {

constexpr int kReverbElement = 7;

// What a sound can have, whatever the sliders reach.
constexpr double kMostGain = 60;  // dB
constexpr double kLongestReverbMs = 60'000;
constexpr double kSlowestTempo = -95, kFastestTempo = 5'000;  // percent
constexpr double kMostPitch = 120;                            // semitones
constexpr double kLeastRate = 0.05, kMostRate = 100;          // of the sound's own

constexpr double kPercentPerTenth = 0.1, kPerTenth = 0.001;

/// One number of the text, in the files' form whatever the user's language; false when it is none.
bool number(const std::string& text, double& value) {
    const std::string plain = Trim(text);
    const char* const first = plain.data() + (plain.starts_with('+') ? 1 : 0);
    const char* const last = plain.data() + plain.size();
    const auto [end, error] = std::from_chars(first, last, value);
    return error == std::errc() && end == last && std::isfinite(value);
}

void bring(double& value, double least, double most, std::string& fault) {
    const double held = std::clamp(value, least, most);
    if (held != value) fault = "a value out of range: " + NumberText(value);
    value = held;
}

}  // namespace

ReadEffects ParseFXV(const std::string& text, int freq) {
    ReadEffects read;
    EffectVector& e = read.effects;
    e.rate = freq;
    const auto parts = Split(text, ",");
    if (parts.size() != kFxvElements) read.fault = "effects of " + std::to_string(parts.size()) + " parts";
    if (parts.size() > kFxvElements) return read;  // decimal commas: which number is which cannot be told
    for (std::size_t i = 0; i < parts.size(); ++i) {
        double* const targets[] = {&e.reverbMs, &e.tempo, &e.rate, &e.pitch};
        double value = 0;
        if (!number(parts[i], value)) {
            read.fault = "no number in effects: " + parts[i];
            continue;
        }
        (i < kReverbElement ? e.sliders[i] : *targets[i - kReverbElement]) = value;
    }
    for (double& slider : e.sliders) bring(slider, -kMostGain, kMostGain, read.fault);
    bring(e.reverbMs, 0, kLongestReverbMs, read.fault);
    bring(e.tempo, kSlowestTempo, kFastestTempo, read.fault);
    bring(e.pitch, -kMostPitch, kMostPitch, read.fault);
    if (freq > 0 && e.rate != 0) bring(e.rate, freq * kLeastRate, freq * kMostRate, read.fault);
    return read;
}

std::string FXVText(const EffectVector& e) {
    std::string text;
    for (double slider : e.sliders) text += NumberText(slider) + ",";
    return text + NumberText(e.reverbMs) + "," + NumberText(e.tempo) + "," + NumberText(e.rate) + "," +
           NumberText(e.pitch);
}

double RateOfSlider(double slider, int freq) { return std::floor(freq * (1 + slider * kPerTenth) + 0.5); }

double SliderOfRate(double rate, int freq) {
    return freq == 0 || rate == 0 ? 0 : (rate / freq - 1) / kPerTenth;
}

int MostTempo() { return std::min(editorSettings.TempoMax, kMostTempoDown); }
int MostRateDown() { return static_cast<int>(MostTempo() / kPercentPerTenth); }
int MostRateUp() { return static_cast<int>(editorSettings.TempoMax / kPercentPerTenth); }
int MostPitch() { return editorSettings.TempoMax; }
int MostGain() { return editorSettings.EQVMax; }

std::vector<std::string> EffectPresets() {
    std::vector<std::string> names;
    for (const auto& line : FXPresetsStore.GetSectionLines(kFXPresetsSection)) names.push_back(line.first);
    return names;
}

EffectVector ReadEffectPreset(const std::string& name) {
    EffectVector e = ParseFXV(FXPresetsStore.GetValue(name, 0, kFXPresetsSection), 0).effects;
    for (double& slider : e.sliders) slider = 0.0 - slider;
    return e;
}

bool WriteEffectPreset(std::string& name, const EffectVector& effects) {
    std::erase_if(name, [](char c) { return c == '=' || c == '[' || c == ']' || c == '\r' || c == '\n'; });
    name = Trim(name);
    if (name.empty() || name.front() == ';') return false;
    EffectVector e = effects;
    for (double& slider : e.sliders) slider = 0.0 - slider;
    return FXPresetsStore.PutSection(kFXPresetsSection, {{name, FXVText(e)}}, false);
}

void DeleteEffectPreset(const std::string& name) { FXPresetsStore.PutValue(name, "", kFXPresetsSection); }

}  // namespace zv
