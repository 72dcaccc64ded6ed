// The tick that asks every channel how it is, paints the buttons and finds the smallest time left.
#include <algorithm>
#include <cmath>
#include <vector>

#include "audio/duck.h"
#include "audio/streams.h"
#include "engine/bass.h"
#include "model/colours.h"
#include "model/jingle.h"
#include "model/state.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/settings.h"
#include "startup/stores.h"
#include "ui/press/press.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/colours.h"
#include "ui/screen/counter.h"

namespace zv {

std::string DispText = "0";
double MinDuration = 0;
bool BlinkTestOn = false;
bool BlinkPhase = false;

namespace {

constexpr double kNoDuration = 99999999;
constexpr double kSpent = 0.1;  // s: less than this counts as at its end
constexpr int kBarMargin = 60;  // twips that a bar is shorter than its button

/// The smaller of two times left; 0 is "nothing yet", or something at its very end, and never wins.
void takeSmaller(double& least, double left) {
    if (left > 0 && (least == 0 || least > left)) {
        least = left;
    }
}

double hundredths(double seconds) { return std::floor(seconds * 100 + 0.5) / 100; }

/// Number field and small field follow the button's colours.
void followColours(JingleButton& b) {
    const Colour back = b.b_Jingle.backColor;
    const Colour fore = b.b_Jingle.foreColor;
    b.picPlaylist.backColor = back;
    b.picbtnumber.backColor = back;
    b.lblPlaylist.foreColor = fore;
    b.lblbtnumber.foreColor = fore;
}

void silentButton(int i, JingleButton& b) {
    if (BlinkTestOn) {
        b.JRemLev.width = b.b_Jingle.width() - kBarMargin;
    } else {
        b.JRemLev.visible = false;
        b.JremBG.visible = false;
    }
    Colour back = 0;
    Colour fore = 0;
    RestColours(i, back, fore);
    if (!SelectorsOn && (b.b_Jingle.backColor != back || b.b_Jingle.foreColor != fore)) {
        b.b_Jingle.backColor = back;
        b.b_Jingle.foreColor = fore;
    }
    b.lp_Jingle.foreColor = Shaded.lp;
    b.sq_Jingle.foreColor = Shaded.sq;
    b.fx_Jingle.foreColor = Shaded.fx;
    followColours(b);
    ShowState(i, false);
}

void silentRecord(int i) {
    JingleRecord& j = Jingle(i);
    j.State = PlayState::idle;
    j.Playing = false;
    if (j.hPlay != 0) {
        BASS_FXReset(j.hPlay);
    }
    if (j.PlayingOtherPal) {
        j.PlayingOtherPal = false;
        const bool hot = i >= kPaletteSlots;
        openNames(i, hot ? kHotSection : settings.PaletteIndex, hot);
        openStreams(i);
    }
}

/// Paints a sounding button and its bar; returns its time left in seconds.
double soundingButton(int i, JingleButton& b, DWORD active) {
    const JingleRecord& j = Jingle(i);
    if (active == BASS_ACTIVE_PLAYING && b.b_Jingle.backColor != settings.PlayingColor && !SelectorsOn) {
        if (j.PlayingOtherPal) {
            b.b_Jingle.backColor = settings.PlayingColorAnotherPal;
            b.b_Jingle.foreColor = GetForeColor(settings.PlayingColorAnotherPal, "");
        } else {
            b.b_Jingle.backColor = settings.PlayingColor;
            b.b_Jingle.foreColor = settings.PlayingFColor;
        }
    }
    followColours(b);
    ShowState(i, true);

    const auto length = static_cast<double>(BASS_ChannelGetLength(j.hPlay, BASS_POS_BYTE));
    const auto position = static_cast<double>(BASS_ChannelGetPosition(j.hPlay, BASS_POS_BYTE));
    const auto seconds = [&](double bytes) {
        return BASS_ChannelBytes2Seconds(j.hPlay, static_cast<QWORD>(std::max(0.0, bytes)));
    };
    const double duration = seconds(length - j.CueStart - j.EndOffset);
    MinDuration = std::min(MinDuration, duration);
    double left = hundredths(seconds(length - position - j.EndOffset));
    if (left < kSpent) {
        left = 0;
    }
    if (!BlinkTestOn && left > settings.RemainWarn) {
        b.JRemLev.backColor = settings.JRemLevCol;
    }
    const int full = b.b_Jingle.width() - kBarMargin;
    const double share = duration > 0 ? std::min(1.0, left / duration) : 0;
    b.JRemLev.width = std::abs(GetMultipleOf(static_cast<int>(full * share), kTwipsPerPixel));
    return left;
}

/// Bars that had just blinked away.
void showBars() {
    for (const int i : LiveJingles()) {
        if (JingleButton* b = Button(i)) {
            b->JRemLev.backColor = settings.JRemLevCol;
        }
    }
}

void warn() {
    Timer& blink = timers().TimerWarnBlink;
    switch (
        WarningFor(DispRemain, MinDuration, settings.RemainWarn, settings.WarnAllJ == 1, blink.enabled())) {
        case WarnStep::start:
            blink.setInterval(WarnBlinkInterval(settings.BlinkWarn));
            blink.restart();
            SetDigitsColour(settings.RemainColor);
            break;
        case WarnStep::stop:
            blink.stop();
            SetDigitsColour(settings.CountDownColor);
            showBars();
            break;
        case WarnStep::leave:
            break;
    }
}

}  // namespace

WarnStep WarningFor(double remain, double minDuration, double remainWarn, bool warnAll, bool blinkRuns) {
    const bool near = remain <= remainWarn;
    const bool wanted = near && (warnAll || minDuration > remainWarn);
    if (wanted == blinkRuns) {
        return WarnStep::leave;
    }
    return wanted ? WarnStep::start : WarnStep::stop;
}

void TimerDispAndJButtonsTick() {
    guarded("frmMain.TimerDispAndJButtons_Timer", [] {
        double least = 0;
        MinDuration = kNoDuration;
        DuckTickBegin();
        const int last = LastLiveIdx();
        for (int i = 0; i <= last; ++i) {
            if (JExists[static_cast<std::size_t>(i)] != 1 || Button(i) == nullptr || IsSearchHit(i)) {
                continue;
            }
            guarded("frmMain.TimerDispAndJButtons_Timer", [&] {
                DispLoopIdx = i;
                JingleButton& b = *Button(i);
                const JingleRecord& j = Jingle(i);
                const DWORD active = j.hPlay == 0 ? BASS_ACTIVE_STOPPED : BASS_ChannelIsActive(j.hPlay);
                if (active == BASS_ACTIVE_STOPPED) {
                    silentButton(i, b);
                    silentRecord(i);
                    return;
                }
                const double left = soundingButton(i, b, active);
                takeSmaller(least, left);
                DuckTickJingle(i, left);
            });
        }
        DispRemain = least;
        if (BlinkTestOn) {
            timers().TimerWarnBlink.start();
        } else {
            if (DispRemain > 0) {
                warn();
            }
            DispText = DispRemain < kSpent ? "0" : NumberText(DispRemain);
            ShowRemain();
        }
        DuckTickEnd();
    });
}

}  // namespace zv
