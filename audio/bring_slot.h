/// Another content for a slot, while its sound may go on. [control]
#pragma once

#include <optional>

#include "model/jingle.h"

namespace zv {

/// What the slot holds as a palette file would: a loop end that is the sound's, and effects that change nothing, are left
/// out. Of a slot that waits for its sound's end what waits; nothing while it still sounds from an earlier palette.
std::optional<PersistedJingle> SlotContent(int index);

/// The slot holds `content` from now on. The same file stays open, and what sounds of it goes on with the new settings;
/// a sound of another file goes on to its end, and the slot follows then.
void BringSlot(int index, const PersistedJingle& content);

}  // namespace zv
