/// The live web stream. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A streaming server on the studio's own machine, where the usual ones answer.
inline constexpr const char* kDefaultStreamUrl = "http://localhost:8000/live";

/// A field for every line of live.inc, each with its default.
struct LiveSettings {
#include "startup/settings/live.inc"
};

extern LiveSettings liveSettings;

}  // namespace zv
