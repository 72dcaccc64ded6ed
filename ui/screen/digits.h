/// The nine digits of the display. [control]
#pragma once

#include <string>

#include "platform/controls.h"

namespace zv {

/// Writes the digits of `text` (seconds); minutes are shown while `remain` is above one.
void WriteDigits(double remain, const std::string& text);
void HideMinutes();
void SetDigitsColour(Colour colour);

}  // namespace zv
