/// The open palette and whether it saves itself. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of palette.inc, each with its default.
struct PaletteSettings {
#include "startup/settings/palette.inc"
};

extern PaletteSettings paletteSettings;

}  // namespace zv
