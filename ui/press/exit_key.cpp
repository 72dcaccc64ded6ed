#include "ui/press/exit_key.h"

#include "model/state.h"
#include "platform/controls.h"
#include "startup/guard.h"
#include "startup/settings/program_settings.h"
#include "startup/settings_file.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"

namespace zv {

void btExit_MouseDown(const MouseEvent& event) {
    guarded(".btExit_MouseDown", [&] {
        if (event.button == MouseButton::left && programSettings.HoldExitToShutDown == 1) {
            timers().TimerShutDown.restart();
        }
    });
}

void btExit_MouseUp(const MouseEvent& event) {
    guarded(".btExit_MouseUp", [&] {
        timers().TimerShutDown.stop();
        if (event.button != MouseButton::right) {
            UnloadMain(kClosedByUser);
        }
    });
}

void TimerShutDownTick() {
    guarded("frmMain.TimerShutDown_Timer", [] {
        timers().TimerShutDown.stop();
        programSettings.ConfirmExit = 0;
        programSettings.ShutdownOnQuit = 1;
        KeepOutOfFile("ConfirmExit");
        KeepOutOfFile("ShutdownOnQuit");
        UnloadMain(kClosedByProgram);
    });
}

void UnloadMain(int reason) {
    guarded("frmMain.Unload", [&] {
        Control& window = frmMain().window;
        if (Unloading || (window.onQueryClose && !window.onQueryClose(reason))) {
            return;
        }
        if (window.onClose) {
            window.onClose();
        }
    });
}

}  // namespace zv
