// A tracker module of the classic kind with four channels, written from nothing.
#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "sounds.h"

namespace samples {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr int kRows = 64, kChannels = 4, kSamples = 31;
constexpr int kRowsPerBeat = 3, kBarsPerPattern = 4, kBeatsPerBar = 4;
constexpr int kPlayedRows = kRowsPerBeat * kBarsPerPattern * kBeatsPerBar;
/// Rate at which a sample sounds at the period of its middle C, and that key.
constexpr double kSampleRate = 7093789.2 / (2 * 428);
constexpr int kMiddleKey = 60, kMiddlePeriod = 428;
constexpr int kSpeed = 6, kTempo = 99;  // a row of 15 / 99 s: 132 beats a minute in triplets

enum Instrument { kNone, kBass, kRide, kMinor7, kDominant, kMajor7, kSnareBrush };

/// Eight bits at the module's rate from a sound in full quality.
Bytes eightBit(const Mono& sound, double seconds, double gain) {
    Bytes out;
    const int n = static_cast<int>(seconds * kSampleRate) / 2 * 2;
    const double ratio = kRate / kSampleRate;
    Mono smooth(sound.size());
    Filter filter;
    for (std::size_t i = 0; i < sound.size(); ++i) smooth[i] = filter(sound[i], kSampleRate * 0.42, 0.7).low;
    for (int i = 0; i < n; ++i) {
        const auto at = static_cast<std::size_t>(i * ratio);
        const double fade = std::min(1.0, (n - i) / 200.0);
        const double x = at < smooth.size() ? smooth[at] * gain * fade : 0;
        out.push_back(
            static_cast<std::uint8_t>(static_cast<std::int8_t>(std::lround(std::clamp(x, -1.0, 1.0) * 127))));
    }
    return out;
}

Mono chord(std::initializer_list<double> keysDown) {
    Mono out;
    for (const double key : keysDown) {
        const Mono one = keys(key, 0.9);
        out.resize(std::max(out.size(), one.size()));
        for (std::size_t i = 0; i < one.size(); ++i) out[i] += 0.3 * one[i];
    }
    return out;
}

struct Cell {
    int instrument = kNone, key = 0, effect = 0, value = 0;
};
using Pattern = std::array<std::array<Cell, kChannels>, kRows>;

Cell note(int instrument, int key) { return {instrument, key, 0, 0}; }

/// One walk through the four chords; `round` makes each a little different.
Pattern walk(int round) {
    struct Bar {
        std::array<int, 4> bass;
        int chordInstrument, chordKey;
    };
    // Minor seventh, dominant, major seventh, dominant: round and round.
    const std::array<Bar, 4> bars{{{{50, 53, 57, 56}, kMinor7, 62},
                                   {{55, 59, 62, 61}, kDominant, 67},
                                   {{60, 59, 57, 55}, kMajor7, 60},
                                   {{57, 55, 52, 51}, kDominant, 57}}};
    Pattern pattern{};
    for (int bar = 0; bar < kBarsPerPattern; ++bar) {
        for (int beat = 0; beat < kBeatsPerBar; ++beat) {
            const int row = (bar * kBeatsPerBar + beat) * kRowsPerBeat;
            auto& cells = pattern[static_cast<std::size_t>(row)];
            const int step = bars[static_cast<std::size_t>(bar)]
                                 .bass[static_cast<std::size_t>(round % 2 == 0 ? beat : (beat * 3) % 4)];
            cells[0] = note(kBass, step);
            cells[1] = note(kRide, kMiddleKey);
            if (beat % 2 == 1) {
                cells[3] = note(kSnareBrush, kMiddleKey);
                pattern[static_cast<std::size_t>(row + 2)][1] = note(kRide, kMiddleKey);
            }
        }
        const Bar& b = bars[static_cast<std::size_t>(bar)];
        const int first = bar * kBeatsPerBar * kRowsPerBeat;
        pattern[static_cast<std::size_t>(first + (round % 2 == 0 ? 2 : 0))][2] =
            note(b.chordInstrument, b.chordKey);
        pattern[static_cast<std::size_t>(first + 8)][2] = note(b.chordInstrument, b.chordKey);
    }
    if (round == 0) {
        pattern[0][0].effect = 0xF;
        pattern[0][0].value = kSpeed;
        pattern[0][1].effect = 0xF;
        pattern[0][1].value = kTempo;
    }
    pattern[kPlayedRows - 1][3].effect = 0xD;  // on to the next pattern
    return pattern;
}

void put16(Bytes& out, std::size_t n) {
    out.push_back(static_cast<std::uint8_t>(n >> 8));
    out.push_back(static_cast<std::uint8_t>(n & 255));
}

void putText(Bytes& out, const std::string& text, std::size_t width) {
    for (std::size_t i = 0; i < width; ++i)
        out.push_back(i < text.size() ? static_cast<std::uint8_t>(text[i]) : 0);
}

void putCell(Bytes& out, const Cell& cell) {
    const int period =
        cell.instrument == kNone
            ? 0
            : static_cast<int>(std::lround(kMiddlePeriod * std::pow(2.0, (kMiddleKey - cell.key) / 12.0)));
    out.push_back(static_cast<std::uint8_t>((cell.instrument & 0xF0) | (period >> 8)));
    out.push_back(static_cast<std::uint8_t>(period & 255));
    out.push_back(static_cast<std::uint8_t>(((cell.instrument & 15) << 4) | cell.effect));
    out.push_back(static_cast<std::uint8_t>(cell.value));
}

}  // namespace

Bytes jazzModule() {
    struct Voice {
        const char* name;
        Bytes data;
        int volume;
    };
    // The bass is recorded an octave up: the lowest period of the format would be out of its reach otherwise.
    const std::array<Voice, 6> voices{{
        {"upright bass", eightBit(string(48, 0.9, 0.35, 5), 0.8, 1.1), 64},
        {"ride", eightBit(hat(0.6, 9), 0.5, 1.4), 20},
        {"minor seventh", eightBit(chord({60, 63, 67, 70}), 0.8, 0.8), 40},
        {"dominant", eightBit(chord({60, 64, 67, 70}), 0.8, 0.8), 40},
        {"major seventh", eightBit(chord({60, 64, 67, 71}), 0.8, 0.8), 40},
        {"brush", eightBit(brush(5), 0.26, 1.6), 30},
    }};
    constexpr int kRounds = 4;
    Bytes out;
    putText(out, "jazz bed", 20);
    for (std::size_t i = 0; i < kSamples; ++i) {
        const bool used = i < voices.size();
        putText(out, used ? voices[i].name : "", 22);
        put16(out, used ? voices[i].data.size() / 2 : 0);
        out.push_back(0);
        out.push_back(used ? static_cast<std::uint8_t>(voices[i].volume) : 0);
        put16(out, 0);
        put16(out, 1);
    }
    out.push_back(kRounds);
    out.push_back(127);
    for (int i = 0; i < 128; ++i) out.push_back(static_cast<std::uint8_t>(i < kRounds ? i : 0));
    putText(out, "M.K.", 4);
    for (int round = 0; round < kRounds; ++round) {
        for (const auto& row : walk(round)) {
            for (const Cell& cell : row) putCell(out, cell);
        }
    }
    for (const Voice& voice : voices) out.insert(out.end(), voice.data.begin(), voice.data.end());
    return out;
}

}  // namespace samples
