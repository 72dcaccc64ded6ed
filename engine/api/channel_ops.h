/// What several operations on channels share. All of it under the engine's lock. [any]
#pragma once

#include <cstdint>
#include <memory>

#include "engine/api/engine.h"

namespace zv::engine {

/// Above it a gain is refused: 60 dB. So no product of sound and gains runs to infinity.
inline constexpr float kMostGain = 1000;

void sendVolume(Engine& engine, Channel& channel, float value, std::uint32_t ms, bool logarithmic,
                bool stops);
void sendVoldsp(Engine& engine, Channel& channel, float value, std::uint32_t ms, bool logarithmic);
/// Makes the stretched sound from `frame` on, if what it is made of is in memory. [control]
void primeTempo(Engine& engine, Channel& channel, std::uint64_t frame);
void sendMove(Engine& engine, Channel& channel, std::uint64_t frame);
void sendPlay(Engine& engine, Channel& channel);
void sendStop(Engine& engine, Channel& channel);
std::uint64_t positionOf(Channel& channel);
/// Tells the graph how far the channel was read by hand: before anything else takes sound from it.
void settleRead(Engine& engine, Channel& channel);

/// Makes a channel of the given kind known, playing or decoding; null with the code left when it has no
/// output to play on.
std::shared_ptr<Channel> prepareChannel(Engine& engine, Kind kind, DWORD flags, const SoundFormat& format);
DWORD publishChannel(Engine& engine, const std::shared_ptr<Channel>& channel);

}  // namespace zv::engine
