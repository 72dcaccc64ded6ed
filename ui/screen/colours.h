/// Colours of the window: the shaded copies of the option colours, light and dark. [control]
#pragma once

#include <string_view>

#include "model/jingle.h"
#include "platform/controls.h"

namespace zv {

/// Shaded copies of the options' colours as they are shown.
struct ShadedColours {
    Colour lp = 0, sq = 0, fx = 0, co = 0, ar = 0, tc = 0, ps = 0, ns = 0, ta = 0, am = 0, am2 = 0, ass = 0,
           sp = 0, to = 0, mo = 0;
};
extern ShadedColours Shaded;

/// Computes the shaded colours and repaints what shows them.
void ReColorizeBtn();
/// Colours of Repeat, Touch and Automix among the keys by their states.
void ShowGlobalToggles();
/// Light (0) or dark (1).
void SwitchDarkMode(int dark);
/// Colour of frames' borders.
Colour BorderColour();
/// The mark of a play mode on a button.
void ShowPlayModeMark(int index);

// ---- colour picker ----
inline constexpr int kPickFields = 25;  ///< the last one removes the colour
extern bool ColorPickerOpen;
Colour PickerColour(int field);  ///< table value, unshaded; the last field has none
void preclColorSet(int index);
void clColorSet(int index);
/// A click on a field of the picker: applies it to SelJ and closes the picker.
void PickColour(int field);
void CloseColorPicker();
void TimerTrigColSelTick();
void TimerCloseColorPickerTick();

}  // namespace zv
