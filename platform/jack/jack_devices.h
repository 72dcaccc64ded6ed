/// The outputs and inputs of a JACK server.
#pragma once

#include <memory>

#include "engine/ports.h"

namespace zv {

/// Each pair of physical ports is a device, named after its client and its channels ("system 1/2"); a single one
/// stands for both sides. The server's rate and block size are taken as they are. No server is started. One that goes
/// is told to the clients (deviceLost) and followed when it comes again (deviceChanged, deviceBack), within a second.
/// While none is there the lists are empty, at once. [control]; what only asks: [any]
std::shared_ptr<engine::DeviceSource> makeJackDevices();

}  // namespace zv
