#include "platform/audio_library.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/paths.h"

namespace zv {

std::string audioLibraryName() { return "bass.dll"; }

bool loadAudioLibrary(const std::string& path) {
    if (engine::audioLibraryControl()) return true;
    // Never unloaded once accepted: device threads may be inside it until the process ends.
    const HMODULE library = LoadLibraryW(pathFromUtf8(path).c_str());
    if (!library) return false;
    const auto find = [library](const char* name) {
        return reinterpret_cast<void*>(GetProcAddress(library, name));
    };
    if (engine::bindAudioLibrary(find)) return true;
    FreeLibrary(library);
    return false;
}

}  // namespace zv
