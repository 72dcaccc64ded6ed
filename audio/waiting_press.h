/// Presses on slots whose files are still being opened: they sound as soon as the slot is ready. [control]
#pragma once

#include <optional>

namespace zv {

/// Remembers a press; `velocity` as clPlay takes it. The first of several on one slot counts.
void KeepWaitingPress(int index, int velocity);
/// The press that waits for the slot, which it does no longer; nothing when none did.
std::optional<int> TakeWaitingPress(int index);
/// None waits any more.
void DropWaitingPresses();

}  // namespace zv
