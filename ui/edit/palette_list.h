/// The list of palettes. [control]
#pragma once

#include <string>

namespace zv {

void lstPalRefresh();
/// The list is limited; palettes beyond the limit are in the file all the same. Their number is told when the list
/// shows it, and once more when a palette has `opened`, which takes marks away.
void TellHiddenPalettes(bool opened);
/// Selects the entry of that name; none when it is missing.
void SelectPalette(const std::string& name);
void CentrePaletteList();

}  // namespace zv
