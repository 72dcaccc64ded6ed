/// Whether a jingle sounds, for how long still, and its end. [control]
#pragma once

#include <cstdint>

namespace zv {

/// Time of a sounding jingle, in seconds.
struct PlayTime {
    double left = 0;      ///< until its end, in whole hundredths; 0 when it is less than a tenth
    double duration = 0;  ///< from the start position to the end that is played
};

/// It plays, or waits for data, or is paused.
bool Sounds(int index);
/// It plays now.
bool Plays(int index);
PlayTime PlayTimeOf(int index);
/// Seconds until the end of another channel, as `left` above; 0 when it is silent or has no end.
double TimeLeftOf(std::uint32_t channel);
/// A sequence is between the ends of its loop.
bool InLoop(int index);
/// A jingle was found silent: its record goes back to rest; a slot of the open palette that it held is opened.
void PlayEnded(int index);

}  // namespace zv
