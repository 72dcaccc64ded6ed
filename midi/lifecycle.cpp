#include "midi/lifecycle.h"

#include "midi/assignments.h"
#include "midi/devices.h"
#include "midi/dispatch.h"
#include "midi/feedback.h"
#include "midi/state.h"
#include "midi/upcalls.h"
#include "platform/wake.h"
#include "startup/settings/midi_settings.h"
#include "startup/upcalls.h"

namespace zv {

void StartMIDI() {
    MidiTimers& timers = midiTimers();
    timers.TimerMIDI.handler = TimerMIDI_Timer;
    timers.TimerMIDIDevices.handler = TimerMIDIDevices_Timer;
    timers.TimerMIDIPorts.handler = TimerMIDIPorts_Timer;
    onWake([] {
        TimerMIDI_Timer();
        if (midiDevicesChanged() && midiTimers().TimerMIDIDevices.enabled())
            midiTimers().TimerMIDIPorts.restart();
    });
    LoadMIDIOutFixeddatas();
    const bool in = midiSettings.MIDIEnabled == 1, out = midiSettings.MIDIOutFixedEnabled == 1;
    callUp(midiUpcalls.enableGroup, MidiGroup::in, in);
    callUp(midiUpcalls.enableGroup, MidiGroup::out, out);
    if (in || out) {
        timers.TimerMIDIDevices.start();
        TimerMIDIDevices_Timer();  // both devices
    }
    if (in) LoadMIDIPresets();
}

void AllowMIDIFeedback() { MIDIReady = true; }

void EndMIDI() {
    MIDIOut(midiOut.OutReset, hMidiOut);
    MIDIReady = false;
    midiTimers().TimerMIDI.stop();
    midiTimers().TimerMIDIDevices.stop();
    midiTimers().TimerMIDIPorts.stop();
    onWake({});
    CloseMidiInDevice();
    CloseMidiOutDevice(hMidiOut);
    CloseMidiOutDevice(hMidiOutFixed);
}

}  // namespace zv
