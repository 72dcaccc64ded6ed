#include "ui/press/display_press.h"

#include "startup/guard.h"
#include "startup/settings/minimal_settings.h"
#include "startup/settings/palette_list_settings.h"
#include "ui/screen/clock.h"
#include "ui/screen/layout.h"

namespace zv {

void switchDisPalName() {
    guarded("frmMain.switchDisPalName", [] {
        if (paletteListSettings.LockDisPalName == 1) {
            return;
        }
        if (minimalSettings.MinimalView == 1) {
            ClockShowDate = true;
            ClockUpdate();
            return;
        }
        paletteListSettings.DisPalName = paletteListSettings.DisPalName == 1 ? 0 : 1;
        FormDraw("init");
    });
}

void switchDisPalNameRelease() {
    guarded("frmMain.switchDisPalNameRelease", [] {
        if (paletteListSettings.LockDisPalName == 1 || minimalSettings.MinimalView != 1) {
            return;
        }
        ClockShowDate = false;
        ClockUpdate();
    });
}

}  // namespace zv
