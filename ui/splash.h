/// The splash window of the start. [control]
#pragma once

#include <string>

#include "platform/controls.h"

namespace zv {

inline constexpr int SplashWidth = 4215;  ///< twips of a full bar
struct Splash {
    Splash();
    Control window;  ///< "frmSplash"
    Control lblTitle, lblStep, picLoadBack, picLoad;
};
Splash& frmSplash();
/// Name of the present step.
void SplashStep(const std::string& text);
/// Progress in percent.
void SetSplash(double percent);
double SplashValue();

}  // namespace zv
