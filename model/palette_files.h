/// Palettes and hot jingles between their files and the records. [control]
#pragma once

#include <string>
#include <vector>

#include "startup/impulse.h"

namespace zv {

/// Writes the palette's section in one rewrite, then the hot jingles. What happens to the old section is told
/// by SaveMode, which is cleared. Nothing for an empty name. A slot that still sounds from an earlier palette
/// keeps what the file has for it. A file that cannot be written stays as it was, the mark says so and false
/// is returned.
bool CloseFile(const std::string& name);
/// True if the palette file holds a "[" anywhere.
bool PalFileTest();

/// Leaves a copy of the records in the history when they differ from the palette's section.
void KeepUnsavedPalette();
void KeepUnsavedHotJingles();
/// What a save would write of the palette's or the hot jingles' records now; nothing is imported.
std::vector<cImpulse::Line> LinesOfRecords(bool hot);
/// The section goes, with a copy in the history.
void DeletePalette(const std::string& name);

/// Takes one slot out of a palette that is not open, and with it the slots above the grid and the keys
/// AutoDuck, NoAutomix and NoTrigDuck of the others; the history gets a copy. Nothing for an empty section, a
/// negative slot, or a slot that holds another file than `path`, when one is named. False when the file could
/// not be written; it is then as it was.
bool RemJing(const std::string& section, int slot, const std::string& path = {});

}  // namespace zv
