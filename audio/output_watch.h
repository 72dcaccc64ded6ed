/// Watches the outputs while the program runs: one that goes away or falls silent is told, and where there was none
/// at the start the first that comes is taken. [control]
#pragma once

#include <string>

namespace zv {

inline constexpr int kOutputWatchMs = 200;  ///< between two looks

/// One look; audioUpcalls.outputsChanged is called when OutputTrouble() has changed.
void WatchOutputs();
/// What is wrong with the outputs, in the user's words; empty while all is well.
const std::string& OutputTrouble();

}  // namespace zv
