/// Devices of the first of several sound systems that lists an output: asked anew until one was opened, so that a server
/// that starts late and a card that is plugged in later are found.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "engine/ports.h"

namespace zv {

struct SoundSystem {
    std::shared_ptr<engine::DeviceSource> devices;
    /// True while neither this one nor those after it may be asked, because a server that is there has the cards.
    std::function<bool()> waits = {};
};

/// [control]; what only asks: [any]
std::shared_ptr<engine::DeviceSource> chooseDevices(std::vector<SoundSystem> systems);

}  // namespace zv
