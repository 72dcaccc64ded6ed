/// The keys that are always there: global play modes, automix, microphone and talk-over. [control]
#pragma once

namespace zv {

extern bool MicPushed, TalkOverOn;

/// Auto-repeat and touch for all jingles; turning one on turns the other off. Kept in the settings file at
/// once.
void CkAutoRepTog();
void CkTouchTog();
/// Off, crossfade, lock.
void CkAutoMixTog();
/// What a press does to the rest with automix: the others fade. False: the press itself goes on.
bool AutomixPress(int index, int velocity);

/// The microphone is open while its key is held; the jingles go down meanwhile. Mix topology only.
void MicPush();
void MicRelease();
void TalkOverTog();

}  // namespace zv
