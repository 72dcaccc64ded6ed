/// Palettes and hot jingles between their files and the records. [control]
#pragma once

#include <string>
#include <vector>

#include "model/jingle.h"
#include "startup/impulse.h"

namespace zv {

inline constexpr const char* kEmptyPaletteKey = "This_palette_is_empty";

/// Writes the palette's section in one rewrite, then the hot jingles. What happens to the old section is told
/// by SaveMode, which is cleared. Nothing for an empty name. A slot that still sounds from an earlier palette
/// keeps what the file has for it. A file that cannot be written stays as it was, the mark says so and false
/// is returned.
bool CloseFile(const std::string& name);
/// Writes slots 96 to 119 into the section "HotJingles". False when the file could not be written.
bool CloseFileHotJingles();
/// True if the palette file holds a "[" anywhere.
bool PalFileTest();

/// The keys of one filled slot in their order, those of default values left out. `suffix` is the number in
/// the file; `path` what is written as the path. A line with an empty value means that the key has to go.
std::vector<cImpulse::Line> JingleLines(const JingleRecord& jingle, int suffix, const std::string& path);
/// What stands in the file as the path of a jingle: without the program folder; copied into the sample folder
/// first where files are imported.
std::string StoredPath(const std::string& path);
/// The vector of effects that changes nothing, for a file of `freq` Hz.
std::string NeutralFXV(int freq);

/// Takes one slot out of a palette that is not open, and with it the slots above the grid and the keys
/// AutoDuck, NoAutomix and NoTrigDuck of the others. Nothing for an empty section or a negative slot. False
/// when the file could not be written; it is then as it was.
bool RemJing(const std::string& section, int slot);

}  // namespace zv
