/// The control surface on the display: its name, or what one of its faders just set. [control]
#pragma once

namespace zv {

/// Shows MIDIStatusText; `layout`: places the two labels, shows or hides them as well.
void ShowMidiStatus(bool layout);

}  // namespace zv
