/// Sound files, the sound of videos and web streams, decoded by FFmpeg's libraries into interleaved float at
/// the source's own rate and channel count.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "engine/ports.h"

namespace zv {

/// Opens the sound file at `path` (UTF-8). The length is exact at once and every seek lands on the frame
/// asked for, whatever the format. `error` receives 0, or BASS_ERROR_FILEOPEN (missing or unreadable),
/// _FILEFORM (not a sound file, or damaged beyond use), _CODEC (no decoder for it), _NOTAUDIO (a file without
/// sound), _MEM. [any]
std::unique_ptr<engine::Decoder> openFileDecoder(const std::string& path, int& error);

/// Connects to the http or https address `url`, waiting at most `timeoutMs`. The stream is read by a thread
/// of its own, so that read() never waits: 0 frames with ended() false means that no data is there. length()
/// is empty and seek() false. `error` receives 0, or BASS_ERROR_FILEOPEN (refused, or an error reply),
/// _TIMEOUT, _NONET (the host cannot be found or reached), _FILEFORM (no sound in it), _CODEC, _SSL,
/// _PROTOCOL (no http address). [any]
std::unique_ptr<engine::Decoder> openUrlDecoder(const std::string& url, std::uint32_t timeoutMs, int& error);

}  // namespace zv
