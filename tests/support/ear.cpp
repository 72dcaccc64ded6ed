#include "tests/support/ear.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstdio>
#include <numbers>
#include <sstream>
#include <utility>

namespace zv::test {
namespace {

constexpr int kStepMs = 10;
constexpr std::size_t kStep = kRate * kStepMs / 1000;
constexpr int kTones = 8;
constexpr double kAmplitude = 0.2;
constexpr double kGone = 0.0125;    // of a tone's own level
constexpr double kFalling = 0.999;  // from one step of a fade to the next
constexpr double kCut = 0.15;       // a fade that ends above this was cut

/// Far apart, so that a fade of one step does not sound like its neighbour.
constexpr double frequency(int tone) { return 1500.0 + 2000.0 * tone; }

/// One stretch, steps [from, to).
std::string told(char letter, const std::vector<double>& level, std::size_t from, std::size_t to) {
    const auto ms = [](std::size_t step) { return std::to_string(step * kStepMs); };
    std::size_t falls = to;
    if (to < level.size())
        while (falls > from + 1 && level[falls - 1] < level[falls - 2] * kFalling) --falls;
    if (falls == from + 1) falls = from;
    const bool fades = to - falls >= 2;
    std::string text = letter + ms(from);
    if (falls > from) text += "-";
    if (fades) text += (falls > from ? ms(falls) : "") + "~";
    if (to < level.size()) text += ms(to);
    if (fades && level[to - 1] > kCut) text += "!";
    if (falls == from) return text;
    const double dB = 20 * std::log10(level[from + (falls - from) / 2]);
    char at[16];
    std::snprintf(at, sizeof at, "@%.1f", dB);
    return std::abs(dB) < 0.05 ? text : text + at;
}

}  // namespace

std::vector<std::int16_t> tones(const std::string& score) {
    std::vector<std::int16_t> samples;
    std::istringstream parts(score);
    for (char letter = 0; parts >> letter;) {
        std::size_t ms = 0;
        parts >> ms;
        const auto part = sine(ms * kRate / 1000, frequency(letter - 'a'), kAmplitude);
        samples.insert(samples.end(), part.begin(), part.end());
    }
    return samples;
}

std::vector<std::int16_t> tone(char letter, int ms, int rate) {
    std::vector<std::int16_t> samples;
    for (int i = 0; i < ms * rate / 1000; ++i)
        samples.push_back(static_cast<std::int16_t>(std::lround(
            32767 * kAmplitude * std::sin(2 * std::numbers::pi * frequency(letter - 'a') * i / rate))));
    return samples;
}

std::vector<double> toneLevels(const Heard& sound, char tone) {
    std::array<std::complex<double>, kStep> turn;
    for (std::size_t i = 0; i < kStep; ++i)
        turn[i] = std::polar(2 / kAmplitude / kStep,
                             -2 * std::numbers::pi * frequency(tone - 'a') * static_cast<double>(i) / kRate);
    std::vector<double> out(sound.frames() / kStep);
    for (std::size_t step = 0; step < out.size(); ++step) {
        const float* frames = &sound.stereo[2 * step * kStep];
        if (std::all_of(frames, frames + 2 * kStep, [](float sample) { return sample == 0; })) continue;
        double cosine = 0, sine = 0;
        for (std::size_t i = 0; i < kStep; ++i) {
            cosine += turn[i].real() * static_cast<double>(frames[2 * i]);
            sine += turn[i].imag() * static_cast<double>(frames[2 * i]);
        }
        out[step] = std::hypot(cosine, sine);
    }
    return out;
}

std::string whatIsHeard(const Heard& sound) {
    std::vector<std::pair<std::size_t, std::string>> stretches;
    for (int tone = 0; tone < kTones; ++tone) {
        const auto letter = static_cast<char>('a' + tone);
        const std::vector<double> level = toneLevels(sound, letter);
        for (std::size_t from = 0; from < level.size(); ++from) {
            if (level[from] < kGone) continue;
            std::size_t to = from;
            while (to < level.size() && level[to] >= kGone) ++to;
            stretches.emplace_back(from, told(letter, level, from, to));
            from = to;
        }
    }
    std::stable_sort(stretches.begin(), stretches.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::string text;
    for (const auto& [from, stretch] : stretches) text += (text.empty() ? "" : " ") + stretch;
    return text;
}

std::string levelsOf(const Heard& sound, char tone, const std::vector<int>& ms) {
    const std::vector<double> level = toneLevels(sound, tone);
    std::string text;
    for (const int at : ms) {
        const double now = level.at(static_cast<std::size_t>(at / kStepMs));
        char part[16];
        std::snprintf(part, sizeof part, "%.1f", std::round(200 * std::log10(now)) / 10 + 0.0);
        text += (text.empty() ? "" : " ") + (now < kGone ? std::string("-") : std::string(part));
    }
    return text;
}

}  // namespace zv::test
