/// The search window and the playlists. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of search.inc, each with its default.
struct SearchSettings {
#include "startup/settings/search.inc"
};

extern SearchSettings searchSettings;

}  // namespace zv
