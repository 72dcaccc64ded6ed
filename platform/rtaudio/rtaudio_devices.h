/// Outputs and inputs through RtAudio: JACK and ALSA here, the systems' own interfaces elsewhere.
#pragma once

#include <memory>

#include "engine/ports.h"

namespace zv {

/// Devices of the first interface that lists any, JACK before ALSA. There is no word of a device that vanishes.
/// [control]
std::shared_ptr<engine::DeviceSource> makeRtAudioDevices();

}  // namespace zv
