/// The file beside the executable that holds the sound engine. Answered by platform/posix and platform/windows.
#pragma once

#include <string>

#include "engine/import/library.h"

namespace zv {

/// File name of the audio library on this system: "bass.dll" on Windows, "libbass.so" elsewhere. [any]
std::string audioLibraryName();

/// Loads the library at `path` (UTF-8); all BASS_ operations forward to it from then on, until the program
/// ends. False when the file is missing, is no library or lacks an operation: then nothing has changed. Once
/// a library is loaded, further calls return true and change nothing. [control]
bool loadAudioLibrary(const std::string& path);

}  // namespace zv
