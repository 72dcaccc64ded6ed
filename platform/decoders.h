/// The decoders that the engine was given, for who reads a whole file beside it: outlines, peaks, loudness.
#pragma once

#include <memory>

#include "engine/ports.h"

namespace zv {

/// Set where the engine's surroundings are made, before anything plays; null until then. [any]
inline std::shared_ptr<engine::DecoderSource> soundDecoders;

}  // namespace zv
