#include "midi/feedback.h"

#include <array>
#include <cstddef>

#include "engine/bass.h"
#include "midi/assignments.h"
#include "midi/codes.h"
#include "midi/faults.h"
#include "midi/state.h"
#include "model/jingle.h"
#include "model/state.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/settings/automix_settings.h"
#include "startup/settings/midi_settings.h"

namespace zv {
namespace {

constexpr int kNotes = 128;
constexpr int kHexDigits = 16;

/// Note on and off of the fixed map, as texts.
std::array<std::string, kNotes> fixedOn, fixedOff;

std::string hexDigits(int value) { return value < kHexDigits ? HexByte(value).substr(1) : HexByte(value); }

/// Slots whose lamp shows the down message.
PerJingle<bool> pressedLamp{};

void sendFixed(std::size_t note, bool on) { MIDIOut(on ? fixedOn[note] : fixedOff[note], hMidiOutFixed); }

/// The message of a slot's state: unavailable, available or playing.
const std::string& stateMessage(int index) {
    const auto at = static_cast<std::size_t>(index);
    const DWORD channel = Jingle(index).hPlay;
    if (channel == 0) return midiOut.OutJingleUnavail[at];
    if (!midiOut.OutJingleUp[at].empty()) return midiOut.OutJingleUp[at];
    return BASS_ChannelIsActive(channel) == BASS_ACTIVE_STOPPED ? midiOut.OutJingleAvail[at]
                                                                : midiOut.OutJinglePlay[at];
}

void sendState(int index, const std::string& message) {
    pressedLamp[static_cast<std::size_t>(index)] = false;
    MIDIOut(message, hMidiOut);
    JMidiState[static_cast<std::size_t>(index)] = message;
}

const std::string& toggleState(Toggle toggle) {
    switch (toggle) {
        case Toggle::autoRepeat:
            return ToggleAutoRep != 0 ? midiOut.OutRepOn : midiOut.OutRepOff;
        case Toggle::touch:
            return ToggleTouch != 0 ? midiOut.OutTouchOn : midiOut.OutTouchOff;
        case Toggle::autoMix:
            break;
    }
    return automixSettings.AutoMix == 0   ? midiOut.OutMixOff
           : automixSettings.AutoMix == 1 ? midiOut.OutMixOn1
                                          : midiOut.OutMixOn2;
}

struct ToggleLamp {
    std::string_view name;
    Toggle toggle;
    FixedNote note;
    std::string OutputMessages::*down;
};
constexpr ToggleLamp kToggles[] = {
    {"ckAutoRep", Toggle::autoRepeat, FixedNote::autoRepeat, &OutputMessages::OutRepDown},
    {"ckTouch", Toggle::touch, FixedNote::touchPlay, &OutputMessages::OutTouchDown},
    {"ckAutoMix", Toggle::autoMix, FixedNote::autoMix, &OutputMessages::OutMixDown},
};
const ToggleLamp& lampOf(Toggle toggle) { return kToggles[static_cast<std::size_t>(toggle)]; }

bool isOn(Toggle toggle) {
    return toggle == Toggle::autoRepeat ? ToggleAutoRep != 0
           : toggle == Toggle::touch    ? ToggleTouch != 0
                                        : automixSettings.AutoMix != 0;
}

}  // namespace

void MIDIOut(const std::string& text, MidiHandle handle) {
    guarded("modMidiFunctions.MIDIOut", [&] {
        if (handle == hMidiOutFixed && midiSettings.MIDIOutFixedEnabled == 0) return;
        if (handle == hMidiOut && midiSettings.MIDIEnabled == 0) return;
        if (text.size() != kFullCode) return;
        try {
            sendMidi(handle, PackCode(text));
        } catch (const ProgramError& fault) {
            ReportOnce("modMidiFunctions.MIDIOut", fault.number, fault.what());
        }
    });
}

void MIDIOutFixed(FixedNote note, bool on) { sendFixed(static_cast<std::size_t>(note), on); }

void MIDIOutFixedJingle(int index, bool on) { sendFixed(static_cast<std::size_t>(index), on); }

void LoadMIDIOutFixeddatas() {
    const std::string channel = hexDigits(midiSettings.MIDIOutFixedChan - 1);
    const std::string velocity = hexDigits(midiSettings.MIDIOutFixedVel);
    for (int note = 0; note < kNotes; ++note) {
        const auto at = static_cast<std::size_t>(note);
        fixedOn[at] = "9" + channel + HexByte(note) + velocity;
        fixedOff[at] = "8" + channel + HexByte(note) + velocity;
    }
}

void MIDIOutRefresh(int withReset) {
    guarded("modMidiFunctions.MIDIOutRefresh", [&] {
        if (withReset == -1) MIDIOut(midiOut.OutReset, hMidiOut);
        for (const std::string* message : {&midiOut.OutTalkOff, &midiOut.OutMicOff, &midiOut.OutStopIdle,
                                           &midiOut.OutUpIdle, &midiOut.OutDownIdle})
            MIDIOut(*message, hMidiOut);
        PlayModesTogglesMIDIOut("");
        for (int i = 0; i <= LastLiveIdx(); ++i) sendState(i, stateMessage(i));
    });
}

void PlayModesTogglesMIDIOut(std::string_view name) {
    for (const ToggleLamp& lamp : kToggles) {
        if (name.empty() || name == lamp.name) MIDIOut(toggleState(lamp.toggle), hMidiOut);
    }
}

void LampOfKey(LampKey key, bool pressed) {
    struct Row {
        std::string OutputMessages::*pressed;
        std::string OutputMessages::*idle;
        FixedNote note;
    };
    static constexpr Row kRows[] = {
        {&OutputMessages::OutUpPressed, &OutputMessages::OutUpIdle, FixedNote::paletteUp},
        {&OutputMessages::OutDownPressed, &OutputMessages::OutDownIdle, FixedNote::paletteDown},
        {&OutputMessages::OutStopPressed, &OutputMessages::OutStopIdle, FixedNote::stop},
    };
    const Row& row = kRows[static_cast<std::size_t>(key)];
    MIDIOut(midiOut.*(pressed ? row.pressed : row.idle), hMidiOut);
    MIDIOutFixed(row.note, pressed);
}

void ToggleHeld(Toggle toggle) { MIDIOut(midiOut.*lampOf(toggle).down, hMidiOut); }

void ToggleSwitched(Toggle toggle) {
    if (MIDILearnActive) return;
    MIDIOut(toggleState(toggle), hMidiOut);
    MIDIOutFixed(lampOf(toggle).note, isOn(toggle));
}

void LampOfMic(bool pushed) {
    MIDIOut(pushed ? midiOut.OutMicDown : midiOut.OutMicOff, hMidiOut);
    MIDIOutFixed(FixedNote::micPush, pushed);
}

void LampOfTalkOver(bool on, bool fixed) {
    MIDIOut(on ? midiOut.OutTalkDown : midiOut.OutTalkOff, hMidiOut);
    if (fixed) MIDIOutFixed(FixedNote::talkOver, on);
}

void SlotOpened(int index, bool loaded) {
    const auto at = static_cast<std::size_t>(index);
    sendState(index, loaded ? midiOut.OutJingleAvail[at] : midiOut.OutJingleUnavail[at]);
}

void SlotPressed(int index) {
    MIDIOut(midiOut.OutJingleDown[static_cast<std::size_t>(index)], hMidiOut);
    MIDIOutFixedJingle(index, true);
    pressedLamp[static_cast<std::size_t>(index)] = true;
}

void SlotReleased(int index) {
    const std::string& message = stateMessage(index);
    if (Jingle(index).hPlay == 0)
        MIDIOut(message, hMidiOut);
    else
        sendState(index, message);
}

void SlotSilent(int index) {
    if (pressedLamp[static_cast<std::size_t>(index)] && Jingle(index).hPlay != 0) SlotEnded(index);
}

void SlotEnded(int index) {
    if (MIDIReady) sendState(index, midiOut.OutJingleAvail[static_cast<std::size_t>(index)]);
}

void SlotStopping(int index) { MIDIOut(midiOut.OutJingleUp[static_cast<std::size_t>(index)], hMidiOut); }

}  // namespace zv
