/// The counter behind the warning: digits, the clock of the minimal view, the end of the blink. [control]
#pragma once

#include <string>

namespace zv {

extern std::string DispText;  ///< DispRemain as text, "0" below 0.1

/// Shows DispRemain.
void ShowRemain();

}  // namespace zv
