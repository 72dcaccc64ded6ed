/// How a channel comes into being. All of it under the engine's lock. [any]
#pragma once

#include <memory>

#include "engine/api/engine.h"

namespace zv::engine {

/// A channel of the given kind, playing or decoding; null with the code left when it has no output to play on.
std::shared_ptr<Channel> prepareChannel(Engine& engine, Kind kind, DWORD flags, const SoundFormat& format);
/// Makes it known, plugs a playing one into its output, and returns its handle.
DWORD publishChannel(Engine& engine, const std::shared_ptr<Channel>& channel);

}  // namespace zv::engine
