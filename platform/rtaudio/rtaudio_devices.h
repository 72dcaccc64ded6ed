/// Outputs and inputs through RtAudio: ALSA here, the systems' own interfaces elsewhere.
#pragma once

#include <memory>

#include "engine/ports.h"

namespace zv {

/// Each list is what there is now; there is no word of a device that vanishes. [control]; what only asks: [any]
std::shared_ptr<engine::DeviceSource> makeRtAudioDevices();

}  // namespace zv
