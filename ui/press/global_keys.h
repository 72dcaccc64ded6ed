/// The keys that are always there: global play modes, automix, microphone and talk-over. [control]
#pragma once

namespace zv {

/// Auto-repeat and touch for all jingles; turning one on turns the other off. Kept in the settings file at
/// once.
void CkAutoRepTog();
void CkTouchTog();
/// Off, crossfade, lock.
void CkAutoMixTog();

/// The microphone is open while its key is held; the jingles go down meanwhile. Mix topology only.
void MicPush();
void MicRelease();
void TalkOverTog();

}  // namespace zv
