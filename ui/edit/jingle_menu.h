/// The context menu of a jingle button, and that of several. [control]
#pragma once

namespace zv {

void OpenJingleMenu(int index);
void ckJingleMenu();

}  // namespace zv
