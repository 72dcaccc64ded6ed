/// Walks through the files below a folder. [any]
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace zv {

/// Hands each file below `folder`, full paths in the order of their names, to `file`, until that returns false. `entered`
/// hears each folder before its files, with the share of the tree that lies behind, 0 to 1. Links to folders are not
/// followed; what cannot be read is left out. False when `file` ended it.
bool WalkFiles(std::string_view folder, const std::function<bool(const std::string& path)>& file,
               const std::function<void(const std::string& folder, double share)>& entered = {});

}  // namespace zv
