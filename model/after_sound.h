/// What a slot holds once its sound has ended. A slot that sounds keeps its record; when an edit is taken back
/// meanwhile, what it brings waits here, and a save writes what waits. [control]
#pragma once

#include "model/jingle.h"

namespace zv {

/// The record stays as it is until its sound has ended (PlayingOtherPal), then the slot holds `content`.
void HoldAfterSound(int index, const PersistedJingle& content);
/// Null: nothing waits.
const PersistedJingle* AfterSound(int index);
/// Nothing waits for the slot any more.
void DropAfterSound(int index);
/// Another palette comes: what waits for its slots is gone. Hot jingles keep theirs.
void DropAfterSoundOfPalette();

}  // namespace zv
