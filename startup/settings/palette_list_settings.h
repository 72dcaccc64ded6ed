/// The list of palettes and the name of the open one. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of palette_list.inc, each with its default.
struct PaletteListSettings {
#include "startup/settings/palette_list.inc"
};

extern PaletteListSettings paletteListSettings;

}  // namespace zv
