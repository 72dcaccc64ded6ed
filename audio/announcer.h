/// The time announcer: once an hour, at a set minute and second, one sound file, and after a set delay the time
/// jingle. [control]
#pragma once

#include <string>

#include "platform/clock.h"

namespace zv {

extern bool TmAnnOn;                  ///< ckTmAnn is armed
extern bool TmAnnAM, TmJingleAM;      ///< automix marks of the announcement and of the time jingle
extern int TmAnLen;                   ///< whole seconds of the announcement
extern double TmAnDuration;           ///< its seconds
extern int TmJingleMin, TmJingleSec;  ///< moment of the time jingle
extern bool TmAnRunning;  ///< from the start of the announcement until the time jingle has started
extern bool TmAnVoicePlaying, TmAnJinglePlaying;  ///< as the display's tick saw it last

/// Opens the announcement's file on a worker and arms the announcer when it is there; a file that cannot be opened is
/// told on the display. The time jingle that was chosen stays.
void ArmAnnouncer();
/// Disarms it, or gives up arming it, and lets go of the time jingle. What sounds of both ends.
void DisarmAnnouncer();
/// The file is being opened.
bool AnnouncerOpens();
/// Works out the moment of the time jingle from the settings; TimeAnnDel is held within the announcement.
void DTChange();
/// A second of the wall clock has begun: what is due at `minute` and `second` starts.
void AnnounceAt(int minute, int second);
/// Each tick of the display: what sounds, and the end of it. True when that has changed.
bool WatchAnnouncer();
/// The announcement sounds.
bool AnnouncementSounds();
/// The moment of the next announcement as the time format writes it: "10:59:55", "10:59:55 AM".
std::string NextAnnouncement(const WallTime& now);

}  // namespace zv
