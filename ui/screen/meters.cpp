#include "ui/screen/meters.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "audio/devices.h"
#include "audio/duck.h"
#include "audio/levels.h"
#include "platform/clock.h"
#include "platform/controls.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/settings/meters_settings.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"

namespace zv {

int VuHoldL = 0, VuHoldR = 0;
bool VuTestOn = false;

namespace {

constexpr int kStereo = 2;
constexpr std::int64_t kHold = 3000;    // ms that a clip mark stays and a peak counts
constexpr std::int64_t kTipEach = 500;  // ms between two looks of the tool tip
constexpr float kSilent = 1e-5F;        // -100 dB

/// One side: what was read last, its peak and when it was cut off.
struct Side {
    int value = 0;
    float peak = 0;
    std::int64_t peakAt = 0;
    std::int64_t clippedAt = -kHold;

    void read(int units, float level, std::int64_t now) {
        value = units;
        if (level >= peak || now - peakAt >= kHold) {
            peak = level;
            peakAt = now;
        }
        if (level >= 1) {
            clippedAt = now;
        }
    }
    bool clipped(std::int64_t now) const { return now - clippedAt < kHold; }
};

std::array<Side, 2> sides;
std::int64_t tippedAt = -kTipEach;

std::array<Control*, 2> meters() { return {&frmMain().VuL, &frmMain().VuR}; }

void show() {
    MainWindow& w = frmMain();
    w.VuL.value = VuTestOn ? kMeterMax : VuHoldL;
    w.VuR.value = VuTestOn ? kMeterMax : VuHoldR;
}

/// "Peak L -3.2 dBFS"
std::string peakText(const Side& side, const char* name, std::int64_t now) {
    std::string text = Ln("mPeak") + " " + name;
    if (side.peak < kSilent) {
        return text + " -\u221e dBFS";
    }
    char number[32];
    std::snprintf(number, sizeof number, " %+.1f dBFS", 20 * std::log10(static_cast<double>(side.peak)));
    return text + number + (side.clipped(now) ? ", " + Ln("mClipped") : "");
}

void showMarks(std::int64_t now) {
    static constexpr std::array<const char*, 2> names{"L", "R"};
    for (std::size_t i = 0; i < sides.size(); ++i) {
        Control& meter = *meters()[i];
        if (meter.meterLook().clipped != sides[i].clipped(now)) {
            MeterLook look = meter.meterLook;
            look.clipped = sides[i].clipped(now);
            meter.meterLook = look;
        }
        if (now - tippedAt >= kTipEach) {
            meter.toolTip = peakText(sides[i], names[i], now);
        }
    }
    if (now - tippedAt >= kTipEach) {
        tippedAt = now;
    }
}

}  // namespace

void TimerVUTick() {
    guarded("frmMain.TimerVU_Timer", [] {
        const std::array<int, 6> levels = GetLevels();
        if (meterSettings.VUPos != "n") {
            const std::int64_t now = monotonicMs();
            sides[0].read(levels[2], LoudestLevel[0], now);
            sides[1].read(levels[3], LoudestLevel[1], now);
            const bool falls = meterSettings.VUpersist == 1;
            VuHoldL = falls ? std::max(VuHoldL, sides[0].value) : sides[0].value;
            VuHoldR = falls ? std::max(VuHoldR, sides[1].value) : sides[1].value;
            show();
            showMarks(now);
            if (VuHoldL > 0 || VuHoldR > 0) {
                timers().TimerVUFD.start();
            }
        }
        DuckTickLevel(levels[4]);
    });
}

void TimerVUFDTick() {
    guarded("frmMain.TimerVUFD_Timer", [] {
        if (meterSettings.VUpersist != 1 || (VuHoldL == 0 && VuHoldR == 0)) {
            timers().TimerVUFD.stop();
            return;
        }
        constexpr int step = VuFallStep / 100;
        // The fall stops at the level of the last reading, to which the next one would raise the bar again.
        VuHoldL = std::max(sides[0].value, VuHoldL - step);
        VuHoldR = std::max(sides[1].value, VuHoldR - step);
        show();
    });
}

void ChangeVUchan() {
    guarded("frmMain.ChangeVUchan", [] {
        if (OutputChannels() <= kStereo) {
            return;
        }
        meterSettings.VUchan = meterSettings.VUchan == 0 ? 1 : 0;
        frmMain().lblVUSrc.caption = std::string(meterSettings.VUchan == 0 ? "p" : "q");
    });
}

void ApplyMeterLook() {
    MainWindow& w = frmMain();
    for (Control* meter : meters()) {
        MeterLook look;
        look.gradient = meterSettings.VUGradient != 0;
        look.solid = meterSettings.VUSolid != 0;
        look.peak = meterSettings.VUPeak != 0;
        look.peakDelayMs = meterSettings.VUPeakDelay;
        look.midLevel = meterSettings.VUMid;
        look.hiLevel = meterSettings.VUHi;
        look.backColor = meterSettings.VUBackCol;
        look.lowColor = meterSettings.VULowCol;
        look.midColor = meterSettings.VUMidCol;
        look.hiColor = meterSettings.VUHiCol;
        look.vertical = meterSettings.VUPos != "t";
        look.clipped = meter->meterLook().clipped;
        meter->maximum = kMeterMax;
        meter->meterLook = look;
        meter->backColor = meterSettings.VUBackCol;
    }
    w.fraVU.backColor = meterSettings.VUBackCol;
    w.lblVUSrc.caption = std::string(meterSettings.VUchan == 0 ? "p" : "q");
    w.lblVUSrc.visible = OutputChannels() > kStereo;
}

}  // namespace zv
