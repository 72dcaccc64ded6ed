/// What the main window shows held against the records, the settings and the sound. [control]
#pragma once

#include <string>

namespace zv {

/// What a control shows and should not, the first one found; empty while all agree. What should be shown is worked out
/// from records, settings and channels here once more, not asked from the code that draws.
/// Holds right after a tick of the display.
std::string screenFault();

}  // namespace zv
