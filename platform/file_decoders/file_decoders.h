/// Everything that can be opened: files and addresses through FFmpeg, modules through libopenmpt.
#pragma once

#include <memory>

#include "engine/ports.h"

namespace zv {

/// The decoders of the program, the rehearsal and the tests alike. [any]
std::shared_ptr<engine::DecoderSource> makeFileDecoders();

}  // namespace zv
