/// The lines of a palette's section out of the records, and the import of sound files that goes with a save.
/// [control]
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "model/jingle.h"
#include "startup/impulse.h"

namespace zv {

inline constexpr const char* kEmptyPaletteKey = "This_palette_is_empty";
inline constexpr const char* kPartEnd = ".part";  ///< of an import that is under way

/// The keys of one filled slot in their order, those of default values left out. `suffix` is the number in
/// the file; `path` what is written as the path. A line with an empty value means that the key has to go.
std::vector<cImpulse::Line> JingleLines(const JingleRecord& jingle, int suffix, const std::string& path);
/// What stands in the file as the path of a jingle: without the program folder; copied into the sample folder
/// first where files are imported.
std::string StoredPath(const std::string& path);
/// The vector of effects that changes nothing, for a file of `freq` Hz.
std::string NeutralFXV(int freq);

/// What lines are made for: a save copies foreign files into the sample folder, a look leaves all as it is.
enum class Purpose : std::uint8_t { save, look };

/// Lines of slots `first` to `last` with their numbers less `first`. `stored` is what the file holds for them.
std::vector<cImpulse::Line> SlotLines(int first, int last, const std::vector<cImpulse::Line>& stored,
                                      Purpose purpose);
/// Removes what imports of a run that was killed have left in the import folder.
void SweepParts();
/// Names of files that could not be imported since the last call.
std::vector<std::string> TakeLockedFiles();

}  // namespace zv
