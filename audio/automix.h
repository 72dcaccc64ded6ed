/// Automix: what a press does to the rest. [control]
#pragma once

namespace zv {

/// Values of automixSettings.AutoMix.
inline constexpr int kAutomixOff = 0;
inline constexpr int kAutomixCrossfade = 1;  ///< the rest fades away
inline constexpr int kAutomixLock = 2;       ///< nothing starts while anything sounds

/// Off, crossfade, lock, off.
void NextAutoMix();
/// The crossfade of a press on `index`: every other jingle that is not exempt, the announcer's jingle and the
/// live stream fade to their end in AutoMixTime ms.
void FadeOthers(int index);
/// The lock is on and something sounds: jingle `index` may not start. Notes it for RefusedLately.
bool LockRefuses(int index);
/// The jingle that the lock refused within the last two seconds, -1 when there was none.
int RefusedLately();

}  // namespace zv
