/// frmMIDIScroll, frmMIDIFader, frmMIDIReset: a wheel on the list of palettes, a fader, the message that switches
/// all lights off. [control]
#pragma once

#include "platform/timers.h"
#include "ui/windows/form_window.h"
#include "ui/windows/midi_parts.h"

namespace zv {

struct MidiScrollWindow {
    MidiScrollWindow();
    void show();

    FormWindow form{"frmMIDIScroll"};
    Control& lblName = form.control("lblName", ControlKind::label);
    Control& lblAntiClockwiseCode = form.control("lblAntiClockwiseCode", ControlKind::label);
    Control& lblClockwiseCode = form.control("lblClockwiseCode", ControlKind::label);
    Control& picAntiClockw = form.control("picAntiClockw", ControlKind::canvas);
    Control& picClockw = form.control("picClockw", ControlKind::canvas);
    Control& lstMidiInDump = form.control("lstMidiInDump", ControlKind::listBox);
    Control& lstMidiInDumpUnique = form.control("lstMidiInDumpUnique", ControlKind::listBox);
    Control& btClear = form.control("btClear", ControlKind::button, "mMIDIInClear");
    Control& btOK = form.control("btOK", ControlKind::button, "mMIDIOK");
    Control& btCancel = form.control("btCancel", ControlKind::button, "mMIDICancel");

  private:
    Timer TimerBlinkLearn;  ///< 500 ms while one direction is missing
    Timer TimerFlashLearn;  ///< 50 ms: a direction that was just turned
};

struct MidiFaderWindow {
    MidiFaderWindow();
    void show();

    FormWindow form{"frmMIDIFader"};
    Control& lblName = form.control("lblName", ControlKind::label);
    Control& lblFaderCode = form.control("lblFaderCode", ControlKind::label);
    Control& ckReverse = form.control("ckReverse", ControlKind::checkBox, "mMIDIReverse");
    Control& SlideFader = form.control("SlideFader", ControlKind::slider);
    Control& lblFader = form.control("lblFader", ControlKind::label);
    Control& lstMidiInDump = form.control("lstMidiInDump", ControlKind::listBox);
    Control& btClear = form.control("btClear", ControlKind::button, "mMIDIInClear");
    Control& btOK = form.control("btOK", ControlKind::button, "mMIDIOK");
    Control& btCancel = form.control("btCancel", ControlKind::button, "mMIDICancel");
};

struct MidiResetWindow {
    MidiResetWindow();
    void show();

    FormWindow form{"frmMIDIReset"};
    MessageBoxes boxes{form, "txtMIDIOutDown", 0};
    Control& btOK = form.control("btOK", ControlKind::button, "mMIDIOK");
    Control& btCancel = form.control("btCancel", ControlKind::button, "mMIDICancel");
};

MidiScrollWindow& frmMIDIScroll();
MidiFaderWindow& frmMIDIFader();
MidiResetWindow& frmMIDIReset();

}  // namespace zv
