/// The microphone over the jingles: levels of both on both outputs. Mix topology only. [control]
#pragma once

namespace zv {

extern bool MicPushed;   ///< the microphone's key is held
extern bool TalkOverOn;  ///< the mark of talk-over

/// The microphone opens, the jingle bus goes down to AttnVol.
void MicUp();
/// The microphone closes, the jingle bus comes back.
void MicDown();
/// Talk-over was turned off: the jingle bus goes to the output's own volume, the microphone closes.
void TalkOverEnds();

}  // namespace zv
