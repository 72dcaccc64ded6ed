/// The grid of jingle buttons and the hot jingles beside it. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of grid.inc, each with its default.
struct GridSettings {
#include "startup/settings/grid.inc"
};

extern GridSettings gridSettings;

}  // namespace zv
