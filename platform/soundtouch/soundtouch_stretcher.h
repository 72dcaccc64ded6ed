/// Time stretching by SoundTouch.
#pragma once

#include <memory>

#include "engine/ports.h"

namespace zv {

/// Makes stretchers that feed the library's stretching stage alone. [any]
std::shared_ptr<engine::StretcherSource> soundTouchStretchers();
/// The library as it comes, through all of its stages and with its own settings, to measure against. [any]
std::shared_ptr<engine::StretcherSource> plainSoundTouchStretchers();

}  // namespace zv
