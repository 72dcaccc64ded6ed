/// The sound devices of a desktop.
#pragma once

#include <memory>

#include "engine/ports.h"

namespace zv {

/// The sound server's devices; RtAudio's when no server answers and it lists devices. Never null: without any
/// device the lists are empty and the no-sound device works. [control]
std::shared_ptr<engine::DeviceSource> desktopDevices();

}  // namespace zv
