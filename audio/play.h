/// What a press does to a jingle: start, restart, leave a loop, fade or cut, by its state and play mode.
#pragma once

#include <cstdint>

#include "engine/bass.h"
#include "model/jingle.h"

namespace zv {

/// Starts jingle `index`, or does to a sounding one what its play mode says.
/// @param velocity  0..127 as a control surface sends it; -1 is a mouse press and counts as 127.
/// Errors: a jingle that cannot start shows the message on the display and stays idle. [control]
void clPlay(int index, int velocity);
/// Stops with the jingle's fade, or lets its reverb ring out. [control]
void clTouchStop(int index);
/// Stops all live jingles at once, without fade, and what else sounds. Nothing while controls are learnt.
/// [control]
void evStop();
/// The jingle fades where StopPos says so now, and at no former place. [control]
void ArmStopSync(int index);

// Called by the engine on its dispatcher. [sync]
void FadeOutSync(HSYNC handle, DWORD channel, DWORD data, void* user);
void StopSync(HSYNC handle, DWORD channel, DWORD data, void* user);
/// For the time announcer's jingle: its saved fade on hTmAn.
void FadeOutSynctmJn(HSYNC handle, DWORD channel, DWORD data, void* user);
/// The fade saved for it: ms, and an attribute as in the records.
extern Shared<std::int32_t> TmAnFadeOut, TmAnFadeAttrib;

}  // namespace zv
