/// Talk-over and the duck: how far, how fast, from which level. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of duck.inc, each with its default.
struct DuckSettings {
#include "startup/settings/duck.inc"
};

extern DuckSettings duckSettings;

}  // namespace zv
