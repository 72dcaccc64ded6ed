#include "ui/press/midi_fill.h"

#include <string>

#include "midi/upcalls.h"
#include "platform/controls.h"
#include "ui/screen/layout.h"
#include "ui/screen/midi_status.h"
#include "ui/windows/midi_learn.h"
#include "ui/windows/midi_settings_window.h"

namespace zv {

namespace {

// Of the settings window: a slider makes room for the key that teaches its fader, and its value moves along.
constexpr int kSliderAlone = 5175, kSliderBesideKey = 4215;
constexpr int kValueAlone = 4770, kValueBesideKey = 3810, kParked = -75000;

void showFaderKeys(bool on) {
    ShowMidiLists();
    Control* volume = findControl("SlideVol");
    if (volume == nullptr || volume->width != (on ? kSliderAlone : kSliderBesideKey)) {
        return;
    }
    volume->width = on ? kSliderBesideKey : kSliderAlone;
    if (Control* amix = findControl("SlideAmix")) {
        amix->width = on ? kSliderBesideKey : kSliderAlone;
    }
    if (Control* value = findControl("txtVol")) {
        value->left = (on ? kValueBesideKey : kValueAlone) + (value->left < 0 ? kParked : 0);
    }
    for (const char* name : {"MIDIVol", "MIDIAmix"}) {
        if (Control* key = findControl(name)) {
            key->enabled = on;
        }
    }
}

/// The main volume stands in two windows.
void showVolume(int percent) {
    if (Control* slider = findControl("SlideVol")) {
        slider->value = percent;
    }
    if (Control* slider = findControl("SlideVolDevice", 0)) {
        slider->value = percent;
    }
    const std::string text = std::to_string(percent) + " %";
    if (Control* value = findControl("txtVol")) {
        value->caption = text;
    }
    if (Control* value = findControl("lblVolDeviceVal", 0)) {
        value->caption = text;
    }
}

}  // namespace

void FillMidiUpcalls() {
    midiUpcalls.showStatus = ShowMidiStatus;
    midiUpcalls.layoutAll = [] { FormDraw("init"); };
    midiUpcalls.faderLearning = showFaderKeys;
    midiUpcalls.showVolume = showVolume;
    midiUpcalls.learnChanged = ShowLearn;
    midiUpcalls.listsChanged = ShowMidiLists;
    midiUpcalls.enableGroup = [](MidiGroup, bool) { ShowMidiLists(); };
    midiUpcalls.showAutoMixTime = [](int ms) {
        if (Control* field = findControl("TxtAmix")) {
            field->caption = std::to_string(ms);
        }
    };
}

}  // namespace zv
