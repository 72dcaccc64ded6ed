/// Playing, stopping and moving a channel, and where it stands: what the caller sees at once, and the commands. All of it
/// under the engine's lock. [any]
#pragma once

#include "engine/api/engine.h"

namespace zv::engine {

void sendPlay(Engine& engine, Channel& channel);
void sendStop(Engine& engine, Channel& channel);
void sendMove(Engine& engine, Channel& channel, std::uint64_t frame);
/// Makes the stretched sound from `frame` on, if what it is made of is in memory. [control]
void primeTempo(Engine& engine, Channel& channel, std::uint64_t frame);
/// The frame that the caller sees: the commanded one until the move has been heard.
std::uint64_t positionOf(Channel& channel);
/// Tells the graph how far the channel was read by hand: before anything else takes sound from it.
void settleRead(Engine& engine, Channel& channel);

}  // namespace zv::engine
