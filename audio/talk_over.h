/// The microphone over the jingles: levels of both on both outputs. Mix topology only. [control]
#pragma once

namespace zv {

extern bool MicPushed;   ///< the microphone's key is held
extern bool TalkOverOn;  ///< the mark of talk-over
extern float
    BusLevel;  ///< what the jingle bus is on its way to, 1 is its full level; the lower of two outputs

/// The microphone's key goes down: it opens in 50 ms, the jingle bus goes to AttnVol in FadeOutSpeed ms.
void RaiseMic();
/// The jingle bus comes back in FadeInSpeed ms, the microphone closes.
void LowerMic();
/// Talk-over was turned off: the jingle bus goes to the output's own volume, the microphone closes.
void EndTalkOver();
/// The input was turned off a while ago: what it had pushed down comes back, unless the key is held.
void InputIsOff();
/// Level of the microphone on output 0 or 1, percent; heard at once while its key is held.
void SetInputVolume(int output, int percent);

}  // namespace zv
