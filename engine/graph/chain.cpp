#include "engine/graph/chain.h"

#include <algorithm>

namespace zv::engine {

Effect::Effect(DWORD fxKind, double rate) : kind(fxKind) {
    if (kind == BASS_FX_BFX_PEAKEQ) eqUnit = std::make_unique<dsp::PeakEq>(rate, kMostBands);
    if (kind == BASS_FX_DX8_REVERB) reverbUnit = std::make_unique<dsp::Reverb>(rate);
}

bool Effect::bypassed() const {
    if (eqUnit) return eqUnit->bypassed();
    if (reverbUnit) return reverbUnit->bypassed();
    return !gain.active() && gain.value() == 1.0F;
}

void Effect::prefetch() const {
    if (eqUnit) eqUnit->prefetch();
    if (reverbUnit) reverbUnit->prefetch();
}

void Effect::process(float* stereo, std::size_t frames) {
    if (eqUnit) {
        eqUnit->process(stereo, frames);
    } else if (reverbUnit) {
        reverbUnit->process(stereo, frames);
    } else {
        gain.scale(stereo, frames);
    }
}

void Effect::reset() {
    if (eqUnit) eqUnit->reset();
    if (reverbUnit) reverbUnit->reset();
    if (gain.active()) gain.advance(gain.left());
}

std::unique_ptr<Chain> Chain::build(const std::vector<std::shared_ptr<Effect>>& effects, int gainPriority) {
    // The gain was there before any effect, so of equal priorities it goes first.
    std::vector<std::pair<int, Stage>> staged{{gainPriority, Stage{}}};
    for (const auto& effect : effects) staged.emplace_back(effect->priority, Stage{effect});
    std::ranges::stable_sort(staged, [](const auto& a, const auto& b) { return a.first > b.first; });
    auto chain = std::make_unique<Chain>();
    for (auto& entry : staged) chain->stages.push_back(std::move(entry.second));
    return chain;
}

}  // namespace zv::engine
