/// What happens to the palette that is open when another one takes its place. [control]
#pragma once

namespace zv {

/// The records are about to become another palette's: a save that AutoSave waits with is made, unsaved edits leave a
/// copy in the history, and jingles that were cut elsewhere and pasted unsaved stay where they were.
void LeavePalette();
/// The program ends: as LeavePalette, for the hot jingles as well.
void LeaveForGood();
/// A palette stands in the records: the wait mark goes, and what could not be saved or read is told.
void PaletteOpened();

}  // namespace zv
