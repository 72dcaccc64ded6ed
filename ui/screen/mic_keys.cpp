#include "ui/screen/mic_keys.h"

#include "audio/devices.h"
#include "audio/talk_over.h"
#include "midi/feedback.h"
#include "startup/guard.h"
#include "startup/settings/duck_settings.h"
#include "startup/settings/marks_settings.h"
#include "startup/settings/volumes_settings.h"
#include "ui/records/armed.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/layout.h"

namespace zv {

void SwitchInput(bool on) {
    guarded("frmMixer.ckInputEnable_Click", [&] {
        volumeSettings.InputEnabled = on ? 1 : 0;
        if (on) {
            OpenMic();
        } else {
            CloseMic();
            // The key is disabled now and gets no release: let it go here.
            if (MicPushed) {
                LampOfMic(false);
            }
            MicPushed = false;
            Disarm(frmMain().keys.btMicPush);
            timers().TimerTOrelease.setInterval(duckSettings.InTORelease > 0 ? duckSettings.InTORelease : 1);
            timers().TimerTOrelease.restart();
        }
        FormDraw("init");
    });
}

void TimerTOreleaseTick() {
    guarded("frmMain.TimerTOrelease_Timer", [] {
        timers().TimerTOrelease.stop();
        if (TalkOverOn) {
            Arm(frmMain().keys.btMicTO, markSettings.toColor);
            LampOfTalkOver(true, false);  // the fixed output has it on already
        }
        InputIsOff();
    });
}

}  // namespace zv
