#include "midi/dispatch.h"

#include <algorithm>
#include <cmath>

#include "midi/assignments.h"
#include "midi/codes.h"
#include "midi/faults.h"
#include "midi/feedback.h"
#include "midi/learn.h"
#include "midi/ring.h"
#include "midi/state.h"
#include "midi/upcalls.h"
#include "model/actions.h"
#include "model/jingle.h"
#include "model/state.h"
#include "platform/midi.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/settings/devices_settings.h"
#include "startup/upcalls.h"

namespace zv {

std::string MIDIFull, MIDIShort;
int MIDIVelocity = 0, MIDIPlayVelocity = 0;

namespace {

constexpr int kErrorDivision = 11;
constexpr int kFullPercent = 100;
constexpr int kAutoMixMax = 5000, kAutoMixStep = 50;  // ms
/// More than this many messages are not taken in one go, so that a flood leaves time for everything else.
constexpr int kMostAtOnce = kMidiWaiting;

bool full(const std::string& code) { return !code.empty() && MIDIFull == code; }
bool shortly(const std::string& code) { return !code.empty() && MIDIShort == code; }

/// To the nearest whole number, halves to the even one.
int nearest(double value) { return static_cast<int>(std::nearbyint(value)); }

bool act(Action action, int argument = 0) { return perform && perform(action, argument, -1); }
bool act(Action action, PaletteKey how) { return act(action, static_cast<int>(how)); }

void showOnLabel(const std::string& text) {
    MIDIStatusText = text;
    callUp(midiUpcalls.showStatus, false);
}

int faderValue(std::uint8_t reversed) { return reversed == 1 ? kLargestData - MIDIVelocity : MIDIVelocity; }

void volumeFader() {
    const int percent = nearest(faderValue(midiIn.MIDIVolReverse) * double{kFullPercent} / kLargestData);
    act(Action::volume, percent);
    callUp(midiUpcalls.showVolume, percent);
    showOnLabel(controlName("slblGenVol") + " " + std::to_string(percent) + " %");
}

void autoMixFader() {
    const int ms = nearest(faderValue(midiIn.MIDIAmixReverse) / double{kLargestData} * kAutoMixMax);
    const int time = std::max(1, nearest(ms / double{kAutoMixStep}) * kAutoMixStep);
    act(Action::autoMixTime, time);
    callUp(midiUpcalls.showAutoMixTime, time);
    showOnLabel(controlName("slblAmx") + " " + std::to_string(time));
}

/// Tests 1 to 10: wheels and releases, which are full codes.
bool takenAsFull() {
    const bool micPath = deviceSettings.DeviceSingle == 0;
    if (full(midiIn.MIDIScrollAnticlockwise)) {
        act(Action::paletteUp, PaletteKey::wheel);
    } else if (full(midiIn.MIDIScrollClockwise)) {
        act(Action::paletteDown, PaletteKey::wheel);
    } else if (full(midiIn.MIDIUpUp)) {
        LampOfKey(LampKey::up, false);
        act(Action::paletteUp, PaletteKey::letGo);
    } else if (full(midiIn.MIDIDownUp)) {
        LampOfKey(LampKey::down, false);
        act(Action::paletteDown, PaletteKey::letGo);
    } else if (full(midiIn.MIDIRepUp)) {
        PlayModesTogglesMIDIOut("ckAutoRep");
    } else if (full(midiIn.MIDITouchUp)) {
        PlayModesTogglesMIDIOut("ckTouch");
    } else if (full(midiIn.MIDIMixUp)) {
        PlayModesTogglesMIDIOut("ckAutoMix");
    } else if (full(midiIn.MIDIStopUp)) {
        LampOfKey(LampKey::stop, false);
    } else if (micPath && full(midiIn.MIDITalkUp)) {
        // Talk-over is a toggle: its release only ends the search.
    } else if (micPath && full(midiIn.MIDIMicUp)) {
        act(Action::micUp);
    } else {
        return false;
    }
    return true;
}

enum class Taken { no, yes, later };

Taken paletteKey(Action action, LampKey lamp) {
    LampOfKey(lamp, true);
    return act(action, PaletteKey::held) ? Taken::yes : Taken::later;
}

/// Tests 11 to 20: faders and presses, which are short codes.
Taken takenAsShort() {
    const bool micPath = deviceSettings.DeviceSingle == 0;
    if (shortly(midiIn.MIDIVolCode)) {
        volumeFader();
    } else if (shortly(midiIn.MIDIAmixCode)) {
        autoMixFader();
    } else if (shortly(midiIn.MIDIUpDown)) {
        return paletteKey(Action::paletteUp, LampKey::up);
    } else if (shortly(midiIn.MIDIDownDown)) {
        return paletteKey(Action::paletteDown, LampKey::down);
    } else if (shortly(midiIn.MIDIRepDown)) {
        ToggleHeld(Toggle::autoRepeat);
        act(Action::autoRepeat);
    } else if (shortly(midiIn.MIDITouchDown)) {
        ToggleHeld(Toggle::touch);
        act(Action::touch);
    } else if (shortly(midiIn.MIDIMixDown)) {
        ToggleHeld(Toggle::autoMix);
        act(Action::autoMix);
    } else if (shortly(midiIn.MIDIStopDown)) {
        LampOfKey(LampKey::stop, true);
        act(Action::stopAll);
    } else if (micPath && shortly(midiIn.MIDITalkDown)) {
        act(Action::talkOver);
    } else if (micPath && shortly(midiIn.MIDIMicDown)) {
        act(Action::micDown);
    } else {
        return Taken::no;
    }
    return Taken::yes;
}

/// The velocity that a jingle is played with, by its rule. A rule of 0 gives none: the one of the press before.
int playVelocity(int rule) {
    if (rule > kLimitedVelocity)
        return std::min(kLargestData,
                        nearest(MIDIVelocity * double{kLargestData} / (rule - kLimitedVelocity)));
    if (rule == 0) {
        ReportOnce(".TimerMIDI_Timer", kErrorDivision, "A jingle's velocity rule in MIDI.ini is 0");
        return MIDIPlayVelocity;
    }
    return nearest(MIDIVelocity * double{kLargestData} / rule);
}

/// Tests 21 and 22: the first jingle with the code, releases before presses.
void tryJingles() {
    for (const int i : LiveJingles()) {
        if (!full(midiIn.MIDIJingleRelease[static_cast<std::size_t>(i)])) continue;
        MIDIOutFixedJingle(i, false);
        act(Action::release, i);
        SlotReleased(i);
        return;
    }
    for (const int i : LiveJingles()) {
        const auto at = static_cast<std::size_t>(i);
        if (!shortly(midiIn.MIDIJinglePress[at])) continue;
        MIDIPlayVelocity = playVelocity(midiIn.MIDIJingleVelocity[at]);
        SlotPressed(i);
        if (perform) perform(Action::play, i, MIDIPlayVelocity);
        return;
    }
}

/// Looks at one short message. False: it cannot be done now and is to be taken up again.
bool take(std::uint32_t message) {
    MIDIFull = FullCode(message);
    MIDIShort = MIDIFull.substr(0, kShortCode);
    MIDIVelocity = static_cast<int>(message >> 16 & 0xFF);
    if (MIDILearnActive) {
        LearnMessage(MIDIFull);
        return true;
    }
    if (takenAsFull()) return true;
    const Taken taken = takenAsShort();
    if (taken == Taken::no) tryJingles();
    return taken != Taken::later;
}

/// Drains the ring. False when a message was put back.
bool drainRing() {
    while (MidiInRead.load() != MidiInWrite.load(std::memory_order_acquire)) {
        const std::int16_t slot = MidiInRead.load();
        const MidiInEntry entry = MidiInQueue[static_cast<std::size_t>(slot)];
        // Advance the read index first: a message box that the action opens runs this pump again.
        MidiInRead.store(NextSlot(slot));
        if (entry.code != kMidiData) continue;
        // One that fails is not taken up again.
        if (!guardedOr(".TimerMIDI_Timer", true, [&] { return take(entry.first); })) {
            MidiInRead.store(slot);
            return false;
        }
    }
    return true;
}

/// Tells the console when messages were lost.
void tellOfDropped() {
    static std::uint64_t told = 0;
    const std::uint64_t dropped = midiMessagesDropped();
    if (dropped == told) return;
    told = dropped;
    ConsoleAdd("MIDI: " + std::to_string(dropped) + " messages came too fast and were dropped");
}

}  // namespace

void TimerMIDI_Timer() {
    if (hMidiIn == 0) return;
    for (int taken = 0; taken < kMostAtOnce;) {
        // One slot stays free: a full ring would look empty.
        const int came = deliverMidi(hMidiIn, kRingSlots - 1 - MidiInBacklog());
        if (came == 0 && MidiInBacklog() == 0) break;
        if (!drainRing()) break;
        taken += std::max(came, 1);
    }
    tellOfDropped();
}

}  // namespace zv
