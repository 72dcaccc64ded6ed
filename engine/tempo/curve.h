/// Tempo, pitch and rate as functions of time: constant, or on the way from one value to another.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace zv::engine {

struct TempoParameters {
    double tempo = 0;  ///< percent, -95..5000; 0 unchanged
    double pitch = 0;  ///< semitones, -60..60; 0 unchanged
    double rate = 1;   ///< speed and pitch together, 0.05..20; 1 unchanged
    bool neutral() const { return tempo == 0 && pitch == 0 && rate == 1; }
    /// Source frames a frame of output.
    double speed() const { return (1 + tempo * 0.01) * rate; }
    /// Frames of the stretched sound a frame of output: how much higher it sounds.
    double transposition() const;
    /// Source frames a frame of the stretched sound.
    double stretch() const { return speed() / transposition(); }
    bool operator==(const TempoParameters&) const = default;
};

enum class TempoPart : std::uint8_t { Tempo, Pitch, Rate };

/// One of them over a clock of frames.
struct TempoLine {
    double from = 0, to = 0;
    std::uint64_t begin = 0, frames = 0;
    bool ratios = false;  ///< equal ratios instead of equal steps
    double zero = 0;      ///< what is added before ratios are taken
    double at(std::uint64_t time) const;
    bool moves(std::uint64_t time) const {
        return frames > 0 && static_cast<std::int64_t>(time - begin) < static_cast<std::int64_t>(frames);
    }
};

struct TempoCurve {
    std::array<TempoLine, 3> lines{TempoLine{}, TempoLine{}, TempoLine{1, 1}};
    TempoLine& line(TempoPart part) { return lines[static_cast<std::size_t>(part)]; }
    const TempoLine& line(TempoPart part) const { return lines[static_cast<std::size_t>(part)]; }

    TempoParameters at(std::uint64_t time) const;
    /// Where it ends.
    TempoParameters last() const { return {lines[0].to, lines[1].to, lines[2].to}; }
    bool moves(std::uint64_t time) const;
    /// The frame from `time` on from which it does not move.
    std::uint64_t restsFrom(std::uint64_t time) const;
    /// Whether anything but its speed as a whole changes from `time` on, and whether its pitch does.
    bool stretches(std::uint64_t time) const;
    bool transposes(std::uint64_t time) const;

    /// From the value reached at `time` to `value` in `frames`; 0 frames: at once. `ratios` holds for values
    /// that have any: of a tempo the speeds, of a pitch the frequencies.
    void move(TempoPart part, double value, std::uint64_t time, std::uint64_t frames, bool ratios);
};

/// Cut to the ranges of TempoParameters; what is no number is unchanged sound.
double cutTempo(TempoPart part, double value);

}  // namespace zv::engine
