/// What each control of the surface does and what the program sends back: the tables that MIDI.ini fills, one
/// section a device. A code is text (midi/codes.h); an empty one is not assigned. [control]
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "model/jingle.h"

namespace zv {

inline constexpr int kFreeVelocity = 255;  ///< limit at 127: a velocity counts as it comes
inline constexpr int kLimitedVelocity =
    128;  ///< rules above it limit at rule - 128, others scale by the rule
inline constexpr const char* kNoCode = "- - - - - -";

template <class T>
using PerJingle = std::array<T, kJingles>;

/// Codes that the surface sends. A press or a fader is a short code, a release or a wheel's step a full one.
struct InputCodes {
    PerJingle<std::string> MIDIJinglePress, MIDIJingleRelease;
    PerJingle<std::uint8_t> MIDIJingleVelocity;
    std::string MIDIUpDown, MIDIUpUp, MIDIDownDown, MIDIDownUp;
    std::string MIDIScrollClockwise, MIDIScrollAnticlockwise;
    std::string MIDIVolCode, MIDIAmixCode;
    std::uint8_t MIDIVolReverse = 0, MIDIAmixReverse = 0;
    std::string MIDIRepDown, MIDIRepUp, MIDITouchDown, MIDITouchUp, MIDIMixDown, MIDIMixUp;
    std::string MIDIStopDown, MIDIStopUp, MIDITalkDown, MIDITalkUp, MIDIMicDown, MIDIMicUp;

    InputCodes() { MIDIJingleVelocity.fill(kFreeVelocity); }
};
extern InputCodes midiIn;

/// Messages that the surface is sent.
struct OutputMessages {
    std::string OutReset;
    std::string OutStopPressed, OutStopIdle, OutUpPressed, OutUpIdle, OutDownPressed, OutDownIdle;
    std::string OutTalkDown, OutTalkOff, OutTalkOn;
    std::string OutMicDown, OutMicOff, OutMicOn, OutMicLocked;
    std::string OutRepDown, OutRepOff, OutRepOn, OutTouchDown, OutTouchOff, OutTouchOn;
    std::string OutMixDown, OutMixOff, OutMixOn1, OutMixOn2;
    PerJingle<std::string> OutJingleDown, OutJingleAvail, OutJingleUnavail, OutJinglePlay;
    PerJingle<std::string> OutJingleUp;  ///< no key of the file feeds it: always empty
};
extern OutputMessages midiOut;

/// The last state message of each slot.
extern PerJingle<std::string> JMidiState;

/// A control besides the jingles: its key and its two codes in the order of the file.
struct ControlCodes {
    const char* key;
    std::string InputCodes::*first;
    std::string InputCodes::*second;
    const char* caption;  ///< language key of its name
};
/// A fader: its key, code, and whether it is reversed.
struct FaderCodes {
    const char* key;
    std::string InputCodes::*code;
    std::uint8_t InputCodes::*reverse;
    const char* caption;
};
/// What a control is told: its key and up to four messages, null behind the last.
struct ControlMessages {
    const char* key;
    std::array<std::string OutputMessages::*, 4> messages;
};
std::span<const ControlCodes> controlCodes();
std::span<const FaderCodes> faderCodes();
std::span<const ControlMessages> controlMessages();
/// The four messages of a jingle in the order of the file: down, available, unavailable, playing.
std::array<std::string*, 4> jingleMessages(int index);
/// Name of a control for the user by its language key, in one line.
std::string controlName(const char* caption);
/// Name of a jingle for the user: "Jingle 12", "Hot jingle 3".
std::string jingleName(int index);

/// Reads `section` of MIDI.ini, which becomes the current one, into the tables. What is damaged stays as it was
/// or is not assigned, and is reported once.
void LoadMIDIdatas(const std::string& section);
/// Writes the codes into `section` (the current one when empty), in one rewrite. A file that cannot be written is
/// asked for again until it can or the user gives up.
void CloseFileMIDI(const std::string& section);
/// The same for the messages.
void CloseFileMIDIOut(const std::string& section);
/// Fills cmbMIDIpresets with the sections of the file.
void LoadMIDIPresets();
/// Frees the pair of codes in `section`; the name of the control that held it, empty when none did.
std::string MIDIassignedTo(const std::string& section, const std::string& down, const std::string& up);
/// True when button `index` answers to the surface.
bool HasMIDIAssignment(int index);

}  // namespace zv
