#include "ui/screen/meters.h"

#include <algorithm>
#include <array>
#include <string>

#include "audio/levels.h"
#include "platform/controls.h"
#include "startup/guard.h"
#include "startup/settings.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"

namespace zv {

int VuHoldL = 0, VuHoldR = 0;

namespace {

struct Pair {
    int left = 0, right = 0;
};

Pair levelNow;  // of the last reading

void show() {
    MainWindow& w = frmMain();
    w.VuL.value = VuHoldL;
    w.VuR.value = VuHoldR;
}

}  // namespace

void TimerVUTick() {
    guarded("frmMain.TimerVU_Timer", [] {
        const std::array<int, 6> levels = GetLevels();
        if (settings.VUPos != "n") {
            const int left = levels[2];
            const int right = levels[3];
            if (settings.VUpersist == 1) {
                VuHoldL = std::max(VuHoldL, left);
                VuHoldR = std::max(VuHoldR, right);
            } else {
                VuHoldL = left;
                VuHoldR = right;
            }
            levelNow = {left, right};
            show();
            if (VuHoldL > 0 || VuHoldR > 0) {
                timers().TimerVUFD.start();
            }
        }
    });
}

void TimerVUFDTick() {
    guarded("frmMain.TimerVUFD_Timer", [] {
        if (settings.VUpersist != 1 || (VuHoldL == 0 && VuHoldR == 0)) {
            timers().TimerVUFD.stop();
            return;
        }
        constexpr int step = VuFallStep / 100;
        // Not below what sounds: the next reading would only raise it again, and the bar would tremble.
        VuHoldL = std::max(levelNow.left, VuHoldL - step);
        VuHoldR = std::max(levelNow.right, VuHoldR - step);
        show();
    });
}

void ChangeVUchan() {
    guarded("frmMain.ChangeVUchan", [] {
        settings.VUchan = settings.VUchan == 0 ? 1 : 0;
        frmMain().lblVUSrc.caption = std::string(settings.VUchan == 0 ? "p" : "q");
    });
}

void ApplyMeterLook() {
    MeterLook look;
    look.gradient = settings.VUGradient != 0;
    look.solid = settings.VUSolid != 0;
    look.peak = settings.VUPeak != 0;
    look.peakDelayMs = settings.VUPeakDelay;
    look.midLevel = settings.VUMid;
    look.hiLevel = settings.VUHi;
    look.backColor = settings.VUBackCol;
    look.lowColor = settings.VULowCol;
    look.midColor = settings.VUMidCol;
    look.hiColor = settings.VUHiCol;
    look.vertical = settings.VUPos != "t";
    MainWindow& w = frmMain();
    for (Control* meter : {&w.VuL, &w.VuR}) {
        meter->maximum = kMeterMax;
        meter->meterLook = look;
        meter->backColor = settings.VUBackCol;
    }
    w.fraVU.backColor = settings.VUBackCol;
    w.lblVUSrc.caption = std::string(settings.VUchan == 0 ? "p" : "q");
}

}  // namespace zv
