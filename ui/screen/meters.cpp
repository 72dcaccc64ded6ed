#include "ui/screen/meters.h"

#include <algorithm>
#include <string>

#include "audio/devices.h"
#include "engine/bass.h"
#include "model/jingle.h"
#include "model/state.h"
#include "startup/guard.h"
#include "startup/settings.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"

namespace zv {

int VuHoldL = 0, VuHoldR = 0;

namespace {

constexpr float kWindowSeconds = 0.04F;

struct Pair {
    int left = 0, right = 0;
    void raise(const Pair& by) {
        left = std::max(left, by.left);
        right = std::max(right, by.right);
    }
};

Pair levelNow;  // of the last reading

/// Levels of a sounding channel in units of the bar; silence for one that does not sound.
Pair levelOf(DWORD channel) {
    if (channel == 0 || BASS_ChannelIsActive(channel) == BASS_ACTIVE_STOPPED) {
        return {};
    }
    float levels[2] = {0, 0};
    const DWORD flags = (settings.VuRMS != 0 ? BASS_LEVEL_RMS : 0) | BASS_LEVEL_STEREO | BASS_LEVEL_VOLPAN;
    const bool heard = settings.DeviceSingle != 0
                           ? BASS_ChannelGetLevelEx(channel, levels, kWindowSeconds, flags)
                           : BASS_Mixer_ChannelGetLevelEx(channel, levels, kWindowSeconds, flags);
    if (!heard) {
        return {};
    }
    const auto units = [](float level) {
        return static_cast<int>(std::clamp(level, 0.0F, 1.0F) * static_cast<float>(kMeterMax));
    };
    return {units(levels[0]), units(levels[1])};
}

void show() {
    MainWindow& w = frmMain();
    w.VuL.value = VuHoldL;
    w.VuR.value = VuHoldR;
}

}  // namespace

std::array<int, 6> GetLevels() {
    Pair duck;
    Pair meter;
    int trigger = 0;
    for (const int i : LiveJingles()) {
        const JingleRecord& j = Jingle(i);
        if (j.hPlay == 0 || !(j.Playing || BASS_ChannelIsActive(j.hPlay) != BASS_ACTIVE_STOPPED)) {
            continue;
        }
        const Pair level = levelOf(j.hPlay);
        meter.raise(level);
        if (j.NoTrigDuck == 0) {
            duck.raise(level);
            if (j.AutoDuck == 0 || j.AutoDuck == 2) {
                trigger = std::max({trigger, level.left, level.right});
            }
        }
    }
    for (const DWORD other : {DWORD{hLive}, DWORD{hTmAnVoice}, DWORD{hTmAn}}) {
        const Pair level = levelOf(other);
        meter.raise(level);
        trigger = std::max({trigger, level.left, level.right});
        if (other != DWORD{hLive}) {
            duck.raise(level);
        }
    }
    return {duck.left, duck.right, meter.left, meter.right, trigger, 0};
}

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
