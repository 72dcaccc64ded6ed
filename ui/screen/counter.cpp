// Digits, blinking and flashing marks of the display.
#include "ui/screen/counter.h"

#include <array>
#include <cmath>
#include <cstdio>

#include "engine/bass.h"
#include "model/jingle.h"
#include "model/state.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/settings.h"
#include "ui/press/press.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/clock.h"
#include "ui/screen/colours.h"
#include "ui/screen/layout.h"

namespace zv {

namespace {

constexpr int kSecondsPerMinute = 60;
constexpr int kMostFlashes = 20;
constexpr int kBlinkUnit = 10000;  // ms: the interval at a blink rate of 1

std::string fixed(double value, int decimals) {
    char text[64];
    // Halves go up, as the display always did.
    const double scale = std::pow(10.0, decimals);
    std::snprintf(text, sizeof text, "%.*f", decimals, std::floor(value * scale + 0.5) / scale);
    return text;
}

std::string lastCharacter(const std::string& text) {
    return text.empty() ? std::string() : text.substr(text.size() - 1);
}

void hideMinutes() {
    DisplayControls& d = frmMain().display;
    d.lblPosMin.visible = false;
    d.lblPosMinD.visible = false;
    d.lblPosMinC.visible = false;
    d.sepms.caption = std::string();
}

void showMinutes(int minutes) {
    DisplayControls& d = frmMain().display;
    const std::string text = std::to_string(minutes);
    Control* digits[] = {&d.lblPosMin, &d.lblPosMinD, &d.lblPosMinC};
    for (std::size_t i = 0; i < std::size(digits); ++i) {
        digits[i]->visible = i < text.size();
        if (i < text.size()) {
            digits[i]->caption = text.substr(text.size() - 1 - i, 1);
        }
    }
    d.sepms.caption = ":";
}

/// Minimal view: the clock comes two seconds after the counter has gone idle, and goes when it counts.
void minimalClock() {
    UiTimers& t = timers();
    if (DispRemain <= 0) {
        if (t.TimerWarnBlink.enabled()) {
            t.TimerWarnBlink.stop();
            SetDigitsColour(settings.CountDownColor);
        }
        if (settings.ClockEnabled == 1) {
            if (!ClockShown) {
                t.TimerIdleClock.start();
            }
        } else if (ClockShown) {
            StopClock();
        }
    } else if (ClockShown) {
        StopClock();
    }
}

}  // namespace

int WarnBlinkInterval(int blinkWarn) { return blinkWarn <= 0 ? 0 : kBlinkUnit / blinkWarn; }

void SetDigitsColour(Colour colour) {
    for (Control* digit : frmMain().display.digits()) {
        digit->foreColor = colour;
    }
}

void WriteDigits(double remain, const std::string& text) {
    DisplayControls& d = frmMain().display;
    const double value = Val(text);
    const int minutes = static_cast<int>(value / kSecondsPerMinute);
    const int whole = static_cast<int>(value) - minutes * kSecondsPerMinute;
    char seconds[16];
    std::snprintf(seconds, sizeof seconds, "%02d", whole);
    if (remain > kSecondsPerMinute) {
        showMinutes(minutes);
    } else {
        hideMinutes();
    }
    d.sepsd.caption = ".";
    d.lblPosSecD.caption = std::string(1, seconds[0]);
    d.lblPosSecU.caption = std::string(1, seconds[1]);
    d.lblPosMisD.caption = lastCharacter(fixed(value, 1));
    d.lblPosMisC.caption = settings.DispCSec == 1 ? lastCharacter(fixed(value, 2)) : std::string();
}

void ShowRemain() {
    if (settings.MinimalView == 1) {
        minimalClock();
    }
    if (ClockShown) {
        return;
    }
    WriteDigits(DispRemain, DispText);
    Timer& blink = timers().TimerWarnBlink;
    if (DispRemain <= 0 && blink.enabled()) {
        blink.stop();
        hideMinutes();
        DisplayControls& d = frmMain().display;
        d.lblPosSecD.caption = "0";
        d.lblPosSecU.caption = "0";
        d.lblPosMisD.caption = "0";
        d.lblPosMisC.caption = std::string(settings.DispCSec == 1 ? "0" : "");
        SetDigitsColour(settings.CountDownColor);
    }
}

void TimerWarnBlinkTick() {
    guarded("frmMain.TimerWarnBlink_Timer", [] {
        if (settings.BlinkWarn == 0) {
            SetDigitsColour(settings.RemainColor);
            return;
        }
        if (settings.BlinkTarget == 1 || settings.BlinkTarget == 2) {
            for (const int i : LiveJingles()) {
                JingleButton* b = Button(i);
                if (b == nullptr) {
                    continue;
                }
                const JingleRecord& j = Jingle(i);
                if (BlinkPhase) {
                    if (settings.JRemLevPos != 0) {
                        b->JRemLev.backColor = settings.JRemLevCol;
                        if (BlinkTestOn) {
                            b->JRemLev.visible = true;
                        }
                    }
                } else if (settings.JRemLevTrBg == 1) {
                    b->JRemLev.backColor = j.PlayingOtherPal ? settings.PlayingColorAnotherPal
                                           : j.Playing       ? settings.PlayingColor
                                                             : j.BackRGB;
                } else {
                    b->JRemLev.backColor =
                        j.PlayingOtherPal ? settings.JRemLevColBgPl : settings.JRemLevColBg;
                }
            }
        }
        if (settings.BlinkTarget == 0 || settings.BlinkTarget == 2) {
            SetDigitsColour(BlinkPhase ? settings.RemainColor : settings.DispBackCol);
        }
        BlinkPhase = !BlinkPhase;
    });
}

void TimerFadeOutLEDTick() {
    guarded("frmMain.TimerFadeOutLED_Timer", [] {
        static bool phase = false;
        phase = !phase;
        for (const int i : LiveJingles()) {
            JingleButton* b = Button(i);
            const JingleRecord& j = Jingle(i);
            if (b == nullptr || j.State != PlayState::stopping || j.hSrc == 0) {
                continue;
            }
            Colour lp = Shaded.lp, sq = Shaded.sq, fx = Shaded.fx;
            if (!phase) {
                if (j.LoopFadeOut != 0) {
                    std::swap(lp, sq);
                } else {
                    lp = sq = 0;
                    if (j.Loop == 0) {
                        fx = 0;
                    }
                }
            }
            b->lp_Jingle.foreColor = lp;
            b->sq_Jingle.foreColor = sq;
            b->fx_Jingle.foreColor = fx;
        }
    });
}

void TimerControlFlashTick() {
    guarded("frmMain.TimerControlFlash_Timer", [] {
        static bool phase = false;
        phase = !phase;
        for (const int i : LiveJingles()) {
            JingleButton* b = Button(i);
            const JingleRecord& j = Jingle(i);
            if (b == nullptr || j.hSrc == 0 || j.Seq == 0 || j.State == PlayState::stopping ||
                BASS_ChannelIsActive(j.hPlay) != BASS_ACTIVE_PLAYING) {
                continue;
            }
            const auto at = static_cast<double>(BASS_ChannelGetPosition(j.hPlay, BASS_POS_BYTE));
            if (at >= j.LoopIn && at <= j.LoopOut) {
                b->sq_Jingle.foreColor = phase ? Shaded.lp : Shaded.sq;
            }
        }
        Control& mark = frmMain().display.lblErr;
        if (ErrOneShot == 0) {
            return;
        }
        mark.foreColor = phase ? settings.DispBackCol : settings.DateTimeColor;
        if (++ErrBlinkCount > kMostFlashes) {
            ErrOneShot = 0;
            mark.foreColor = settings.DateTimeColor;
            if (mark.visible && !ErrMarkShows("h")) {
                timers().TimerNotif.stop();
                mark.caption = std::string();
                mark.visible = false;
            }
        }
    });
}

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

bool ErrMarkShows(std::string_view letter) {
    const Control& mark = frmMain().display.lblErr;
    return mark.visible && mark.caption() == letter;
}

void HideErrMark() {
    Control& mark = frmMain().display.lblErr;
    mark.caption = std::string();
    mark.toolTip = std::string();
    mark.visible = false;
}

std::string seconds2msd(double seconds) {
    const double tenths = std::floor(std::nearbyint((seconds + 0.05) * 100) / 100 * 10 + 1e-9) / 10;
    const int whole = static_cast<int>(tenths);
    const int minutes = whole / kSecondsPerMinute;
    const int tenth = static_cast<int>(std::lround(tenths * 10)) % 10;
    char text[48];
    if (minutes > 0) {
        std::snprintf(text, sizeof text, "%d:%02d.%d", minutes, whole - minutes * kSecondsPerMinute, tenth);
    } else {
        std::snprintf(text, sizeof text, "%d.%d", whole, tenth);
    }
    return text;
}

std::string seconds2msd(std::string_view value) {
    if (value.empty()) {
        return {};
    }
    return seconds2msd(ToNumber(value).value_or(0));
}

}  // namespace zv
