/// Putting a sound file on a button. [control]
#pragma once

#include <string>

namespace zv {

/// Assigns ClipPath, or a file that the user chooses. A jingle that plays keeps its button, and the display says so.
void clAssign(int index);
/// The button holds that file from now on, with the defaults of a new jingle but for `effects`. Marks nothing as changed.
void PutFile(int index, const std::string& path, const std::string& effects = {});
/// The language's key of why a button cannot hold that file, empty when it can: it is no sound, or a line end in its name
/// has no place in the palette's file.
std::string WhyNotAssigned(const std::string& path);
/// A file let go over a button.
void b_Jingle_OLEDragDrop(int index, const std::string& path);

}  // namespace zv
