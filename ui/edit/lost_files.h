/// Sound files that are not where the palettes say, looked for below a folder. [any]
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/jobs.h"
#include "startup/impulse.h"

namespace zv {

/// What is looked for: the jingle's own file, and all that the two files name.
struct LostSearch {
    std::string path;  ///< as the jingle's record has it
    std::string folder;
    std::string palettes = {}, hotJingles = {};  ///< bytes of palette.ini and HotJingles.ini
    std::vector<std::string> records = {};       ///< paths of the open palette
};

struct FoundFiles {
    std::vector<std::string> own;               ///< files of the jingle's file name
    std::map<std::string, std::string> others;  ///< missing path, where it was found
    int seen = 0;                               ///< files looked at
};

/// Walks the folder. Of several files of one name the one counts whose folders agree best with the lost path's; where two
/// agree alike, none. Progress: percent, and "folder<LF>files seen". [worker]
FoundFiles FindLostFiles(const LostSearch& search, JobWork& work);

/// A path in a section.
struct PathChange {
    std::string section, key, before, after;
};
/// All palettes but `held` that name a missing path get the new one; what was changed.
std::vector<PathChange> MovePaths(const std::map<std::string, std::string>& moved, const std::string& held);
/// Undoes what MovePaths has changed (`back`) or does it again, where the path has not been changed since.
void BringPaths(const std::vector<PathChange>& changes, bool back);

}  // namespace zv
