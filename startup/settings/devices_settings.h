/// Which sound devices are used, and how. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of devices.inc, each with its default.
struct DeviceSettings {
#include "startup/settings/devices.inc"

    std::int32_t DeviceSinglePending = 0;  ///< DeviceSingle as chosen in the window; the one that is saved
};

extern DeviceSettings deviceSettings;

}  // namespace zv
