/// The foot of the display: the palette's name at the left, then why it is quiet, then the control surface, behind
/// them the mark. [control]
#pragma once

namespace zv {

/// Shares the foot among those that are shown. Beside a control surface the line that says why it is quiet takes
/// the place of the palette's name.
void DrawDisplayFoot();

}  // namespace zv
