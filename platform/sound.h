/// Where the engine comes from (audioLibraryName, loadAudioLibrary, audioLibraryControl) and what it is given.
#pragma once

#include <string_view>

#include "engine/ports.h"
#include "platform/audio_library.h"

namespace zv {

/// Decoders (FFmpeg, libopenmpt) and devices of the surroundings, offline ones in a rehearsal.
/// `system`: "Server" (PulseAudio, PipeWire), "JACK" or "ALSA"; anything else: the first of them that has an output.
/// [control]
engine::EnginePorts soundPorts(std::string_view system);

/// Whether there is an output now. A sound server that does not answer is waited for half a second. [worker]
bool soundOutputsThere();

}  // namespace zv
