/// The outline of a sound at several zoom levels, for whoever draws it.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "engine/ports.h"
#include "platform/jobs.h"

namespace zv {

/// What one column of a drawing stands for, on one side.
struct WaveBin {
    float low = 0, high = 0;  ///< smallest and largest sample
    float rms = 0;
};

struct Waveform {
    static constexpr std::size_t levels = 5;
    /// Frames that a bin of a level stands for: 64, 512, 4,096, ... The last bin may stand for fewer.
    static constexpr std::uint64_t framesPerBin(std::size_t level) {
        return std::uint64_t{64} << (3 * level);
    }

    std::uint32_t rate = 0;    ///< Hz
    std::uint64_t frames = 0;  ///< that are outlined so far
    std::uint64_t length = 0;  ///< of the whole sound
    /// By level and side (left, right; one of one channel is heard on both, of more the first two count). The finest
    /// level of a long sound is empty.
    std::array<std::array<std::vector<WaveBin>, 2>, levels> bins;

    /// Sounds of more frames are kept without their finest level, which alone would take as much as all others seven
    /// times.
    static constexpr std::uint64_t longSound = std::uint64_t{1} << 23;
    std::size_t finest() const { return length > longSound ? 1 : 0; }
    /// The coarsest level whose bins are no longer than `framesPerColumn`; the finest when all are.
    std::size_t levelFor(double framesPerColumn) const;
};

/// Puts a waveform together from sound handed over in pieces. Used by one thread at a time. [any]
class WaveformBuilder {
  public:
    WaveformBuilder(std::uint32_t rate, std::uint32_t channels, std::uint64_t length);
    void add(std::span<const float> interleaved);
    /// What there is so far; unfinished bins are in it.
    Waveform waveform() const;

  private:
    struct Sum {
        WaveBin bin;
        double squares = 0;
        std::uint64_t frames = 0;
    };
    void finish(std::size_t level, std::size_t side);

    Waveform waveform_;
    std::uint32_t channels_;
    std::array<std::array<Sum, 2>, Waveform::levels> open_{};  ///< bins that are not full
};

/// Reads all of `decoder` from its start. `part` is given what there is after the first piece and about ten times on the
/// way. What was read when the job is cancelled is returned. [worker]
Waveform readWaveform(engine::Decoder& decoder, JobWork& work, const std::function<void(Waveform)>& part);

}  // namespace zv
