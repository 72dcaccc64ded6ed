#include "synth.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace samples {
namespace {

constexpr double kPeak = 0.8912509381;  // -1 dBFS
constexpr double kSilence = 0.0004;
constexpr double kTwoPi = 2 * kPi;

}  // namespace

double hz(double key) { return 440 * std::pow(2.0, (key - 69) / 12); }

double Noise::operator()() {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 7;
    state_ ^= state_ << 17;
    return static_cast<double>(state_ >> 11) / 4503599627370496.0 - 1;
}

double Saw::operator()(double frequency) {
    const double step = frequency / kRate;
    phase_ += step;
    if (phase_ >= 1) phase_ -= 1;
    double value = 2 * phase_ - 1;
    // The edge is rounded over the two samples around it.
    if (phase_ < step) {
        const double t = phase_ / step;
        value -= t + t - t * t - 1;
    } else if (phase_ > 1 - step) {
        const double t = (phase_ - 1) / step;
        value -= t * t + t + t + 1;
    }
    return value;
}

Filter::Out Filter::operator()(double in, double frequency, double q) {
    const double g = std::tan(kPi * std::clamp(frequency, 10.0, 0.45 * kRate) / kRate);
    const double k = 1 / q;
    const double high = (in - (k + g) * a_ - b_) / (1 + g * (g + k));
    const double band = g * high + a_;
    const double low = g * band + b_;
    a_ = g * high + band;
    b_ = g * band + low;
    return {low, band, high};
}

double pluckEnvelope(double t, double attack, double decay) {
    if (t < attack) return 0.5 - 0.5 * std::cos(kPi * t / attack);
    return std::pow(10.0, -3 * (t - attack) / decay);
}

double holdEnvelope(double t, double attack, double length, double release) {
    if (t < 0 || t > length) return 0;
    double value = 1;
    if (t < attack) value *= 0.5 - 0.5 * std::cos(kPi * t / attack);
    if (t > length - release) value *= 0.5 - 0.5 * std::cos(kPi * (length - t) / release);
    return value;
}

void Stereo::grow(int n) {
    if (n <= size()) return;
    left.resize(static_cast<std::size_t>(n));
    right.resize(static_cast<std::size_t>(n));
}

void Stereo::add(const Mono& sound, double at, double gain, double pan) {
    const int from = frames(at);
    grow(from + static_cast<int>(sound.size()));
    const double angle = (pan + 1) * kPi / 4;
    const double l = gain * std::cos(angle) * std::sqrt(2.0), r = gain * std::sin(angle) * std::sqrt(2.0);
    for (std::size_t i = 0; i < sound.size(); ++i) {
        left[static_cast<std::size_t>(from) + i] += l * sound[i];
        right[static_cast<std::size_t>(from) + i] += r * sound[i];
    }
}

void Stereo::add(const Stereo& sound, double at, double gain) {
    const int from = frames(at);
    grow(from + sound.size());
    for (std::size_t i = 0; i < sound.left.size(); ++i) {
        left[static_cast<std::size_t>(from) + i] += gain * sound.left[i];
        right[static_cast<std::size_t>(from) + i] += gain * sound.right[i];
    }
}

Stereo room(const Stereo& dry, double seconds, double damping) {
    constexpr std::array<int, 8> kLengths{1433, 1601, 1867, 2053, 2251, 2399, 2617, 2797};
    Stereo wet;
    wet.grow(dry.size() + frames(seconds));
    std::array<Mono, 8> lines;
    std::array<int, 8> at{};
    std::array<double, 8> gain{}, dull{};
    for (std::size_t k = 0; k < 8; ++k) {
        lines[k].resize(static_cast<std::size_t>(kLengths[k]));
        gain[k] = std::pow(10.0, -3.0 * kLengths[k] / (seconds * kRate));
    }
    for (std::size_t i = 0; i < wet.left.size(); ++i) {
        const bool inside = i < dry.left.size();
        const double in[2] = {inside ? dry.left[i] : 0, inside ? dry.right[i] : 0};
        std::array<double, 8> out{};
        double sum = 0;
        for (std::size_t k = 0; k < 8; ++k) {
            const double raw = lines[k][static_cast<std::size_t>(at[k])];
            dull[k] += (1 - damping) * (raw - dull[k]);
            out[k] = dull[k];
            sum += out[k];
        }
        for (std::size_t k = 0; k < 8; ++k) {
            const double mixed = out[k] - sum / 4;  // each line hears all others
            lines[k][static_cast<std::size_t>(at[k])] = in[k % 2] * 0.5 + mixed * gain[k];
            if (++at[k] == kLengths[k]) at[k] = 0;
        }
        wet.left[i] = (out[0] - out[2] + out[4] - out[6]) * 0.5;
        wet.right[i] = (out[1] - out[3] + out[5] - out[7]) * 0.5;
    }
    return wet;
}

Stereo inRoom(const Stereo& dry, double seconds, double wet, double damping) {
    Stereo out = room(dry, seconds, damping);
    for (std::size_t i = 0; i < out.left.size(); ++i) {
        const bool inside = i < dry.left.size();
        out.left[i] = out.left[i] * wet + (inside ? dry.left[i] : 0);
        out.right[i] = out.right[i] * wet + (inside ? dry.right[i] : 0);
    }
    return out;
}

Mono bell(double key, double seconds, double brightness) {
    Mono out(static_cast<std::size_t>(frames(seconds)));
    const double w = kTwoPi * hz(key) / kRate;
    // The higher the bell, the duller: its partials stay within what can be heard.
    const double depth = 2.2 * brightness * std::min(1.0, 2400 / (3.51 * hz(key)));
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double t = static_cast<double>(i) / kRate, p = w * static_cast<double>(i);
        const double index = depth * std::exp(-t * 3.5);
        out[i] = std::sin(p + index * std::sin(3.51 * p)) * pluckEnvelope(t, 0.002, seconds) +
                 0.25 * std::sin(2.004 * p) * pluckEnvelope(t, 0.002, seconds * 0.6);
    }
    return out;
}

Mono mallet(double key, double seconds) {
    Mono out(static_cast<std::size_t>(frames(seconds)));
    const double w = kTwoPi * hz(key) / kRate;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double t = static_cast<double>(i) / kRate, p = w * static_cast<double>(i);
        out[i] = std::sin(p) * pluckEnvelope(t, 0.002, seconds) +
                 0.3 * std::sin(3.93 * p) * pluckEnvelope(t, 0.001, 0.22) +
                 0.1 * std::sin(9.2 * p) * pluckEnvelope(t, 0.001, 0.08);
    }
    return out;
}

Mono string(double key, double seconds, double brightness, std::uint64_t seed) {
    Mono out(static_cast<std::size_t>(frames(seconds)));
    const double period = kRate / hz(key) - 0.5;
    const auto length = static_cast<std::size_t>(period);
    const double part = period - static_cast<double>(length);
    Mono line(length + 1);
    Noise noise(seed);
    double dull = 0;
    for (double& x : line) x = dull += (0.25 + 0.7 * brightness) * (noise() - dull);
    const double loss = std::pow(10.0, -3.0 / (hz(key) * seconds));
    double last = 0;
    std::size_t at = 0;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const std::size_t next = (at + 1) % line.size();
        const double value = line[at] * (1 - part) + line[next] * part;
        out[i] = value * holdEnvelope(static_cast<double>(i) / kRate, 0.001, seconds, 0.05);
        line[at] = loss * 0.5 * (value + last);
        last = value;
        at = next;
    }
    return out;
}

Mono bassNote(double key, double seconds) {
    Mono out(static_cast<std::size_t>(frames(seconds)));
    Saw saw;
    Filter filter;
    double phase = 0;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double t = static_cast<double>(i) / kRate;
        phase += kTwoPi * hz(key) / kRate;
        const double cut = 220 + 1500 * std::exp(-t * 9);
        out[i] = (0.7 * std::sin(phase) + 0.6 * filter(saw(hz(key)), cut, 0.9).low) *
                 holdEnvelope(t, 0.004, seconds, 0.04) * (0.55 + 0.45 * std::exp(-t * 5));
    }
    return out;
}

Mono brass(double key, double seconds, double power, double slide) {
    Mono out(static_cast<std::size_t>(frames(seconds)));
    Saw a(0.1), b(0.6);
    Filter filter;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double t = static_cast<double>(i) / kRate;
        const double lip = -0.35 * std::exp(-t * 38) + slide * t / seconds;
        const double sway = 0.10 * std::sin(kTwoPi * 5.2 * t) * std::min(1.0, t * 2.5);
        const double f = hz(key + lip + sway);
        const double cut =
            400 + power * (3600 * (1 - std::exp(-t * 26)) * (0.5 + 0.5 * std::exp(-t * 2.5))) + f;
        out[i] = filter(0.5 * (a(f) + b(f * 1.0035)), cut, 0.9).low * holdEnvelope(t, 0.018, seconds, 0.07);
    }
    return out;
}

Mono organ(double key, double seconds) {
    constexpr std::array<double, 6> kBars{1, 0.8, 0.7, 0.35, 0.28, 0.2};
    constexpr std::array<double, 6> kRatios{1, 2, 3, 4, 6, 8};
    Mono out(static_cast<std::size_t>(frames(seconds)));
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double t = static_cast<double>(i) / kRate;
        const double p = kTwoPi * hz(key) * 0.5 * (t + 0.00025 * std::sin(kTwoPi * 6.3 * t));
        for (std::size_t k = 0; k < kBars.size(); ++k)
            out[i] += 0.25 * kBars[k] * std::sin(2 * kRatios[k] * p);
        out[i] *= holdEnvelope(t, 0.006, seconds, 0.03);
    }
    return out;
}

Mono keys(double key, double seconds) {
    Mono out(static_cast<std::size_t>(frames(seconds)));
    const double w = kTwoPi * hz(key) / kRate;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double t = static_cast<double>(i) / kRate, p = w * static_cast<double>(i);
        out[i] =
            std::sin(p + 0.9 * std::exp(-t * 4) * std::sin(p) + 0.5 * std::exp(-t * 18) * std::sin(14 * p)) *
            pluckEnvelope(t, 0.002, 2.6) * holdEnvelope(t, 0.001, seconds, 0.05);
    }
    return out;
}

Stereo pad(double key, double seconds, double attack, double release, double brightness) {
    Stereo out(seconds);
    constexpr std::array<double, 5> kDetune{-0.11, -0.05, 0, 0.06, 0.12};
    for (std::size_t k = 0; k < kDetune.size(); ++k) {
        Saw saw(0.19 * static_cast<double>(k) + 0.07);
        Filter filter;
        Mono voice(out.left.size());
        for (std::size_t i = 0; i < voice.size(); ++i) {
            const double t = static_cast<double>(i) / kRate;
            const double cut = brightness * (500 + 700 * std::sin(kPi * t / seconds)) + hz(key);
            voice[i] =
                filter(saw(hz(key + kDetune[k])), cut, 0.75).low * holdEnvelope(t, attack, seconds, release);
        }
        out.add(voice, 0, 0.28, (static_cast<double>(k) - 2) * 0.42);
    }
    return out;
}

Stereo choir(double key, double seconds, char vowel, double attack) {
    struct Vowel {
        char name;
        std::array<double, 3> formants;
    };
    constexpr std::array<Vowel, 4> kVowels{{{'a', {740, 1180, 2640}},
                                            {'o', {450, 800, 2620}},
                                            {'u', {320, 700, 2400}},
                                            {'i', {300, 2200, 2950}}}};
    const Vowel& v =
        *std::find_if(kVowels.begin(), kVowels.end(), [&](const Vowel& x) { return x.name == vowel; });
    Stereo out(seconds);
    for (int singer = 0; singer < 6; ++singer) {
        Saw saw(0.16 * singer);
        Noise breath(static_cast<std::uint64_t>(100 + singer));
        std::array<Filter, 3> formants;
        Mono voice(out.left.size());
        const double rate = 4.6 + 0.27 * singer, off = 0.05 * (singer - 2.5);
        for (std::size_t i = 0; i < voice.size(); ++i) {
            const double t = static_cast<double>(i) / kRate;
            const double sway = off + 0.16 * std::sin(kTwoPi * rate * t + singer) * std::min(1.0, t * 2);
            const double in = saw(hz(key + sway)) + 0.05 * breath();
            const double size = 1 + 0.012 * singer;
            voice[i] = (1.0 * formants[0](in, v.formants[0] * size, 7).band +
                        0.55 * formants[1](in, v.formants[1] * size, 9).band +
                        0.22 * formants[2](in, v.formants[2] * size, 11).band) *
                       holdEnvelope(t - 0.006 * singer, attack, seconds - 0.04, 0.12);
        }
        out.add(voice, 0, 0.22, (singer - 2.5) * 0.36);
    }
    return out;
}

Mono kick(double power) {
    Mono out(static_cast<std::size_t>(frames(0.4)));
    double phase = 0;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double t = static_cast<double>(i) / kRate;
        phase += kTwoPi * (46 + 170 * power * std::exp(-t * 34)) / kRate;
        out[i] = std::sin(phase) * pluckEnvelope(t, 0.0012, 0.36) +
                 0.12 * std::sin(phase * 9) * std::exp(-t * 260);
    }
    return out;
}

Mono snare(std::uint64_t seed) {
    Mono out(static_cast<std::size_t>(frames(0.3)));
    Noise noise(seed);
    Filter filter;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double t = static_cast<double>(i) / kRate;
        out[i] =
            0.6 * filter(noise(), 1900, 0.6).high * pluckEnvelope(t, 0.0008, 0.24) +
            0.5 * std::sin(kTwoPi * (186 * t + 3 * (1 - std::exp(-t * 60)))) * pluckEnvelope(t, 0.0008, 0.14);
    }
    return out;
}

Mono brush(std::uint64_t seed) {
    return sweep(
        0.26, [](double x) { return 3800 + 2600 * x; },
        [](double x) { return std::sin(kPi * std::pow(x, 0.35)) * (1 - x); }, 0.6, seed);
}

Mono clap(std::uint64_t seed) {
    Mono out(static_cast<std::size_t>(frames(0.24)));
    Noise noise(seed);
    Filter filter;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double t = static_cast<double>(i) / kRate;
        double envelope = 0.7 * std::exp(-t * 26) * (t > 0.024 ? 1 : 0);
        for (const double at : {0.0, 0.010, 0.020}) {
            if (t >= at) envelope += std::exp(-(t - at) * 260);
        }
        out[i] = filter(noise(), 1250, 1.4).band * envelope * holdEnvelope(t, 0.0006, 0.24, 0.03);
    }
    return out;
}

Mono hat(double seconds, std::uint64_t seed) {
    Mono out(static_cast<std::size_t>(frames(seconds)));
    Noise noise(seed);
    Filter filter;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double t = static_cast<double>(i) / kRate;
        out[i] = 0.5 * filter(noise(), 8200, 0.8).high * pluckEnvelope(t, 0.0006, seconds) *
                 holdEnvelope(t, 0.0005, seconds, 0.004);
    }
    return out;
}

Mono crash(double seconds, std::uint64_t seed) {
    Mono out(static_cast<std::size_t>(frames(seconds)));
    Noise noise(seed);
    Filter low, high;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double t = static_cast<double>(i) / kRate;
        double metal = 0;
        for (const double f : {2310.0, 3170.0, 4093.0, 5441.0, 7019.0, 8837.0})
            metal += std::sin(kTwoPi * f * t + f);
        const double in = 0.7 * noise() + 0.06 * metal;
        out[i] = 0.6 * low(high(in, 2600, 0.6).high, 4500 + 9000 * std::exp(-t * 3), 0.7).low *
                 pluckEnvelope(t, 0.001, seconds);
    }
    return out;
}

Mono tom(double key, double seconds) {
    Mono out(static_cast<std::size_t>(frames(seconds)));
    Noise noise(7);
    Filter filter;
    double phase = 0;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double t = static_cast<double>(i) / kRate;
        phase += kTwoPi * hz(key + 7 * std::exp(-t * 22)) / kRate;
        out[i] = std::sin(phase) * pluckEnvelope(t, 0.001, seconds) +
                 0.3 * filter(noise(), 900, 0.7).low * pluckEnvelope(t, 0.001, 0.09);
    }
    return out;
}

Mono sweep(double seconds, const std::function<double(double)>& course,
           const std::function<double(double)>& swell, double q, std::uint64_t seed) {
    Mono out(static_cast<std::size_t>(frames(seconds)));
    Noise noise(seed);
    Filter filter;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double x = static_cast<double>(i) / static_cast<double>(out.size());
        out[i] = filter(noise(), course(x), q).band * swell(x);
    }
    return out;
}

Mono glide(double seconds, const std::function<double(double)>& course,
           const std::function<double(double)>& swell, double harmonics) {
    Mono out(static_cast<std::size_t>(frames(seconds)));
    double phase = 0;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double x = static_cast<double>(i) / static_cast<double>(out.size());
        phase += kTwoPi * course(x) / kRate;
        out[i] = (std::sin(phase) + harmonics * (0.5 * std::sin(2 * phase) + 0.33 * std::sin(3 * phase) +
                                                 0.2 * std::sin(5 * phase))) *
                 swell(x);
    }
    return out;
}

namespace {

/// Takes the rumble away and rounds the peaks.
void polish(Mono& side, double drive) {
    double in = 0, out = 0;
    for (double& x : side) {
        out = 0.9975 * (out + x - in);
        in = x;
        x = out;
    }
    double peak = 0;
    for (const double x : side) peak = std::max(peak, std::abs(x));
    if (peak == 0) return;
    for (double& x : side) x = std::tanh(drive * x / peak);
}

void level(Stereo& sound) {
    double peak = 0;
    for (const Mono* side : {&sound.left, &sound.right}) {
        for (const double x : *side) peak = std::max(peak, std::abs(x));
    }
    for (Mono* side : {&sound.left, &sound.right}) {
        for (double& x : *side) x *= kPeak / peak;
    }
}

/// One factor for both sides, so that the picture keeps its width.
void balance(Stereo& sound) {
    double peak = 1e-9;
    for (std::size_t i = 0; i < sound.left.size(); ++i)
        peak = std::max({peak, std::abs(sound.left[i]), std::abs(sound.right[i])});
    sound.left.push_back(peak);
    sound.right.push_back(peak);
}

void polishBoth(Stereo& sound, double drive) {
    balance(sound);  // the same peak on both sides while polishing
    polish(sound.left, drive);
    polish(sound.right, drive);
    sound.left.pop_back();
    sound.right.pop_back();
}

}  // namespace

void finish(Stereo& sound, double drive) {
    polishBoth(sound, drive);
    level(sound);
    std::size_t end = sound.left.size();
    while (end > 1 && std::abs(sound.left[end - 1]) < kSilence && std::abs(sound.right[end - 1]) < kSilence)
        --end;
    sound.left.resize(end);
    sound.right.resize(end);
    const int in = std::min(frames(0.0015), sound.size()), out = std::min(frames(0.03), sound.size());
    for (Mono* side : {&sound.left, &sound.right}) {
        for (int i = 0; i < in; ++i) (*side)[static_cast<std::size_t>(i)] *= static_cast<double>(i) / in;
        for (int i = 0; i < out; ++i)
            (*side)[side->size() - 1 - static_cast<std::size_t>(i)] *= static_cast<double>(i) / out;
    }
}

void finishLoop(Stereo& sound, double seconds, double drive) {
    const auto length = static_cast<std::size_t>(frames(seconds));
    sound.grow(static_cast<int>(length));
    for (Mono* side : {&sound.left, &sound.right}) {
        for (std::size_t i = length; i < side->size(); ++i) (*side)[i % length] += (*side)[i];
        side->resize(length);
        // Twice around, so that the filter that takes the rumble away has no beginning either.
        side->insert(side->end(), side->begin(), side->begin() + static_cast<std::ptrdiff_t>(length));
    }
    polishBoth(sound, drive);
    for (Mono* side : {&sound.left, &sound.right})
        side->erase(side->begin(), side->begin() + static_cast<std::ptrdiff_t>(length));
    level(sound);
}

void writeWav(const Stereo& sound, const std::string& path) {
    std::vector<std::int16_t> data;
    for (std::size_t i = 0; i < sound.left.size(); ++i) {
        for (const double x : {sound.left[i], sound.right[i]})
            data.push_back(static_cast<std::int16_t>(std::lround(x * 32767)));
    }
    const auto bytes = static_cast<std::uint32_t>(data.size() * 2);
    std::uint8_t header[44] = {'R', 'I', 'F', 'F', 0, 0, 0,  0, 'W', 'A', 'V', 'E', 'f', 'm',
                               't', ' ', 16,  0,   0, 0, 1,  0, 2,   0,   0,   0,   0,   0,
                               0,   0,   0,   0,   4, 0, 16, 0, 'd', 'a', 't', 'a'};
    const auto put = [&](int at, std::uint32_t value) { std::memcpy(header + at, &value, 4); };
    put(4, 36 + bytes);
    put(24, kRate);
    put(28, kRate * 4);
    put(40, bytes);
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr || std::fwrite(header, 1, sizeof header, file) != sizeof header ||
        std::fwrite(data.data(), 2, data.size(), file) != data.size() || std::fclose(file) != 0) {
        std::fprintf(stderr, "%s: cannot be written\n", path.c_str());
        std::exit(1);
    }
}

}  // namespace samples
