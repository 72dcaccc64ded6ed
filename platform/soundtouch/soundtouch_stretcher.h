/// Time stretching by SoundTouch.
#pragma once

#include <memory>

#include "engine/ports.h"

namespace zv {

/// Makes stretchers; they allocate on start and on a change of pitch. [any]
std::shared_ptr<StretcherSource> soundTouchStretchers();

}  // namespace zv
