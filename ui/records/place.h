/// Where a record stands, in one call. [control]
#pragma once

#include <algorithm>

#include "platform/controls.h"

namespace zv {

/// Twips, in the control's parent. What has no room is 0 wide or high.
inline void Place(Control& c, int left, int top, int width, int height) {
    c.left = left;
    c.top = top;
    c.width = std::max(0, width);
    c.height = std::max(0, height);
}

}  // namespace zv
