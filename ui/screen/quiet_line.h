/// Why it is quiet: a line at the foot of the display names all that holds the sound down. [control]
#pragma once

#include <string>

namespace zv {

/// "Mic", "Duck: News Sting", "Automix", "Volume 60 %", joined by a dot, and for two seconds "Lock: Drum Roll" after a
/// press that the lock refused; empty while nothing is attenuated.
std::string WhyQuiet();
/// Adds a remark for three seconds: why a press did nothing, or what of it was left out.
void TellForAWhile(const std::string& text);
/// Shows it on the display.
void ShowWhyQuiet();

}  // namespace zv
