#include "ui/press/global_keys.h"

#include <string>

#include "audio/devices.h"
#include "engine/bass.h"
#include "model/colours.h"
#include "model/jingle.h"
#include "model/state.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/settings.h"
#include "ui/press/press.h"
#include "ui/records/main_window.h"
#include "ui/screen/colours.h"

namespace zv {

bool MicPushed = false, TalkOverOn = false;

namespace {

constexpr DWORD kMicRamp = 50;  // ms
constexpr int kAutoMixModes = 3;

DWORD autoFadeAttrib() {
    return settings.LogFadeOut == 1 ? BASS_ATTRIB_VOL | BASS_SLIDE_LOG : BASS_ATTRIB_VOL;
}

void fadeAway(DWORD channel) {
    if (channel != 0) {
        BASS_ChannelSlideAttribute(channel, autoFadeAttrib(), -1.0F,
                                   static_cast<DWORD>(settings.AutoMixTime));
    }
}

void keepToggles() {
    settings.Touch = ToggleTouch;
    settings.Autorepeat = ToggleAutoRep;
    WriteSetting("Touch", std::to_string(ToggleTouch));
    WriteSetting("Autorepeat", std::to_string(ToggleAutoRep));
    ShowGlobalToggles();
}

float share(int percent) { return static_cast<float>(percent) / 100.0F; }

/// Slides the jingle bus and the microphone on both outputs.
void slideBuses(float jingles, int jinglesMs, float mic) {
    for (std::size_t i = 0; i < MainSplit.size(); ++i) {
        if (MainSplit[i] != 0) {
            BASS_ChannelSlideAttribute(MainSplit[i], BASS_ATTRIB_VOLDSP, jingles,
                                       static_cast<DWORD>(jinglesMs));
        }
        if (MicSplit[i] != 0) {
            const float level = mic * share(i == 0 ? settings.VolumeInMain : settings.VolumeInAux);
            BASS_ChannelSlideAttribute(MicSplit[i], BASS_ATTRIB_VOLDSP, level, kMicRamp);
        }
    }
}

}  // namespace

void CkAutoRepTog() {
    guarded("frmMain.CkAutoRepTog", [] {
        LastCtrl = "CkAutoRep";
        ToggleAutoRep = ToggleAutoRep == 1 ? 0 : 1;
        if (ToggleAutoRep == 1) {
            ToggleTouch = 0;
        }
        keepToggles();
    });
}

void CkTouchTog() {
    guarded("frmMain.CkTouchTog", [] {
        LastCtrl = "CkTouch";
        ToggleTouch = ToggleTouch == 1 ? 0 : 1;
        if (ToggleTouch == 1) {
            ToggleAutoRep = 0;
        }
        keepToggles();
    });
}

void CkAutoMixTog() {
    guarded("frmMain.CkAutoMixTog", [] {
        if (MIDILearnActive) {
            return;
        }
        LastCtrl = "CkAutoMix";
        settings.AutoMix = (settings.AutoMix + 1) % kAutoMixModes;
        ShowGlobalToggles();
        LnStrings("frmMain");
    });
}

bool AutomixPress(int index, int) {
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
    return false;
}

void MicPush() {
    guarded("frmMain.MicPush", [] {
        if (settings.DeviceSingle != 0) {
            return;
        }
        MicPushed = true;
        slideBuses(share(settings.AttnVol), settings.FadeOutSpeed, 1.0F);
        Arm(frmMain().keys.btMicPush, settings.moColor);
    });
}

void MicRelease() {
    guarded("frmMain.MicRelease", [] {
        if (settings.DeviceSingle != 0) {
            return;
        }
        MicPushed = false;
        KeyControls& k = frmMain().keys;
        Disarm(k.btMicPush);
        if (k.btMicTO.backColor == settings.moColor) {
            return;
        }
        slideBuses(1.0F, settings.FadeInSpeed, 0.0F);
    });
}

void TalkOverTog() {
    guarded("frmMain.TalkOverTog", [] {
        if (settings.DeviceSingle != 0) {
            return;
        }
        KeyControls& k = frmMain().keys;
        TalkOverOn = !TalkOverOn;
        if (TalkOverOn) {
            Arm(k.btMicTO, settings.toColor);
            return;
        }
        Disarm(k.btMicTO);
        if (Armed(k.btMicPush)) {
            return;
        }
        // Back to the output's own level, which is what the key always did.
        for (std::size_t i = 0; i < MainSplit.size(); ++i) {
            const float level = share(i == 0 ? settings.Volume : settings.VolumeAux);
            if (MainSplit[i] != 0) {
                BASS_ChannelSlideAttribute(MainSplit[i], BASS_ATTRIB_VOLDSP, level,
                                           static_cast<DWORD>(settings.FadeInSpeed));
            }
            if (MicSplit[i] != 0) {
                BASS_ChannelSlideAttribute(MicSplit[i], BASS_ATTRIB_VOLDSP, 0.0F, kMicRamp);
            }
        }
    });
}

}  // namespace zv
