/// The one continuous source beside the jingles: a web stream or an input of the sound card. It connects on a worker;
/// what sounds and what is pressed goes on meanwhile. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

enum class LiveState : std::uint8_t {
    off,
    connecting,
    onAir,    ///< also one that has ended by itself: its key stays on until it is pressed
    leaving,  ///< fades to its end
    waiting,  ///< broke off, and is taken up again after a while
};

/// From the press of ckPlayStream until StopPlayStream.
extern bool LiveOn;
extern LiveState LiveNow;
/// The text of cmbStream at the last press.
extern std::string StreamChoice;
/// The input that is, or was last, the source: its place among InputNames; -1 a web stream.
extern int LiveInputIdx;
/// ckMixByTa is marked: the time announcer takes the stream down, the duck leaves it alone.
extern bool LiveMixByTa;
/// What the status line says, and the title on air as far as the stream tells it.
extern std::string LiveStatus, LiveTitle;

/// The press of ckPlayStream with the text `choice` in its list: connects, gives up connecting, or fades out.
void SubPlayStream(const std::string& choice);
/// Ends the stream and a connection that is being made. `quiet`: the status line stays as it is.
void StopPlayStream(bool quiet = false);
/// Fades a stream on air: `attribute` (BASS_ATTRIB_...) slides to -1 in `ms`; the caller ends the stream then. False
/// when there is none.
bool FadeLive(std::uint32_t attribute, int ms);
/// The channel plays, on its way out too.
bool LivePlays();
/// The gain of the channel by the settings VolLive and CoefVolLive.
float LiveLevel();
/// Each TimerLive: connections that last too long, titles, streams that broke off.
void WatchLive();

}  // namespace zv
