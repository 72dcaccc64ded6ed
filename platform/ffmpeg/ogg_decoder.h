/// Vorbis, Opus and FLAC in Ogg files. Private to platform/ffmpeg.
#pragma once

#include <memory>
#include <string>

#include "engine/ports.h"

namespace zv {

/// Nothing when `path` is no Ogg file with one of these sounds, or cannot be read. [any]
std::unique_ptr<engine::Decoder> openOggDecoder(const std::string& path);

}  // namespace zv
