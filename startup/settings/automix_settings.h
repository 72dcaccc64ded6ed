/// Automix and the fade to the end. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of automix.inc, each with its default.
struct AutomixSettings {
#include "startup/settings/automix.inc"
};

extern AutomixSettings automixSettings;

}  // namespace zv
