/// A show without a screen and without waiting: a script's actions are performed on the whole program at
/// their virtual times, and what came of it is left in a folder: main.wav, aux.wav (32-bit float stereo,
/// frame 0 is 0 ms of the script), midi.log, events.log, state.json and the pictures. The same script gives
/// the same bytes. [control]
#pragma once

#include "platform/rehearsal/rehearsed.h"

namespace zv {

inline constexpr int kRehearsalPassed = 0;
inline constexpr int kRehearsalFailed = 1;  ///< an expectation failed, or the program disagreed with itself
inline constexpr int kRehearsalBad = 2;     ///< the script or a folder cannot be used; nothing was performed

/// Performs the script; returns one of the statuses above. Messages go to standard error, the script's name
/// and line in front.
int rehearse(const RehearsalOptions& options, const RehearsedProgram& program);

}  // namespace zv
