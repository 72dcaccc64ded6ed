/// What a press and a key mean. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of keys.inc, each with its default.
struct KeySettings {
#include "startup/settings/keys.inc"
};

extern KeySettings keySettings;

}  // namespace zv
