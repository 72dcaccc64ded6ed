#include "ui/press/display_press.h"

#include "startup/guard.h"
#include "startup/settings.h"
#include "ui/screen/clock.h"
#include "ui/screen/layout.h"

namespace zv {

void switchDisPalName() {
    guarded("frmMain.switchDisPalName", [] {
        if (settings.LockDisPalName == 1) {
            return;
        }
        if (settings.MinimalView == 1) {
            ClockShowDate = true;
            ClockUpdate();
            return;
        }
        settings.DisPalName = settings.DisPalName == 1 ? 0 : 1;
        FormDraw("init");
    });
}

void switchDisPalNameRelease() {
    guarded("frmMain.switchDisPalNameRelease", [] {
        if (settings.LockDisPalName == 1 || settings.MinimalView != 1) {
            return;
        }
        ClockShowDate = false;
        ClockUpdate();
    });
}

}  // namespace zv
