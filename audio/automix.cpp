#include "audio/automix.h"

#include <cstdint>

#include "audio/devices.h"
#include "audio/live_stream.h"
#include "audio/sounding.h"
#include "audio/upcalls.h"
#include "engine/bass.h"
#include "model/jingle.h"
#include "model/state.h"
#include "platform/clock.h"
#include "startup/settings/automix_settings.h"
#include "startup/settings/live_settings.h"
#include "startup/upcalls.h"

namespace zv {

namespace {

constexpr int kModes = 3;
constexpr float kStopAtEnd = -1;  // of a slide: to silence, then stop

constexpr std::int64_t kTold = 2000;  // ms that a refusal is told

int refused = -1;
std::int64_t refusedAt = 0;

/// The display counts, or something was started since it looked.
bool somethingIsLeft() {
    if (DispRemain != 0) return true;
    for (const int i : LiveJingles())
        if (Jingle(i).Playing && Sounds(i) && PlayTimeOf(i).left > 0) return true;
    return false;
}

DWORD autoFadeAttrib() {
    return automixSettings.LogFadeOut == 1 ? BASS_ATTRIB_VOL | BASS_SLIDE_LOG : BASS_ATTRIB_VOL;
}

void fadeAway(DWORD channel) {
    if (channel == 0) return;
    BASS_ChannelSlideAttribute(channel, autoFadeAttrib(), kStopAtEnd,
                               static_cast<DWORD>(automixSettings.AutoMixTime));
}

}  // namespace

void NextAutoMix() { automixSettings.AutoMix = (automixSettings.AutoMix + 1) % kModes; }

void FadeOthers(int index) {
    for (const int i : LiveJingles()) {
        JingleRecord& j = Jingle(i);
        if (i == index || j.NoAutomix != 0 || !Plays(i)) continue;
        fadeAway(j.hPlay);
        j.Leaving = true;
    }
    fadeAway(hTmAnSrc);
    if (liveSettings.NoAutomixLive != 0) return;
    if (FadeLive(autoFadeAttrib(), automixSettings.AutoMixTime))
        callUp(audioUpcalls.streamFades, automixSettings.AutoMixTime);
}

bool LockRefuses(int index) {
    if (automixSettings.AutoMix != kAutomixLock || !somethingIsLeft()) return false;
    refused = index;
    refusedAt = monotonicMs();
    return true;
}

int RefusedLately() { return refused >= 0 && monotonicMs() - refusedAt < kTold ? refused : -1; }

}  // namespace zv
