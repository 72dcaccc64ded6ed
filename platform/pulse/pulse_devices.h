/// The outputs and inputs of a PulseAudio server (or of PipeWire's answer to it).
#pragma once

#include <memory>

#include "engine/ports.h"
#include "platform/pulse/pulse_options.h"

namespace zv {

/// Devices of a sound server; what it puts in the place of a missing sound card is none. Names are the descriptions
/// that the server gives, ids its own names: both stable over replugging. A device that vanishes is told to its
/// client (deviceLost) and opened again by itself as soon as the server lists it again (deviceBack), also when the
/// server itself was restarted. While no server answers the lists are empty, at once. [control]
std::shared_ptr<engine::DeviceSource> makePulseDevices(PulseOptions options = {});

enum class PulseAnswer {
    ready,
    refused,  ///< no server is there
    silent,   ///< one is there and does not answer, as when its program is stopped
};

/// What the server at `options.server` answers; waits at most half a second. One that was silent is not asked by
/// others for some seconds, unless it answers here. [control] [worker]
PulseAnswer askPulseServer(const PulseOptions& options = {});
/// The same, at once where the server was silent a few seconds ago. [control] [worker]
PulseAnswer pulseServerState(const PulseOptions& options = {});

}  // namespace zv
