/// Sound files for who reads one beside the engine: outlines, peaks, loudness. [any]
#pragma once

#include <memory>
#include <string>

#include "platform/decoders.h"

namespace zv {

/// The file at `path` (absolute), as a stream or as a module; null when it cannot be read.
std::unique_ptr<engine::Decoder> OpenSoundFile(const std::string& path);

}  // namespace zv
