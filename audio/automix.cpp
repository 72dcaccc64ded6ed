#include "audio/automix.h"

#include "audio/devices.h"
#include "engine/bass.h"
#include "model/jingle.h"
#include "startup/settings.h"

namespace zv {

namespace {

constexpr int kModes = 3;
constexpr float kStopAtEnd = -1;  // of a slide: to silence, then stop

DWORD autoFadeAttrib() {
    return settings.LogFadeOut == 1 ? BASS_ATTRIB_VOL | BASS_SLIDE_LOG : BASS_ATTRIB_VOL;
}

void fadeAway(DWORD channel) {
    if (channel != 0) {
        BASS_ChannelSlideAttribute(channel, autoFadeAttrib(), kStopAtEnd,
                                   static_cast<DWORD>(settings.AutoMixTime));
    }
}

}  // namespace

void NextAutoMix() { settings.AutoMix = (settings.AutoMix + 1) % kModes; }

void FadeOthers(int index) {
    for (const int i : LiveJingles()) {
        const JingleRecord& j = Jingle(i);
        if (i != index && j.NoAutomix == 0 && j.hPlay != 0 &&
            BASS_ChannelIsActive(j.hPlay) == BASS_ACTIVE_PLAYING) {
            fadeAway(j.hPlay);
        }
    }
    fadeAway(hTmAnSrc);
    if (settings.NoAutomixLive == 0) {
        fadeAway(hLive);
    }
}

}  // namespace zv
