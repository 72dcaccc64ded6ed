/// The mark of a changed palette, and its save. [control]
#pragma once

namespace zv {

/// Marks the palette as changed: the message "mPalToSave" in the mode "save".
void MarkPalToSave();
/// The open palette takes the place of its section, and the hot jingles of theirs. False when a file could not be
/// written: the palette counts as changed then.
bool SaveHeldPalette();

}  // namespace zv
