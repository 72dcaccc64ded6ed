/// Tracker modules (mod, mo3, s3m, xm, it, mtm), rendered by libopenmpt.
#pragma once

#include <memory>
#include <string>

#include "engine/ports.h"

namespace zv {

/// Opens the module at `path` (UTF-8) as 44,100 Hz stereo, played once through without an endless repeat. What is
/// read is rendered into memory and kept, so that seeks are exact; a seek far ahead renders what lies between. `error` receives 0, or BASS_ERROR_FILEOPEN (missing or
/// unreadable), _FILEFORM (not a module), _MEM. [any]
std::unique_ptr<engine::Decoder> openModuleDecoder(const std::string& path, int& error);

}  // namespace zv
