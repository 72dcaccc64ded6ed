/// The audio library as a program meets it: a file beside the executable that is loaded at start. Programs
/// link bass_import, whose BASS_ functions forward to the loaded library; until one is loaded each returns
/// its failure value.
#pragma once

#include <string>

#include "engine/ports.h"

namespace zv::engine {

/// File name of the audio library on this system: "bass.dll" on Windows, "libbass.so" elsewhere. [any]
std::string audioLibraryName();

/// Loads the library at `path` (UTF-8); all BASS_ operations forward to it from then on, until the program
/// ends. False when the file is missing, is no library or lacks an operation: then nothing has changed. Once
/// a library is loaded, further calls return true and change nothing. [control]
bool loadAudioLibrary(const std::string& path);

/// Entry of the loaded library; null before. [any]
const EngineControl* audioLibraryControl();

}  // namespace zv::engine
