#include "audio/duck.h"

#include "audio/devices.h"
#include "audio/levels.h"
#include "audio/live_stream.h"
#include "engine/bass.h"
#include "model/jingle.h"
#include "model/state.h"
#include "startup/settings/duck_settings.h"
#include "startup/settings/live_settings.h"

namespace zv {

bool DuckWanted = false, Ducked = false;
int DuckTrigger = kNobody;

namespace {

constexpr double kMsPerSecond = 1000;
constexpr DWORD kVolumeMs = 50;

float share(double percent) { return static_cast<float>(percent * 0.01); }

DWORD ms(int value) { return static_cast<DWORD>(value < 0 ? 0 : value); }

bool plays(DWORD channel) { return channel != 0 && BASS_ChannelIsActive(channel) == BASS_ACTIVE_PLAYING; }

/// The live stream plays, and is not on its way out.
bool livePlays() { return LiveNow != LiveState::leaving && plays(hLive); }

double liveVolume() { return liveSettings.VolLive * liveSettings.CoefVolLive; }

void slideLive(DWORD attribute, bool down) {
    const double volume = liveVolume();
    BASS_ChannelSlideAttribute(hLive, attribute, share(down ? volume * share(duckSettings.AttnVol) : volume),
                               ms(down ? duckSettings.FadeOutSpeed : duckSettings.FadeInSpeed));
}

/// All jingles that duck, of the grid and the hot block, whether they sound or not. One that fades to its end
/// goes on fading.
void slideJingles(bool down) {
    for (int i = 0; i <= LastLiveIdx(); ++i) {
        const JingleRecord& j = Jingle(i);
        if (j.AutoDuck != 1 || j.hPlay == 0 || j.Leaving) continue;
        // The way up ends at Volm on the attribute, on top of the volume effect: 50 % come back as 25 %.
        BASS_ChannelSlideAttribute(j.hPlay, BASS_ATTRIB_VOL, share(down ? duckSettings.AttnVol : j.Volm),
                                   ms(down ? duckSettings.FadeOutSpeed : duckSettings.FadeInSpeed));
    }
}

void comeBack(DWORD liveAttribute, bool liveToo) {
    Ducked = false;
    DuckWanted = false;
    if (liveToo && livePlays()) slideLive(liveAttribute, false);
    slideJingles(false);
}

/// Whole ms of the time that the duck looks at.
double remainMs() { return static_cast<double>(static_cast<long long>(DuckRemain * kMsPerSecond)); }

void takePart(double left, bool triggers, int who) {
    if (DuckRemain == 0 || DuckRemain > left) DuckRemain = left;
    if (!triggers || remainMs() <= duckSettings.FadeInAdvance) return;
    DuckWanted = true;
    DuckTrigger = who;
}

}  // namespace

void LiveVolumeChanged() {
    if (LiveNow != LiveState::onAir) return;
    const bool down = Ducked && liveSettings.LiveAutoDuck == 1 && duckSettings.AutoDuckMode == kDuckByLevel;
    BASS_ChannelSlideAttribute(hLive, BASS_ATTRIB_VOLDSP,
                               LiveLevel() * (down ? share(duckSettings.AttnVol) : 1), kVolumeMs);
}

void DuckTickLevel(int trigLevel) {
    if (duckSettings.AutoDuckMode != kDuckByLevel) return;
    DuckWanted = trigLevel >= duckSettings.AutoDuckThreshold;
    if (!DuckWanted && Ducked) {
        comeBack(BASS_ATTRIB_VOLDSP, true);
    } else if (DuckWanted) {
        DuckTrigger = LoudestTrigger;
        if (Ducked) return;
        Ducked = true;
        if (liveSettings.LiveAutoDuck == 1 && livePlays()) slideLive(BASS_ATTRIB_VOLDSP, true);
        slideJingles(true);
    }
}

void DuckTickBegin() {
    DuckRemain = 0;
    DuckWanted = false;
}

void DuckTickJingle(int index, double left) {
    const JingleRecord& j = Jingle(index);
    if (j.AutoDuck == 0 || j.AutoDuck == 2) takePart(left, j.NoTrigDuck == 0, index);
}

void DuckTickAnnouncer(double left) { takePart(left, true, kAnnouncer); }

void DuckTickEnd(bool liveFree) {
    if (duckSettings.AutoDuckMode == kDuckByTime) {
        if (remainMs() < duckSettings.FadeInAdvance && Ducked) comeBack(BASS_ATTRIB_VOL, liveFree);
        if (!DuckWanted) return;
        // Each tick orders the slide anew: the level nears its end along a curve, and a jingle that was started
        // meanwhile goes down too.
        Ducked = true;
        slideJingles(true);
        if (liveSettings.LiveAutoDuck == 1 && liveFree && livePlays()) slideLive(BASS_ATTRIB_VOL, true);
    } else if (duckSettings.AutoDuckMode != kDuckByLevel && Ducked) {
        comeBack(BASS_ATTRIB_VOLDSP, true);  // the duck was turned off while it held something down
    }
}

}  // namespace zv
