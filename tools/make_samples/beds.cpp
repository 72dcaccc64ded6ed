// Beds: music to talk over. Each loops without a seam: what rings on after the last bar sounds in the first
// one.
#include <array>
#include <cmath>

#include "sounds.h"

namespace samples {
namespace {

struct Chords {
    std::vector<std::array<double, 4>> bars;
    const std::array<double, 4>& at(int bar) const {
        return bars[static_cast<std::size_t>(bar) % bars.size()];
    }
};

Stereo loop(Stereo dry, double seconds, double wet, double roomSeconds) {
    Stereo s = inRoom(dry, roomSeconds, wet);
    finishLoop(s, seconds);
    return s;
}

Stereo weatherBed() {
    const double beat = 60.0 / 96, bar = 4 * beat;
    constexpr int kBars = 12;
    const Chords chords{{{57, 60, 64, 71}, {53, 60, 64, 69}, {48, 55, 64, 67}, {55, 59, 62, 69}}};
    Stereo s(kBars * bar);
    for (int b = 0; b < kBars; ++b) {
        const auto& c = chords.at(b);
        for (const double key : c) s.add(pad(key, bar * 1.15, 0.5, 0.9, 0.7), b * bar, 0.13);
        s.add(bassNote(c[0] - 24, beat * 1.5), b * bar, 0.32);
        s.add(bassNote(c[0] - 24, beat * 0.8), b * bar + 2.5 * beat, 0.24);
        for (int i = 0; i < 8; ++i) {
            const double key = c[static_cast<std::size_t>((i * 3) % 4)] + 12 + (i % 4 == 3 ? 12 : 0);
            s.add(mallet(key, 0.9), b * bar + i * beat / 2, 0.16 + 0.03 * ((i + b) % 3),
                  0.6 * std::sin(i * 1.7 + b));
        }
        for (int i = 0; i < 8; ++i)
            s.add(hat(0.06, static_cast<std::uint64_t>(i + 1)), b * bar + i * beat / 2,
                  i % 2 == 0 ? 0.035 : 0.06, 0.3);
    }
    return loop(std::move(s), kBars * bar, 0.45, 1.8);
}

Stereo callInBed() {
    const double beat = 60.0 / 108, bar = 4 * beat;
    constexpr int kBars = 12;
    const Chords chords{{{50, 57, 60, 65}, {50, 57, 60, 65}, {55, 59, 62, 65}, {55, 58, 62, 64}}};
    Stereo s(kBars * bar);
    for (int b = 0; b < kBars; ++b) {
        const auto& c = chords.at(b);
        constexpr std::array<double, 5> kBassAt{0, 0.75, 1.5, 2.5, 3.25};
        constexpr std::array<double, 5> kBassStep{0, 0, 12, 7, 10};
        for (std::size_t i = 0; i < kBassAt.size(); ++i)
            s.add(bassNote(c[0] - 12 + kBassStep[i] - (i > 2 ? 12 : 0), beat * 0.4),
                  b * bar + kBassAt[i] * beat, 0.4);
        for (const double at : {0.5, 1.5, 2.0, 3.5}) {
            for (const double key : c)
                s.add(keys(key + 12, beat * 0.42), b * bar + at * beat, 0.09, (key - 57) / 12);
        }
        for (const double at : {0.0, 1.75, 2.0}) s.add(kick(0.8), b * bar + at * beat, 0.5);
        for (const double at : {1.0, 3.0}) {
            s.add(snare(static_cast<std::uint64_t>(b + 1)), b * bar + at * beat, 0.2);
            s.add(clap(static_cast<std::uint64_t>(b + 50)), b * bar + at * beat, 0.14, 0.2);
        }
        for (int i = 0; i < 16; ++i)
            s.add(hat(i % 4 == 2 ? 0.12 : 0.04, static_cast<std::uint64_t>(i + 3)), b * bar + i * beat / 4,
                  0.05 + 0.03 * (i % 2), -0.3);
    }
    return loop(std::move(s), kBars * bar, 0.25, 0.9);
}

Stereo backtimeBed() {
    const double beat = 60.0 / 120, bar = 4 * beat;
    constexpr int kBars = 30;  // one minute: it ends on the hour when it is started a minute before
    const Chords chords{{{50, 57, 62, 65}, {46, 53, 58, 65}, {53, 57, 60, 65}, {48, 55, 60, 64}}};
    Stereo s(kBars * bar);
    for (int b = 0; b < kBars; ++b) {
        const auto& c = chords.at(b);
        const bool full = b >= 8;
        for (int i = 0; i < 16; ++i)
            s.add(string(c[0] + (i % 4 == 3 ? 12 : 0), 0.28, 0.8, static_cast<std::uint64_t>(i + 1)),
                  b * bar + i * beat / 4, i % 4 == 0 ? 0.34 : 0.2, 0.25 * (i % 2 == 0 ? -1 : 1));
        for (const double key : c) s.add(pad(key, bar * 1.1, 0.3, 0.5, 1.1), b * bar, 0.12);
        s.add(kick(), b * bar, 0.55);
        s.add(kick(), b * bar + 2 * beat, 0.45);
        if (full) {
            s.add(snare(static_cast<std::uint64_t>(b)), b * bar + beat, 0.2);
            s.add(snare(static_cast<std::uint64_t>(b + 9)), b * bar + 3 * beat, 0.2);
            for (int i = 0; i < 8; ++i)
                s.add(hat(0.05, static_cast<std::uint64_t>(i + 2)), b * bar + i * beat / 2, 0.09, 0.35);
        }
        if (b % 4 == 3) {
            for (int i = 0; i < 4; ++i)
                s.add(tom(45 - 3 * i, 0.4), b * bar + 3 * beat + i * beat / 4, 0.35, -0.4 + 0.27 * i);
        }
        if (b % 8 == 0) s.add(crash(1.8, static_cast<std::uint64_t>(b + 1)), b * bar, 0.16, -0.3);
        s.add(bassNote(c[0] - 24, beat * 1.8), b * bar, 0.36);
        s.add(bassNote(c[0] - 24, beat * 1.8), b * bar + 2 * beat, 0.3);
    }
    return loop(std::move(s), kBars * bar, 0.3, 1.2);
}

Stereo heartbeat() {
    const double beat = 60.0 / 66;
    Stereo s(8 * beat);
    for (int b = 0; b < 8; ++b) {
        s.add(tom(27, 0.5), b * beat, 0.9, -0.1);
        s.add(tom(24, 0.55), b * beat + 0.27, 0.65, 0.1);
    }
    for (const double key : {38.0, 45.0}) s.add(pad(key, 8 * beat + 1.2, 1.2, 1.2, 0.3), 0, 0.1);
    return loop(std::move(s), 8 * beat, 0.3, 1.2);
}

Stereo quizClock() {
    Stereo s(30.5);
    for (int i = 0; i < 60; ++i) {
        const bool late = i >= 40;
        s.add(mallet(i % 2 == 0 ? 84 : 79, 0.12), i * 0.5, 0.16 + 0.002 * i, i % 2 == 0 ? -0.35 : 0.35);
        s.add(hat(0.03, static_cast<std::uint64_t>(i % 5 + 1)), i * 0.5, 0.25, i % 2 == 0 ? -0.35 : 0.35);
        if (late) s.add(mallet(72, 0.1), i * 0.5 + 0.25, 0.1);
    }
    for (int bar = 0; bar < 5; ++bar) {
        for (const double key : {45.0 + bar, 52.0 + bar, 57.0 + bar})
            s.add(pad(key, 6.6, 1.2, 1.0, 0.6 + 0.15 * bar), bar * 6.0, 0.11 + 0.02 * bar);
        for (int i = 0; i < 6; ++i) s.add(bassNote(33 + bar, 0.4), bar * 6.0 + i, 0.22);
    }
    s.add(bell(84, 2, 1), 30, 0.5, -0.1);
    s.add(bell(91, 2, 1), 30, 0.3, 0.2);
    return inRoom(s, 1.3, 0.35);
}

Stereo brushLoop() {
    const double beat = 60.0 / 132;
    Stereo s(16 * beat);
    for (int i = 0; i < 16; ++i) {
        s.add(brush(static_cast<std::uint64_t>(i + 1)), i * beat, i % 2 == 1 ? 0.6 : 0.3, -0.3);
        s.add(hat(0.35, static_cast<std::uint64_t>(i + 40)), i * beat, 0.1, 0.35);
        if (i % 2 == 1) s.add(hat(0.2, static_cast<std::uint64_t>(i + 60)), (i + 0.667) * beat, 0.08, 0.35);
        if (i % 4 == 0) s.add(kick(0.4), i * beat, 0.25);
    }
    return loop(std::move(s), 16 * beat, 0.3, 0.9);
}

}  // namespace

const std::vector<Sound> kBeds{
    {"Weather Bed", "ogg", weatherBed},   {"Call In Bed", "m4a", callInBed},
    {"Backtime Bed", "mp3", backtimeBed}, {"Heartbeat Loop", "ogg", heartbeat},
    {"Quiz Clock", "mp3", quizClock},     {"Brush Loop", "ogg", brushLoop},
};

}  // namespace samples
