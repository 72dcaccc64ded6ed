// Test sounds and measures for the sound units.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <random>
#include <vector>

namespace zv::engine::test {

inline std::vector<float> noise(std::size_t count, unsigned seed, float size = 0.5f) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> spread(-size, size);
    std::vector<float> out(count);
    for (float& v : out) v = spread(random);
    return out;
}

/// Stereo, the right side a quarter turn behind.
inline std::vector<float> sine(double hz, double rate, std::size_t frames, double size = 0.5) {
    std::vector<float> out(2 * frames);
    for (std::size_t i = 0; i < frames; ++i) {
        const double angle = 2 * std::numbers::pi * hz * static_cast<double>(i) / rate;
        out[2 * i] = static_cast<float>(size * std::sin(angle));
        out[2 * i + 1] = static_cast<float>(-size * std::cos(angle));
    }
    return out;
}

/// Size of the part of one side that is a sine of `hz`, and the power of everything else, between two frames.
struct Tone {
    double size, rest;  // rest: root mean square
};

inline Tone tone(const std::vector<float>& stereo, double hz, double rate, std::size_t from, std::size_t to,
                 std::size_t side = 0) {
    // Least squares over sine and cosine, windowed by nothing: exact for any frequency.
    double ss = 0, sc = 0, cc = 0, xs = 0, xc = 0;
    const double w = 2 * std::numbers::pi * hz / rate;
    for (std::size_t i = from; i < to; ++i) {
        const double s = std::sin(w * static_cast<double>(i)), c = std::cos(w * static_cast<double>(i));
        const double x = stereo[2 * i + side];
        ss += s * s, sc += s * c, cc += c * c, xs += x * s, xc += x * c;
    }
    const double det = ss * cc - sc * sc, a = (xs * cc - xc * sc) / det, b = (xc * ss - xs * sc) / det;
    double rest = 0;
    for (std::size_t i = from; i < to; ++i) {
        const double angle = w * static_cast<double>(i);
        const double d = stereo[2 * i + side] - a * std::sin(angle) - b * std::cos(angle);
        rest += d * d;
    }
    return {std::hypot(a, b), std::sqrt(rest / static_cast<double>(to - from))};
}

inline double decibels(double ratio) { return 20 * std::log10(std::max(ratio, 1e-30)); }

/// Largest second difference of one side: what a click raises and a smooth change does not.
inline double roughness(const std::vector<float>& stereo, std::size_t from, std::size_t to,
                        std::size_t side = 0) {
    double most = 0;
    for (std::size_t i = std::max<std::size_t>(from, 2); i < to; ++i)
        most = std::max(most, std::fabs(static_cast<double>(stereo[2 * i + side]) -
                                        2.0 * stereo[2 * i - 2 + side] + stereo[2 * i - 4 + side]));
    return most;
}

/// Runs `process(float*, frames)` over a copy of `stereo` in blocks of `size` frames.
template <typename Process>
std::vector<float> inBlocks(std::vector<float> stereo, std::size_t size, Process process) {
    for (std::size_t at = 0; at < stereo.size() / 2; at += size)
        process(stereo.data() + 2 * at, std::min(size, stereo.size() / 2 - at));
    return stereo;
}

}  // namespace zv::engine::test
