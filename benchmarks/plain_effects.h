/// What the engine's effects are held against: seven bands of equaliser and a reverb of the same structure
/// for many sounds at once, in one plain loop without an engine. It shares no code with engine/dsp. Eight
/// stereo sounds lie side by side in a vector, so that nothing has to be turned about within one; that all of
/// them sound in step and have the same settings is what makes it so plain.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace zv::bench {

struct PlainBand {
    double centreHz, gainDb, octaves;
};

/// How a band is computed: as the engine does it (a pair of integrators, exact down to the lowest bands), or
/// as the textbook's direct form, which is cheaper and too coarse for bands of some 100 Hz.
enum class PlainForm { Integrators, Direct };

class PlainEffects {
  public:
    /// `sounds` (a multiple of eight, stereo, all of one length) must outlive it.
    PlainEffects(const std::vector<std::vector<float>>& sounds, std::span<const PlainBand> bands,
                 PlainForm form, double rate);
    ~PlainEffects();
    PlainEffects(const PlainEffects&) = delete;
    PlainEffects& operator=(const PlainEffects&) = delete;

    /// The next `frames` (a multiple of four) of all sounds, looping, through reverb and equaliser, added up.
    void render(float* stereo, std::size_t frames);

  private:
    struct Work;
    std::unique_ptr<Work> work_;
};

}  // namespace zv::bench
