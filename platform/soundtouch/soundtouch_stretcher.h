/// Time stretching by SoundTouch.
#pragma once

#include <memory>

#include "engine/ports.h"

namespace zv {

/// Makes stretchers; they allocate on start and on a change of pitch. [any]
std::shared_ptr<StretcherSource> soundTouchStretchers();
/// The library with all its own settings, to measure against.
std::shared_ptr<StretcherSource> plainSoundTouchStretchers();

}  // namespace zv
