/// The microphone over the jingles: levels of both on both outputs. Mix topology only. [control]
#pragma once

namespace zv {

extern bool MicPushed;   ///< the microphone's key is held
extern bool TalkOverOn;  ///< the mark of talk-over
/// Target level of the jingle bus, 1 is full; the lower one of two outputs.
extern float BusLevel;

/// The microphone's key goes down: it opens in 50 ms, the jingle bus goes to AttnVol in FadeOutSpeed ms.
void RaiseMic();
/// The jingle bus comes back in FadeInSpeed ms, the microphone closes.
void LowerMic();
/// Talk-over was turned off: the jingle bus goes to the output's own volume, the microphone closes.
void EndTalkOver();
/// InTORelease ms after the input was turned off: the jingle bus comes back, unless the key is held.
void InputIsOff();
/// Level of the microphone on output 0 or 1, percent; heard at once while its key is held.
void SetInputVolume(int output, int percent);

}  // namespace zv
