/// The splash window of the start. [control]
#pragma once

#include "platform/controls.h"

namespace zv {

struct Splash {
    Splash();
    Control window;  ///< "frmSplash"
    Control lblTitle, lblStep, picLoadBack, picLoad;
};
Splash& frmSplash();
/// Shows it in the middle of a monitor; hidden again by UnloadSplash.
void ShowSplash();
void UnloadSplash();

}  // namespace zv
