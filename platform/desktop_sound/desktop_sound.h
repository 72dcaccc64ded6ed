/// The sound devices of a desktop.
#pragma once

#include <memory>
#include <string_view>

#include "engine/ports.h"

namespace zv {

/// The devices of a sound system (soundPorts). Never null: without any device the lists are empty, and the no-sound
/// device works. [control]
std::shared_ptr<engine::DeviceSource> desktopDevices(std::string_view system);

}  // namespace zv
