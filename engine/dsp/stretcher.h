/// Another tempo at the same pitch. The sound is cut into sequences of 40 to 90 ms, which are laid closer together or
/// further apart; each begins, within 15 to 20 ms, where it resembles most how the one before it goes on, and is
/// cross-faded with that for 8 ms.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zv::engine::dsp {

/// Used by one thread at a time: [worker] [control]
class Stretcher {
  public:
    Stretcher(std::uint32_t rate, std::uint32_t channels);

    /// Source frames a frame of output, above 0. Holds from the next sequence on, without a seam.
    void setTempo(double ratio);
    /// Frames that put() must still bring before make() makes the next sequence.
    std::size_t lacking() const;
    void put(std::span<const float> in);  ///< interleaved
    /// Makes the next sequence; returns its frames, 0 while something is lacking or the last one is not taken.
    std::size_t make();
    std::size_t ready() const {
        return (made_.size() - taken_) / channels_;
    }                                        ///< frames that take() would give
    std::size_t take(std::span<float> out);  ///< frames written
    /// Frames of a sequence at the present tempo; the first one is an overlap shorter.
    std::size_t sequence() const { return sequence_; }
    /// Forgets the sound that is held.
    void clear();

  private:
    std::size_t windowStart() const;
    std::size_t bestStart(std::size_t window);
    void pass(std::size_t frames);

    const std::uint32_t rate_, channels_;
    const std::size_t overlap_;              ///< frames; a multiple of 8, as is search_
    std::size_t sequence_ = 0, search_ = 0;  ///< frames made at a time; places that are tried
    double tempo_ = 1;
    bool begun_ = false;
    double place_ = 0;               ///< where the next sequence belongs, in frames from first_ on
    std::size_t first_ = 0;          ///< of held_, in samples: what lies before it is done with
    std::size_t skip_ = 0;           ///< frames to come that no sequence will need
    std::vector<float> held_, end_;  ///< end_: how the last sequence goes on
    std::vector<float> made_, alike_;
    std::size_t taken_ = 0;  ///< samples of made_
};

}  // namespace zv::engine::dsp
