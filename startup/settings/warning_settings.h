/// The warning before a jingle ends. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of warning.inc, each with its default.
struct WarningSettings {
#include "startup/settings/warning.inc"
};

extern WarningSettings warningSettings;

}  // namespace zv
