/// Where the engine comes from and what it is given.
#pragma once

#include <string>

#include "engine/ports.h"

namespace zv {

/// Decoders (FFmpeg, libopenmpt), stretcher (SoundTouch) and devices of the surroundings: a sound server's on
/// the desktop, offline ones in a rehearsal. [control]
EnginePorts soundPorts();

/// File name of the audio library on this system: "bass.dll" on Windows, "libbass.so" elsewhere.
std::string audioLibraryName();
/// Loads the library at `path`; all BASS_ operations forward to it from then on. False when it is missing or lacks
/// an operation. [control]
bool loadAudioLibrary(const std::string& path);
/// Entry of the loaded library; null before.
const EngineControl* audioLibraryControl();

}  // namespace zv
