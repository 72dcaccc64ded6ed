/// Where the engine comes from (audioLibraryName, loadAudioLibrary, audioLibraryControl) and what it is given.
#pragma once

#include "engine/ports.h"
#include "platform/audio_library.h"

namespace zv {

/// Decoders (FFmpeg, libopenmpt), stretcher (SoundTouch) and devices of the surroundings: a sound server's on
/// the desktop, offline ones in a rehearsal. [control]
engine::EnginePorts soundPorts();

/// Whether there is an output now. A sound server that does not answer is waited for half a second. [worker]
bool soundOutputsThere();

}  // namespace zv
