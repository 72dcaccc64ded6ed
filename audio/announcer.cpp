#include "audio/announcer.h"

#include <algorithm>
#include <cstdio>

#include "audio/devices.h"
#include "audio/live_stream.h"
#include "audio/sounding.h"
#include "audio/source_file.h"
#include "audio/time_jingle.h"
#include "audio/upcalls.h"
#include "engine/bass.h"
#include "model/jingle.h"
#include "model/state.h"
#include "platform/jobs.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/settings/announcer_settings.h"
#include "startup/settings/automix_settings.h"
#include "startup/settings/clock_settings.h"
#include "startup/settings/devices_settings.h"
#include "startup/upcalls.h"

namespace zv {

bool TmAnnOn = false, TmAnnAM = false, TmJingleAM = false;
int TmAnLen = 0, TmJingleMin = 0, TmJingleSec = 0;
double TmAnDuration = 0;
bool TmAnRunning = false, TmAnVoicePlaying = false, TmAnJinglePlaying = false;

namespace {

constexpr int kSixty = 60;
constexpr float kStopAtEnd = -1;  // of a slide: to silence, then stop

Job opening;
bool voiceSounded = false;  // at the last look

bool mix() { return deviceSettings.DeviceSingle == 0; }
DWORD mixMs() { return static_cast<DWORD>(std::max(0, automixSettings.AutoMixTime)); }

void freeVoice() {
    opening.cancel();
    FreeSource(hTmAnVoice);  // and its source
    hTmAnVoice = 0;
}

void refuse() {
    TmAnnOn = false;
    Error_(Ln("mLoadTAError"));
    callUp(audioUpcalls.announcerChanged);
    callUp(audioUpcalls.announcementFailed);
}

void build(SourceFile& found) {
    const DWORD source = found.take();
    hTmAnVoice = BASS_FX_TempoCreate(source, BASS_FX_FREESOURCE | (mix() ? BASS_STREAM_DECODE : 0));
    if (hTmAnVoice == 0) {
        FreeSource(source);
        return refuse();
    }
    TmAnDuration = BASS_ChannelBytes2Seconds(source, BASS_ChannelGetLength(source, BASS_POS_BYTE));
    BASS_ChannelSetAttribute(hTmAnVoice, BASS_ATTRIB_BUFFER, 0);
    if (mix()) {
        BASS_ChannelStop(hTmAnVoice);
        BASS_Mixer_StreamAddChannel(MainMixer, hTmAnVoice, BASS_MIXER_CHAN_BUFFER);
    }
    TmAnnOn = true;
    TmAnLen = static_cast<int>(TmAnDuration);
    DTChange();
    OpenTimeJingle();
    LastCtrl = "ta";
    callUp(audioUpcalls.announcerChanged);
}

/// All live jingles that play go out.
void fadeJingles() {
    for (const int i : LiveJingles()) {
        if (!Plays(i)) continue;
        Jingle(i).Leaving = true;
        BASS_ChannelSlideAttribute(Jingle(i).hPlay, BASS_ATTRIB_VOL, kStopAtEnd, mixMs());
    }
}

void announce() {
    BASS_ChannelSetPosition(hTmAnVoice, 0, BASS_POS_BYTE);
    BASS_ChannelSetAttribute(hTmAnVoice, BASS_ATTRIB_VOL, 1);
    if (LiveMixByTa && FadeLive(BASS_ATTRIB_VOLDSP, automixSettings.AutoMixTime))
        callUp(audioUpcalls.streamFades, automixSettings.AutoMixTime);
    if (TmAnnAM) fadeJingles();
    TmAnRunning = true;
    BASS_ChannelPlay(hTmAnVoice, false);
    if (!AnnouncementSounds()) Error_("Can't play time announce stream 1");
}

void playJingle() {
    if (TmJingleAM) {
        fadeJingles();
        if (AnnouncementSounds())
            BASS_ChannelSlideAttribute(hTmAnVoice, BASS_ATTRIB_VOL, kStopAtEnd, mixMs());
    }
    PlayTimeJingle();
    TmAnRunning = false;
}

void toStart(DWORD channel) {
    if (channel == 0) return;
    BASS_ChannelStop(channel);
    BASS_ChannelSetPosition(channel, 0, BASS_POS_BYTE);
}

}  // namespace

bool AnnouncementSounds() {
    return hTmAnVoice != 0 && BASS_ChannelIsActive(hTmAnVoice) != BASS_ACTIVE_STOPPED;
}

void ArmAnnouncer() {
    freeVoice();
    FreeTimeJingle();
    // In a rehearsal the file is there at once.
    opening = startJob<SourceFile>(
        "frmMain.CkTmAnnTog",
        [path = announcerSettings.TimeAnnouncer](JobWork&) { return OpenSourceFile(path); },
        [](SourceFile found) { guarded("frmMain.CkTmAnnTog", [&] { build(found); }); }, JobLane::soon, 0);
}

void DisarmAnnouncer() {
    freeVoice();
    TmAnnOn = TmAnVoicePlaying = TmAnJinglePlaying = TmAnRunning = false;
    TmAnnAM = TmJingleAM = false;
    TmAnLen = 0;
    DropTimeJingle();
}

bool AnnouncerOpens() { return opening.running(); }

void DTChange() {
    if (TmAnnOn) announcerSettings.TimeAnnDel = std::min(announcerSettings.TimeAnnDel, TmAnLen);
    TmJingleMin = announcerSettings.TimeAnnMin;
    TmJingleSec = announcerSettings.TimeAnnSec + announcerSettings.TimeAnnDel;
    while (TmJingleSec >= kSixty) {
        TmJingleSec -= kSixty;
        TmJingleMin = (TmJingleMin + 1) % kSixty;
    }
}

void AnnounceAt(int minute, int second) {
    if (TmAnnOn && minute == announcerSettings.TimeAnnMin && second == announcerSettings.TimeAnnSec)
        announce();
    if (!TmAnPath.empty() && TmAnRunning && minute == TmJingleMin && second == TmJingleSec) playJingle();
}

bool WatchAnnouncer() {
    const bool voice = AnnouncementSounds(), jingle = TimeJingleSounds();
    const bool changed = voice != voiceSounded || jingle != TmAnJinglePlaying;
    voiceSounded = voice;
    TmAnJinglePlaying = jingle;
    if (voice || jingle) {
        TmAnVoicePlaying = true;
    } else if (TmAnVoicePlaying && !TmAnRunning) {
        TmAnVoicePlaying = false;
        toStart(hTmAnVoice);
        toStart(hTmAn);
    }
    return changed;
}

std::string NextAnnouncement(const WallTime& now) {
    constexpr int halfDay = 12, day = 24;
    const bool past =
        now.minute > announcerSettings.TimeAnnMin ||
        (now.minute == announcerSettings.TimeAnnMin && now.second > announcerSettings.TimeAnnSec);
    const int next = (now.hour + (past ? 1 : 0)) % day;
    const bool halves = clockSettings.TimeFormat.find("AM") != std::string::npos ||
                        clockSettings.TimeFormat.find("PM") != std::string::npos;
    const int hour = !halves ? next : next % halfDay == 0 ? halfDay : next % halfDay;
    char text[40];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d%s", hour, announcerSettings.TimeAnnMin,
                  announcerSettings.TimeAnnSec,
                  !halves          ? ""
                  : next < halfDay ? " AM"
                                   : " PM");
    return text;
}

}  // namespace zv
