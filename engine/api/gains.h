/// Gains that slide, VOL and VOLDSP: what the caller sees at once, and the commands. All of it under the engine's lock.
/// [any]
#pragma once

#include "engine/api/engine.h"

namespace zv::engine {

/// Above it a gain is refused: 60 dB. So no product of sound and gains runs to infinity.
inline constexpr float kMostGain = 1000;

/// Moves VOL to `value` in `ms`; with `stops` the channel stops at the end of the slide.
void sendVolume(Engine& engine, Channel& channel, float value, std::uint32_t ms, bool logarithmic,
                bool stops);
void sendVoldsp(Engine& engine, Channel& channel, float value, std::uint32_t ms, bool logarithmic);

}  // namespace zv::engine
