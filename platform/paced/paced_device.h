/// The no-sound device: a thread that asks for sound at the pace of a clock and throws it away.
#pragma once

#include <cstdint>
#include <memory>

#include "engine/ports.h"

namespace zv {

/// Starts calling `client` for `periodFrames` at a time, at `rate` Hz. Null when either is 0. [control]
std::unique_ptr<engine::SoundDevice> openPacedDevice(std::uint32_t rate, std::uint32_t periodFrames,
                                                     engine::SoundClient& client);

}  // namespace zv
