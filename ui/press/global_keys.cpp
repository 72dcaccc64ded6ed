#include "ui/press/global_keys.h"

#include <string>

#include "audio/automix.h"
#include "audio/talk_over.h"
#include "model/state.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/settings.h"
#include "ui/records/armed.h"
#include "ui/records/main_window.h"
#include "ui/screen/colours.h"

namespace zv {

namespace {

void keepToggles() {
    settings.Touch = ToggleTouch;
    settings.Autorepeat = ToggleAutoRep;
    WriteSetting("Touch", std::to_string(ToggleTouch));
    WriteSetting("Autorepeat", std::to_string(ToggleAutoRep));
    ShowGlobalToggles();
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
        NextAutoMix();
        ShowGlobalToggles();
        LnStrings("frmMain");
    });
}

void MicPush() {
    guarded("frmMain.MicPush", [] {
        if (settings.DeviceSingle != 0) {
            return;
        }
        MicUp();
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
        if (k.btMicTO.backColor != settings.moColor) {
            MicDown();
        }
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
        if (!Armed(k.btMicPush)) {
            TalkOverEnds();
        }
    });
}

}  // namespace zv
