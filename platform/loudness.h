/// How loud sound is, measured as broadcasters do: gated programme loudness and true peak.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

namespace zv {

struct Loudness {
    double integrated = 0;  ///< LUFS; minus infinity where all is too quiet to count (under -70 LUFS)
    double truePeak = 0;    ///< dBTP of the loudest side; minus infinity for silence
};

/// Measures one stretch of sound, handed over in pieces. Used by one thread at a time. [worker]
class LoudnessMeter {
  public:
    virtual ~LoudnessMeter() = default;
    /// Interleaved frames, of any number. Throws std::bad_alloc.
    virtual void add(std::span<const float> frames) = 0;
    /// Of all that was added so far.
    virtual Loudness result() const = 0;
};

/// Sound of one channel counts as heard on both sides. Null for a format that cannot be measured (no channels, more than
/// 64, a rate of under 16 or over 2,822,400 Hz). [worker]
std::unique_ptr<LoudnessMeter> makeLoudnessMeter(std::uint32_t rate, std::uint32_t channels);

}  // namespace zv
