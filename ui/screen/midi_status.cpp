#include "ui/screen/midi_status.h"

#include "midi/devices.h"
#include "midi/state.h"
#include "platform/controls.h"
#include "ui/records/main_window.h"
#include "ui/screen/display_foot.h"

namespace zv {

void ShowMidiStatus(bool layout) {
    DisplayControls& d = frmMain().display;
    d.lblMIDIDevice.caption = MIDIStatusText;
    if (!layout) {
        return;
    }
    const bool shown = MIDIStatusVisible();
    d.lblMIDIIcon.visible = shown;
    d.lblMIDIDevice.visible = shown;
    DrawDisplayFoot();
}

}  // namespace zv
