/// The small window of 24 colours and the field that takes a colour away. [control]
#pragma once

#include "platform/controls.h"

namespace zv {

inline constexpr int kPickFields = 25;  ///< the last one removes the colour
Colour PickerColour(int field);         ///< table value, unshaded; the last field has none
void preclColorSet(int index);
void clColorSet(int index);
/// A click on a field of the picker: applies it to SelJ and closes the picker.
void PickColour(int field);
void CloseColorPicker();
void TimerTrigColSelTick();
void TimerCloseColorPickerTick();

}  // namespace zv
