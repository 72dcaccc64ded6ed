/// The audio library as a program meets it: a file beside the executable that is loaded at start
/// (platform/audio_library.h). Programs link bass_import, whose BASS_ functions forward to the loaded library;
/// until one is bound each returns its failure value.
#pragma once

#include <functional>

#include "engine/ports.h"

namespace zv::engine {

/// The address of a symbol of the library; null when it has none of that name.
using SymbolFinder = std::function<void*(const char* name)>;

/// All BASS_ operations forward to the library that `find` looks into, from then on until the program ends; it
/// must stay loaded. False when it lacks an operation: then nothing has changed. [control]
bool bindAudioLibrary(const SymbolFinder& find);

/// Entry of the bound library; null before. [any]
const EngineControl* audioLibraryControl();

}  // namespace zv::engine
