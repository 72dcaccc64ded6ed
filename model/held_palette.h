/// Which palette the slots 0 to 95 of J hold. The name that was chosen (paletteSettings.PaletteIndex) runs ahead of it:
/// a load follows the choice slot by slot, and until it is done the records belong to no palette. [control]
#pragma once

#include <string>

namespace zv {

/// Empty: a palette without a name, or none yet.
const std::string& HeldPalette();
/// The palette that a slot opened now belongs to: the one that is being loaded, else the held one.
const std::string& ComingPalette();
/// Slots of two palettes may stand side by side: nothing may be saved.
bool PaletteLoading();

/// The records are about to be overwritten by those of palette `name`. While they are still whole the upcall
/// `paletteLeaves` runs first. Returns the load's number.
int BeginPaletteLoad(const std::string& name);
/// False once another load has begun, or the records were given to another name.
bool IsNewestLoad(int load);
/// All slots of `name` are in the records; nothing when the load is not the newest one.
void EndPaletteLoad(int load, const std::string& name);
/// The records are those of `name` from now on: they were saved under it, or emptied.
void HoldPalette(const std::string& name);

}  // namespace zv
