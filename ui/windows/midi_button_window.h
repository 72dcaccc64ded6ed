/// frmMIDIButton: teaches a button what the surface sends for it, and what the surface is sent. [control]
#pragma once

#include <array>

#include "ui/windows/form_window.h"
#include "ui/windows/midi_parts.h"

namespace zv {

struct MidiButtonWindow {
    MidiButtonWindow();
    void show();  ///< what MIDILearn holds

    FormWindow form{"frmMIDIButton"};
    Control& lblName = form.control("lblName", ControlKind::label);
    Control& lblPressCode = form.control("lblPressCode", ControlKind::label);
    Control& lblReleaseCode = form.control("lblReleaseCode", ControlKind::label);
    Control& Picture1 = form.control("Picture1", ControlKind::canvas);
    Control& lblVelocityTitle = form.control("lblVelocityTitle", ControlKind::label, "mMIDIVelocity");
    Control& SlideVelocity = form.control("SlideVelocity", ControlKind::slider);
    Control& lblVelocity = form.control("lblVelocity", ControlKind::label);
    Control& ckVelocityLimit = form.control("ckVelocityLimit", ControlKind::checkBox, "mMIDILimit");
    Control& lblVelocityCode = form.control("lblVelocityCode", ControlKind::label);
    Control& lblMonitor = form.control("lblMonitor", ControlKind::label, "mMIDIMonitor");
    Control& lstMidiInDump = form.control("lstMidiInDump", ControlKind::listBox);
    Control& btClear = form.control("btClear", ControlKind::button, "mMIDIInClear");
    std::array<MessageBoxes, kOutputRows> rows{{{form, "txtMIDIOutDown", 0},
                                                {form, "txtMIDIOutAvail", 1},
                                                {form, "txtMIDIOutUnAvail", 2},
                                                {form, "txtMIDIOutPlay", 3}}};
    std::array<Control*, kOutputRows> lblRow{}, btTest{}, imgDeleteKey{};
    std::array<Control*, kMessageBoxes> lblBox{}, lblCpyvalKey{}, lblCpyAllKey{};
    Control& lblCpyAllTitle = form.control("lblCpyAllTitle", ControlKind::label, "mMIDICpyAll");
    Control& btClearOutKey = form.control("btClearOut", ControlKind::button);
    Control& btCpyPrevKey = form.control("btCpyPrev", ControlKind::button, "mMIDICpyPrev");
    Control& btOK = form.control("btOK", ControlKind::button, "mMIDIOK");
    Control& btCancel = form.control("btCancel", ControlKind::button, "mMIDICancel");

  private:
    void wire();
    std::vector<FormRow> outputRows();
};

MidiButtonWindow& frmMIDIButton();

}  // namespace zv
