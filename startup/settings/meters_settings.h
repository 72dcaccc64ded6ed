/// The level meters. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of meters.inc, each with its default.
struct MeterSettings {
#include "startup/settings/meters.inc"
};

extern MeterSettings meterSettings;

}  // namespace zv
