#include "platform/audio_library.h"

#include <dlfcn.h>

namespace zv {

std::string audioLibraryName() { return "libbass.so"; }

bool loadAudioLibrary(const std::string& path) {
    if (engine::audioLibraryControl()) return true;
    // Never unloaded once accepted: device threads may be inside it until the process ends.
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) return false;
    if (engine::bindAudioLibrary([library](const char* name) { return dlsym(library, name); })) return true;
    dlclose(library);
    return false;
}

}  // namespace zv
