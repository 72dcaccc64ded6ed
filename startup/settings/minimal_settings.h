/// The minimal view. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of minimal.inc, each with its default.
struct MinimalSettings {
#include "startup/settings/minimal.inc"
};

extern MinimalSettings minimalSettings;

}  // namespace zv
