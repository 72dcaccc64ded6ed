#include "ui/screen/display_foot.h"

#include <algorithm>

#include "platform/controls.h"
#include "ui/records/main_window.h"

namespace zv {

namespace {

constexpr int kIconPixels = 38, kGapPixels = 6;
constexpr double kSurface = 0.5;  // share of the foot that the control surface has
constexpr double kName = 0.4;     // share of the rest that the palette's name keeps beside the line

int wholePixels(double twips) { return static_cast<int>(twips) / kTwipsPerPixel * kTwipsPerPixel; }

void placeSurface(int left, int width) {
    DisplayControls& d = frmMain().display;
    const int icon = kIconPixels * std::max(kTwipsPerPixel, d.txtDisPal.height / 24);
    d.lblMIDIIcon.left = left;
    d.lblMIDIIcon.width = icon;
    d.lblMIDIDevice.left = left + icon;
    d.lblMIDIDevice.width = std::max(0, width - icon);
    d.lblMIDIIcon.fontBold = true;
    d.lblMIDIIcon.fontSize = d.txtDisPal.fontSize() * 0.75;
    d.lblMIDIDevice.fontSize = d.txtDisPal.fontSize();
}

}  // namespace

void DrawDisplayFoot() {
    DisplayControls& d = frmMain().display;
    const int gap = kGapPixels * kTwipsPerPixel;
    const int left = d.txtDisPal.left;
    const int room = std::max(0, d.lblErr.left - gap - left);
    const bool surface = d.lblMIDIDevice.visible;
    const int forSurface = surface ? wholePixels(room * kSurface) : 0;
    const int rest = room - forSurface;
    const bool named = d.txtDisPal.visible && !d.txtDisPal.caption().empty();
    int name = rest;
    if (d.lblQuiet.visible) {
        name = surface || !named ? 0 : wholePixels(rest * kName);
    }
    const int lineLeft = name > 0 ? left + name + gap : left;
    d.txtDisPal.width = name;
    d.lblQuiet.left = lineLeft;
    d.lblQuiet.width = std::max(0, left + rest - lineLeft);
    // Alone at the left it begins where the palette's name would.
    d.lblQuiet.alignment = name > 0 ? 1 : 0;
    placeSurface(left + rest, forSurface);
    for (Control* c : {&d.lblQuiet, &d.lblMIDIIcon, &d.lblMIDIDevice}) {
        c->top = d.txtDisPal.top();
        c->height = d.txtDisPal.height();
    }
}

}  // namespace zv
