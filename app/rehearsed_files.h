/// What a rehearsal holds against the palettes' file: a plain memory of what stood there.
#pragma once

#include <string>

namespace zv {

/// What the file of the palettes has lost or got that nobody took or put there since the last call, and where an open
/// palette without unsaved edits differs from it; empty while all is well. Asked after each tick. [control]
std::string filesFault();

}  // namespace zv
