#include "ui/press/global_keys.h"

#include <string>
#include <utility>

#include "audio/automix.h"
#include "audio/talk_over.h"
#include "midi/feedback.h"
#include "model/state.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/settings/devices_settings.h"
#include "startup/settings/keys_settings.h"
#include "startup/settings/marks_settings.h"
#include "startup/settings_file.h"
#include "ui/records/armed.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/colours.h"

namespace zv {

namespace {

/// The talk-over key has the colour of a pushed microphone: the microphone stays open when it is let go, its lamp lit.
bool micHeldOpen = false;

void keepToggles() {
    keySettings.Touch = ToggleTouch;
    keySettings.Autorepeat = ToggleAutoRep;
    WriteSetting("Touch", std::to_string(ToggleTouch));
    WriteSetting("Autorepeat", std::to_string(ToggleAutoRep));
    ShowGlobalToggles();
}

}  // namespace

void CkAutoRepTog() {
    guarded("frmMain.CkAutoRepTog", [] {
        if (MIDILearnActive) {
            return;
        }
        LastCtrl = "CkAutoRep";
        ToggleAutoRep = ToggleAutoRep == 1 ? 0 : 1;
        const bool other = ToggleAutoRep == 1 && ToggleTouch == 1;
        if (other) {
            ToggleTouch = 0;
        }
        keepToggles();
        ToggleSwitched(Toggle::autoRepeat);
        if (other) {
            ToggleSwitched(Toggle::touch);
        }
    });
}

void CkTouchTog() {
    guarded("frmMain.CkTouchTog", [] {
        if (MIDILearnActive) {
            return;
        }
        LastCtrl = "CkTouch";
        ToggleTouch = ToggleTouch == 1 ? 0 : 1;
        const bool other = ToggleTouch == 1 && ToggleAutoRep == 1;
        if (other) {
            ToggleAutoRep = 0;
        }
        keepToggles();
        ToggleSwitched(Toggle::touch);
        if (other) {
            ToggleSwitched(Toggle::autoRepeat);
        }
    });
}

void CkAutoMixTog() {
    guarded("frmMain.CkAutoMixTog", [] {
        if (MIDILearnActive) {
            return;
        }
        LastCtrl = "CkAutoMix";
        NextAutoMix();
        ShowGlobalToggles();
        LnStrings("frmMain");
        ToggleSwitched(Toggle::autoMix);
    });
}

void MicPush() {
    guarded("frmMain.MicPush", [] {
        if (deviceSettings.DeviceSingle != 0) {
            return;
        }
        micHeldOpen = false;
        RaiseMic();
        Arm(frmMain().keys.btMicPush, markSettings.moColor);
        LampOfMic(true);
    });
}

void MicRelease() {
    guarded("frmMain.MicRelease", [] {
        if (deviceSettings.DeviceSingle != 0) {
            return;
        }
        MicPushed = false;
        KeyControls& k = frmMain().keys;
        Disarm(k.btMicPush);
        micHeldOpen = k.btMicTO.backColor == markSettings.moColor;
        if (micHeldOpen) {
            return;
        }
        LowerMic();
        LampOfMic(false);
    });
}

void TalkOverTog() {
    guarded("frmMain.TalkOverTog", [] {
        if (deviceSettings.DeviceSingle != 0) {
            return;
        }
        KeyControls& k = frmMain().keys;
        TalkOverOn = !TalkOverOn;
        LampOfTalkOver(TalkOverOn);
        if (TalkOverOn) {
            Arm(k.btMicTO, markSettings.toColor);
            return;
        }
        Disarm(k.btMicTO);
        timers().TimerTOrelease.stop();
        if (!Armed(k.btMicPush)) {
            EndTalkOver();
            if (std::exchange(micHeldOpen, false)) {
                LampOfMic(false);
            }
        }
    });
}

}  // namespace zv
