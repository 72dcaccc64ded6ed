/// The list of palettes. [control]
#pragma once

#include <string>

namespace zv {

void lstPalRefresh();
/// Selects the entry of that name; none when it is missing.
void SelectPalette(const std::string& name);
void CentrePaletteList();

}  // namespace zv
