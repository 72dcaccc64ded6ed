/// Cut, copy and paste of buttons. [control]
#pragma once

#include <string>

namespace zv {

/// `mode`: "cut", "copy" or "paste".
void clMove(int index, const std::string& mode);

}  // namespace zv
