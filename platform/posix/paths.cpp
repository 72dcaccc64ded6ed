#include "platform/paths.h"

#include <cstdlib>

namespace zv {

std::string environmentVariable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

std::filesystem::path userDataFolder() {
    const std::filesystem::path wanted = environmentVariable("XDG_DATA_HOME");
    if (wanted.is_absolute()) return wanted;
    const std::string home = environmentVariable("HOME");
    return std::filesystem::path(home.empty() ? "/tmp" : home) / ".local/share";
}

}  // namespace zv
