/// What a channel's sound passes on its way out: effects and the VOLDSP gain, in falling order of priority.
#pragma once

#include <memory>
#include <vector>

#include "engine/bass.h"
#include "engine/dsp/peak_eq.h"
#include "engine/dsp/reverb.h"
#include "engine/graph/slide.h"
#include "engine/realtime/trash.h"

namespace zv::engine {

inline constexpr std::size_t kMostBands = 64;

/// One effect of a channel. The caller's view and the unit that computes stand apart.
struct Effect {
    Effect(DWORD kind, double rate);

    HFX handle = 0;
    DWORD channel = 0;
    DWORD kind;
    int priority = 0;

    // [control]
    std::vector<BASS_BFX_PEAKEQ> bands;
    BASS_DX8_REVERB reverb{0, -96, 1000, 0.001F};
    BASS_BFX_VOLUME volume{BASS_BFX_CHANALL, 1};

    // [audio]
    std::unique_ptr<dsp::PeakEq> eqUnit;
    std::unique_ptr<dsp::Reverb> reverbUnit;
    Slide gain;

    /// True when process() leaves the samples alone. [audio]
    bool bypassed() const;
    /// Prefetches the state that process() reads. [audio]
    void prefetch() const;
    void process(float* stereo, std::size_t frames);  // [audio]
    void reset();                                     // [audio]
};

/// The stages in their order; built anew with every change and handed over whole.
struct Chain : Garbage {
    struct Stage {
        std::shared_ptr<Effect> effect;  ///< null: the VOLDSP gain
    };
    std::vector<Stage> stages;

    /// Sorts: higher priority first, of equals the older. [control]
    static std::unique_ptr<Chain> build(const std::vector<std::shared_ptr<Effect>>& effects,
                                        int gainPriority);
};

}  // namespace zv::engine
