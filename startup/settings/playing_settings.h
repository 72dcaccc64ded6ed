/// The colours of what plays. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of playing.inc, each with its default.
struct PlayingSettings {
#include "startup/settings/playing.inc"
};

extern PlayingSettings playingSettings;

}  // namespace zv
