/// Opening a palette and the hot jingles: names first, then sounds. [control]
#pragma once

#include <string>

namespace zv {

/// Loads palette `name` into slots 0 to 95: all names and colours first, then the sounds. A slot that still
/// sounds keeps its record. Slots whose button does not exist are left alone.
void OpenFile(const std::string& name);
/// Loads the hot jingles into slots 96 to 119.
void OpenFile();

}  // namespace zv
