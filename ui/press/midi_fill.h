/// What the windows do for the control surface. [control]
#pragma once

namespace zv {

/// Fills the table midiUpcalls.
void FillMidiUpcalls();

}  // namespace zv
