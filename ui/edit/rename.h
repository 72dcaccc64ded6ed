/// Renaming the sound file of a button. [control]
#pragma once

namespace zv {

/// Opens the small window that asks for the new name.
void clRename(int index);

}  // namespace zv
