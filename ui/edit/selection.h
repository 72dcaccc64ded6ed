/// The selection boxes of the buttons, and what they select. [control]
#pragma once

namespace zv {

void ShowSelectors();
void HideSelectors();
/// Ticks every box that is shown.
void CheckAllSelectors();
/// Captions of the ticked buttons on the clipboard.
void CopyAllJings();
/// SelJ from the ticked boxes when Ctrl is held, else the button alone. False: two or more boxes are ticked.
bool BuildSelJ(int index);

}  // namespace zv
