#include "ui/press/global_keys.h"

#include <cstdint>
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

/// True while the bus stays down, and the lamp lit, though the microphone key was let go: the talk-over key has the
/// colour of a pushed microphone.
bool micHeldOpen = false;

/// Turns a toggle on or off; turned on it takes the place of the other.
void turn(const char* control, std::uint8_t& own, Toggle ownToggle, std::uint8_t& other, Toggle otherToggle) {
    if (MIDILearnActive) {
        return;
    }
    LastCtrl = control;
    own = own == 1 ? 0 : 1;
    const bool replaces = own == 1 && other == 1;
    if (replaces) {
        other = 0;
    }
    keySettings.Touch = ToggleTouch;
    keySettings.Autorepeat = ToggleAutoRep;
    WriteSetting("Touch", std::to_string(ToggleTouch));
    WriteSetting("Autorepeat", std::to_string(ToggleAutoRep));
    ShowGlobalToggles();
    ToggleSwitched(ownToggle);
    if (replaces) {
        ToggleSwitched(otherToggle);
    }
}

}  // namespace

void CkAutoRepTog() {
    guarded("frmMain.CkAutoRepTog",
            [] { turn("CkAutoRep", ToggleAutoRep, Toggle::autoRepeat, ToggleTouch, Toggle::touch); });
}

void CkTouchTog() {
    guarded("frmMain.CkTouchTog",
            [] { turn("CkTouch", ToggleTouch, Toggle::touch, ToggleAutoRep, Toggle::autoRepeat); });
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
