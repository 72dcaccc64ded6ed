/// A sound file gets another name, and every palette follows. [control]
#pragma once

#include <string>

namespace zv {

/// True when a stored path means the file of `full`, an absolute path.
bool IsFileOf(const std::string& stored, const std::string& full);

/// Renames the sound file of path `from` to that of path `to`, on disk and in every section of the palettes and
/// the hot jingles; `to` stands there as it is given. A file that is missing is renamed in the sections alone. An
/// empty text when all is done; else the reason, and file and sections are as they were.
std::string RenameSound(const std::string& from, const std::string& to);

}  // namespace zv
