/// The place of the main window, its frame and its tab. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of window.inc, each with its default.
struct WindowSettings {
#include "startup/settings/window.inc"

    std::int32_t Monitor = 0;  ///< index of the monitor in use; the file keeps its own value
};

extern WindowSettings windowSettings;

}  // namespace zv
