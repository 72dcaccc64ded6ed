/// Dark mode, and how captions stand out on bright and dark buttons. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of dark.inc, each with its default.
struct DarkSettings {
#include "startup/settings/dark.inc"
};

extern DarkSettings darkSettings;

}  // namespace zv
