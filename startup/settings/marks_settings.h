/// The colours of the marks on buttons and of the toggles. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of marks.inc, each with its default.
struct MarkSettings {
#include "startup/settings/marks.inc"
};

extern MarkSettings markSettings;

}  // namespace zv
