/// The counter of the display. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of display.inc, each with its default.
struct DisplaySettings {
#include "startup/settings/display.inc"
};

extern DisplaySettings displaySettings;

}  // namespace zv
