/// The clock and the date of the display. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of clock.inc, each with its default.
struct ClockSettings {
#include "startup/settings/clock.inc"
};

extern ClockSettings clockSettings;

}  // namespace zv
