/// The mark of a changed palette. [control]
#pragma once

namespace zv {

/// Marks the palette as changed: the message "mPalToSave" in the mode "save".
void MarkPalToSave();

}  // namespace zv
