/// The options' colours as they are shown: shaded copies of the settings. [control]
#pragma once

#include "platform/controls.h"

namespace zv {

struct ShadedColours {
    Colour lp = 0, sq = 0, fx = 0, co = 0, ar = 0, tc = 0, ps = 0, ns = 0, ta = 0, am = 0, am2 = 0, ass = 0;
};
extern ShadedColours Shaded;

/// Works the copies out from the settings.
void ComputeShaded();

}  // namespace zv
