/// Where sounds come from and what becomes of missing ones. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of folders.inc, each with its default.
struct FolderSettings {
#include "startup/settings/folders.inc"
};

extern FolderSettings folderSettings;

}  // namespace zv
