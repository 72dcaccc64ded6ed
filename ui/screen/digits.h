/// The nine digits of the display. [control]
#pragma once

#include "platform/controls.h"

namespace zv {

/// Writes the digits of a time, rounded to tenths, or to hundredths with DispCSec; minutes are shown from one on.
void WriteDigits(double seconds);
void HideMinutes();
void SetDigitsColour(Colour colour);

}  // namespace zv
