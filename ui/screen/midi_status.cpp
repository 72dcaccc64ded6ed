#include "ui/screen/midi_status.h"

#include <algorithm>

#include "midi/devices.h"
#include "midi/state.h"
#include "platform/controls.h"
#include "ui/records/main_window.h"

namespace zv {

namespace {
constexpr int kIconPixels = 38, kGapPixels = 6;
constexpr double kShareOfFoot = 0.5;  // that the palette's name leaves to the surface
}  // namespace

void ShowMidiStatus(bool layout) {
    DisplayControls& d = frmMain().display;
    d.lblMIDIDevice.caption = MIDIStatusText;
    if (!layout) {
        return;
    }
    const bool shown = MIDIStatusVisible();
    d.lblMIDIIcon.visible = shown;
    d.lblMIDIDevice.visible = shown;
    // The foot of the display: the palette's name at the left, the surface at the right, the mark behind it.
    const int left = d.txtDisPal.left, top = d.txtDisPal.top, height = d.txtDisPal.height;
    const int width = d.lblErr.left() - kGapPixels * kTwipsPerPixel - left;
    const int part = shown ? static_cast<int>(width * kShareOfFoot) / kTwipsPerPixel * kTwipsPerPixel : 0;
    d.txtDisPal.width = std::max(0, width - part);
    const int scale = std::max(kTwipsPerPixel, height / 24);
    d.lblMIDIIcon.left = left + width - part;
    d.lblMIDIDevice.left = d.lblMIDIIcon.left() + kIconPixels * scale;
    d.lblMIDIIcon.width = kIconPixels * scale;
    d.lblMIDIDevice.width = std::max(0, part - kIconPixels * scale);
    for (Control* c : {&d.lblMIDIIcon, &d.lblMIDIDevice}) {
        c->top = top;
        c->height = height;
    }
    d.lblMIDIIcon.fontBold = true;
    d.lblMIDIIcon.fontSize = d.txtDisPal.fontSize() * 0.75;
    d.lblMIDIDevice.fontSize = d.txtDisPal.fontSize();
}

}  // namespace zv
