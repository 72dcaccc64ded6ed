/// What an edit says on the display: a line in the place of date and time, for three seconds. [control]
#pragma once

#include <string>

namespace zv {

void ShowDisplayMessage(const std::string& text);
/// The message in the place of date and time, or these again.
void ShowMessageLine(bool on);
/// Says of jingle `index` why it cannot be used: its file is missing, or no sound. Nothing when it can.
void SayWhyBroken(int index);
/// One is shown: what held keys mean is not said meanwhile.
bool DisplayMessageShown();

}  // namespace zv
