/// The outputs and the input: on or off, how loud. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of volumes.inc, each with its default.
struct VolumeSettings {
#include "startup/settings/volumes.inc"
};

extern VolumeSettings volumeSettings;

}  // namespace zv
