#include "benchmarks/plain_effects.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace zv::bench {
namespace {

using Eight = float __attribute__((vector_size(32)));
using EightAnywhere = float __attribute__((vector_size(32), aligned(4), may_alias));

constexpr std::size_t kAtOnce = 256;  // most frames of a block
constexpr std::size_t kLines = 8, kDiffusers = 3, kSides = 2;

// The engine's reverb: lengths that have no common factors, 1 s, -6 dB, the highest frequencies half as long.
constexpr std::array<double, kLines> kLineMs{19.9, 23.3, 27.7, 32.1, 37.3, 42.9, 49.1, 56.3};
constexpr double kDiffuserMs[kSides][kDiffusers] = {{2.3, 3.7, 5.9}, {2.7, 4.1, 5.3}};
constexpr double kSeconds = 1.06, kHighRatio = 0.5, kMixDb = -6;  // 6 % more: what the damping takes
constexpr float kAllpass = 0.5f, kHadamard = 0.35355339f;

std::size_t primeFrames(double ms, double rate) {
    auto n = static_cast<std::size_t>(ms * 0.001 * rate);
    const auto prime = [](std::size_t v) {
        for (std::size_t d = 2; d * d <= v; ++d)
            if (v % d == 0) return false;
        return true;
    };
    while (!prime(n)) ++n;
    return n;
}

/// All sounds' frames of one delay, eight sounds side by side; the groups of eight share the place they stand
/// at.
struct Ring {
    std::size_t length = 0, at = 0;
    std::vector<Eight> memory;  ///< group after group
    Eight* of(std::size_t group) { return memory.data() + group * length; }
};

struct Band {
    float p, q, b, g, c1, c2;  // integrators
    float b0, b1, b2, a1, a2;  // direct form
};

Band design(const PlainBand& band, double rate) {
    const double w0 = 2 * std::numbers::pi * band.centreHz / rate, a = std::pow(10.0, band.gainDb / 40);
    const double alpha = std::sin(w0) * std::sinh(std::numbers::ln2 / 2 * band.octaves * w0 / std::sin(w0));
    const double g = std::tan(w0 / 2), k = 2 * alpha / (std::sin(w0) * a), m = k * (a * a - 1);
    const double a1 = 1 / (1 + g * (g + k)), a2 = g * a1, a3 = g * a2, a0 = 1 + alpha / a;
    const auto f = [](double v) { return static_cast<float>(v); };
    return {f(2 * a1 - 1),
            f(2 * a2),
            f(2 * a3),
            f(1 + m * a2),
            f(m * a1),
            f(m * a2),
            f((1 + alpha * a) / a0),
            f(-2 * std::cos(w0) / a0),
            f((1 - alpha * a) / a0),
            f(-2 * std::cos(w0) / a0),
            f((1 - alpha / a) / a0)};
}

/// Eight rows of four stereo frames become eight columns: left and right of each frame, all sounds side by
/// side.
void turn(std::array<Eight, 8>& r) {
    std::array<Eight, 8> a, b;
    for (std::size_t k = 0; k < 8; k += 2) {
        a[k] = __builtin_shufflevector(r[k], r[k + 1], 0, 8, 1, 9, 4, 12, 5, 13);
        a[k + 1] = __builtin_shufflevector(r[k], r[k + 1], 2, 10, 3, 11, 6, 14, 7, 15);
    }
    for (std::size_t k = 0; k < 8; k += 4)
        for (std::size_t h = 0; h < 2; ++h) {
            b[k + 2 * h] = __builtin_shufflevector(a[k + h], a[k + h + 2], 0, 1, 8, 9, 4, 5, 12, 13);
            b[k + 2 * h + 1] = __builtin_shufflevector(a[k + h], a[k + h + 2], 2, 3, 10, 11, 6, 7, 14, 15);
        }
    for (std::size_t k = 0; k < 4; ++k) {
        r[k] = __builtin_shufflevector(b[k], b[k + 4], 0, 1, 2, 3, 8, 9, 10, 11);
        r[k + 4] = __builtin_shufflevector(b[k], b[k + 4], 4, 5, 6, 7, 12, 13, 14, 15);
    }
}

float sumOf(Eight v) { return ((v[0] + v[1]) + (v[2] + v[3])) + ((v[4] + v[5]) + (v[6] + v[7])); }

}  // namespace

struct PlainEffects::Work {
    Work(const std::vector<std::vector<float>>& all, PlainForm as)
        : sounds(all), form(as), groups(all.size() / 8) {}

    const std::vector<std::vector<float>>& sounds;
    PlainForm form;
    std::size_t groups, at = 0;
    std::vector<Band> bands;
    std::vector<Eight> states;  // two a band and side, group after group
    std::array<Ring, kLines> lines;
    std::array<std::array<Ring, kDiffusers>, kSides> diffusers;
    std::vector<std::array<Eight, kLines>> former;
    std::array<float, kLines> gain{}, damp{};
    float dry = 0, wet = 0;
    alignas(32) std::array<std::array<Eight, kSides>, kAtOnce> block{}, bus{};

    void gather(std::size_t group, std::size_t frames);
    void room(std::size_t group, std::size_t from, std::size_t frames);
    void integrators(std::size_t group, std::size_t frames);
    void direct(std::size_t group, std::size_t frames);
};

void PlainEffects::Work::gather(std::size_t group, std::size_t frames) {
    for (std::size_t i = 0; i < frames; i += 4) {
        std::array<Eight, 8> rows;
        for (std::size_t k = 0; k < 8; ++k)
            rows[k] = *reinterpret_cast<const EightAnywhere*>(sounds[group * 8 + k].data() + 2 * (at + i));
        turn(rows);
        for (std::size_t k = 0; k < 4; ++k) block[i + k] = {rows[2 * k], rows[2 * k + 1]};
    }
}

/// `frames` in which no delay comes to its end.
void PlainEffects::Work::room(std::size_t group, std::size_t from, std::size_t frames) {
    std::array<Eight*, kLines> line;
    for (std::size_t k = 0; k < kLines; ++k) line[k] = lines[k].of(group) + lines[k].at;
    std::array<std::array<Eight*, kDiffusers>, kSides> all;
    for (std::size_t s = 0; s < kSides; ++s)
        for (std::size_t k = 0; k < kDiffusers; ++k)
            all[s][k] = diffusers[s][k].of(group) + diffusers[s][k].at;
    std::array<Eight, kLines> before = former[group];
    for (std::size_t i = 0; i < frames; ++i) {
        std::array<Eight, kSides>& io = block[from + i];
        std::array<Eight, kSides> in = io;
        for (std::size_t s = 0; s < kSides; ++s)
            for (std::size_t k = 0; k < kDiffusers; ++k) {
                const Eight delayed = all[s][k][i];
                const Eight w = in[s] - kAllpass * delayed;
                all[s][k][i] = w;
                in[s] = delayed + kAllpass * w;
            }
        std::array<Eight, kLines> y;
        for (std::size_t k = 0; k < kLines; ++k) {
            const Eight now = line[k][i];
            y[k] = (now + (before[k] - now) * damp[k]) * gain[k];
            before[k] = now;
        }
        io[0] = io[0] * dry + ((y[0] - y[2]) + (y[4] - y[6])) * wet;
        io[1] = io[1] * dry + ((y[1] - y[3]) + (y[5] - y[7])) * wet;
        for (std::size_t span = 1; span < kLines; span *= 2)
            for (std::size_t k = 0; k < kLines; ++k)
                if ((k & span) == 0) {
                    const Eight a = y[k], b = y[k + span];
                    y[k] = a + b;
                    y[k + span] = a - b;
                }
        for (std::size_t k = 0; k < kLines; ++k) line[k][i] = y[k] * kHadamard + in[k % kSides];
    }
    former[group] = before;
}

void PlainEffects::Work::integrators(std::size_t group, std::size_t frames) {
    Eight* state = states.data() + group * bands.size() * 2 * kSides;
    for (const Band& c : bands) {
        Eight l1 = state[0], l2 = state[1], r1 = state[2], r2 = state[3];
        const auto step = [&c](Eight& x, Eight& i1, Eight& i2) {
            const Eight d = x - i2;
            x = c.g * x + (c.c1 * i1 - c.c2 * i2);
            i2 = (i2 + c.q * i1) + c.b * d;
            i1 = c.p * i1 + c.q * d;
        };
        for (std::size_t i = 0; i < frames; ++i) step(block[i][0], l1, l2), step(block[i][1], r1, r2);
        state[0] = l1, state[1] = l2, state[2] = r1, state[3] = r2;
        state += 2 * kSides;
    }
}

void PlainEffects::Work::direct(std::size_t group, std::size_t frames) {
    Eight* state = states.data() + group * bands.size() * 2 * kSides;
    for (const Band& c : bands) {
        Eight l1 = state[0], l2 = state[1], r1 = state[2], r2 = state[3];
        const auto step = [&c](Eight& x, Eight& s1, Eight& s2) {
            const Eight y = c.b0 * x + s1;
            s1 = (c.b1 * x - c.a1 * y) + s2;
            s2 = c.b2 * x - c.a2 * y;
            x = y;
        };
        for (std::size_t i = 0; i < frames; ++i) step(block[i][0], l1, l2), step(block[i][1], r1, r2);
        state[0] = l1, state[1] = l2, state[2] = r1, state[3] = r2;
        state += 2 * kSides;
    }
}

PlainEffects::PlainEffects(const std::vector<std::vector<float>>& sounds, std::span<const PlainBand> bands,
                           PlainForm form, double rate)
    : work_(std::make_unique<Work>(sounds, form)) {
    Work& w = *work_;
    for (const PlainBand& band : bands) w.bands.push_back(design(band, rate));
    w.states.assign(w.groups * bands.size() * 2 * kSides, Eight{});
    w.former.assign(w.groups, {});
    const auto place = [&](Ring& ring, double ms) {
        ring.length = primeFrames(ms, rate);
        ring.memory.assign(ring.length * w.groups, Eight{});
    };
    for (std::size_t s = 0; s < kSides; ++s)
        for (std::size_t k = 0; k < kDiffusers; ++k) place(w.diffusers[s][k], kDiffuserMs[s][k]);
    double power = 0;
    for (std::size_t k = 0; k < kLines; ++k) {
        place(w.lines[k], kLineMs[k]);
        const double passes = static_cast<double>(w.lines[k].length) / rate / kSeconds;
        const double gain = std::pow(10.0, -3 * passes);
        w.gain[k] = static_cast<float>(gain);
        w.damp[k] = static_cast<float>((1 - std::pow(10.0, -3 * passes * (1 / kHighRatio - 1))) / 2);
        power += gain * gain / kLines;
    }
    const double wet = std::pow(10.0, kMixDb / 20);
    w.wet = static_cast<float>(wet * std::sqrt((1 - power) / (4 * power)));
    w.dry = 1;
}

PlainEffects::~PlainEffects() = default;

void PlainEffects::render(float* stereo, std::size_t frames) {
    Work& w = *work_;
    if (2 * (w.at + frames) > w.sounds[0].size()) w.at = 0;
    std::fill_n(w.bus.begin(), frames, std::array<Eight, kSides>{});
    const auto eachRing = [&w](auto&& act) {
        for (Ring& ring : w.lines) act(ring);
        for (auto& side : w.diffusers)
            for (Ring& ring : side) act(ring);
    };
    std::array<std::size_t, kLines + kSides * kDiffusers> places;
    for (std::size_t group = 0; group < w.groups; ++group) {
        std::size_t n = 0;
        if (group == 0)
            eachRing([&](Ring& ring) { places[n++] = ring.at; });
        else
            eachRing([&](Ring& ring) { ring.at = places[n++]; });
        w.gather(group, frames);
        for (std::size_t done = 0; done < frames;) {
            std::size_t run = frames - done;
            eachRing([&](Ring& ring) { run = std::min(run, ring.length - ring.at); });
            w.room(group, done, run);
            eachRing([&](Ring& ring) { ring.at = (ring.at + run) % ring.length; });
            done += run;
        }
        w.form == PlainForm::Integrators ? w.integrators(group, frames) : w.direct(group, frames);
        for (std::size_t i = 0; i < frames; ++i)
            for (std::size_t s = 0; s < kSides; ++s) w.bus[i][s] += w.block[i][s];
    }
    for (std::size_t i = 0; i < frames; ++i)
        for (std::size_t s = 0; s < kSides; ++s) stereo[2 * i + s] = sumOf(w.bus[i][s]);
    w.at += frames;
}

}  // namespace zv::bench
