/// The bar of a jingle button that shows what is left to play. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of bars.inc, each with its default.
struct BarSettings {
#include "startup/settings/bars.inc"
};

extern BarSettings barSettings;

}  // namespace zv
