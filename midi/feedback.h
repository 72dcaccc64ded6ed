/// What the surface is told, so that its lamps show what the program does: messages that the user has set
/// (midi/assignments.h) to the output of the surface itself, and a fixed map of notes to a second output. Nothing
/// is queued and nothing confirmed. [control]
#pragma once

#include <string>
#include <string_view>

#include "platform/midi.h"

namespace zv {

/// Notes of the fixed map; 0 to 119 are the jingles.
enum class FixedNote : int {
    talkOver = 0x78,
    micPush = 0x79,
    paletteUp = 0x7A,
    paletteDown = 0x7B,
    autoRepeat = 0x7C,
    touchPlay = 0x7D,
    autoMix = 0x7E,
    stop = 0x7F,
};

/// Sends a text of six digits; any other length is no message. Nothing goes to an output that is switched off.
void MIDIOut(const std::string& text, MidiHandle handle);
/// Note on or off of the fixed map, to the fixed output.
void MIDIOutFixed(FixedNote note, bool on);
void MIDIOutFixedJingle(int index, bool on);
/// Makes the fixed map from channel and velocity. A velocity below 16 makes texts too short to be sent.
void LoadMIDIOutFixeddatas();

/// Repaints the whole surface; `withReset` -1: the reset message goes first.
void MIDIOutRefresh(int withReset);
/// Tells the state of the three toggles, or of the one of that name: "ckAutoRep", "ckTouch", "ckAutoMix".
void PlayModesTogglesMIDIOut(std::string_view name);

// ---- what happens in the program
enum class LampKey { up, down, stop };  ///< keys with a pressed and an idle message
void LampOfKey(LampKey key, bool pressed);
enum class Toggle { autoRepeat, touch, autoMix };
void ToggleHeld(Toggle toggle);      ///< its down message
void ToggleSwitched(Toggle toggle);  ///< its state, unless a control is being learnt
void LampOfMic(bool pushed);
void LampOfTalkOver(bool on, bool fixed = true);
void SlotOpened(int index, bool loaded);
void SlotPressed(int index);
void SlotReleased(int index);
/// Seen silent by the display's tick. A press that was over before a tick saw it sound leaves its down message
/// on the lamp: it is told that it ended.
void SlotSilent(int index);
void SlotEnded(int index);  ///< seen by the display's tick, once the start is over
void SlotStopping(int index);

}  // namespace zv
