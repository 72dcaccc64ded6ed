/// How a sound server is asked.
#pragma once

#include <cstdint>
#include <string>

namespace zv {

struct PulseOptions {
    std::string server;                ///< address; empty: what the user's environment says
    std::uint32_t periodFrames = 256;  ///< frames asked for at a time, at the rate of the device
};

}  // namespace zv
