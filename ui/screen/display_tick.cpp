#include "ui/screen/display_tick.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "audio/announcer.h"
#include "audio/devices.h"
#include "audio/duck.h"
#include "audio/sounding.h"
#include "audio/time_jingle.h"
#include "midi/feedback.h"
#include "model/colours.h"
#include "model/jingle.h"
#include "model/state.h"
#include "platform/controls.h"
#include "platform/timers.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/settings/bars_settings.h"
#include "startup/settings/display_settings.h"
#include "startup/settings/labels_settings.h"
#include "startup/settings/playing_settings.h"
#include "startup/settings/warning_settings.h"
#include "ui/records/armed.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/announcer_view.h"
#include "ui/screen/button_faces.h"
#include "ui/screen/captions.h"
#include "ui/screen/counter.h"
#include "ui/screen/digits.h"
#include "ui/screen/quiet_line.h"
#include "ui/screen/shaded.h"
#include "ui/screen/warning.h"

namespace zv {

double MinDuration = 0;

namespace {

constexpr double kNoDuration = 99999999;
constexpr double kSpent = 0.1;  // s: less than this counts as at its end
constexpr int kBarMargin = 60;  // twips that a bar is shorter than its button

/// Keeps the smaller of two times left. 0 means none yet, or a jingle at its end, and is ignored.
void takeSmaller(double& least, double left) {
    if (left > 0 && (least == 0 || least > left)) {
        least = left;
    }
}

void silentButton(int i, JingleButton& b) {
    if (BlinkTestOn) {
        b.JRemLev.width = b.b_Jingle.width() - kBarMargin;
    } else {
        b.JRemLev.visible = false;
        b.JremBG.visible = false;
    }
    const auto [back, fore] = RestColours(i);
    if (!SelectorsOn && (b.b_Jingle.backColor != back || b.b_Jingle.foreColor != fore)) {
        PaintButton(i, back, fore);
        if (Jingle(i).Pressed == 0 && !Jingle(i).MissingFile) {
            SlotEnded(i);
        }
    } else if (!SelectorsOn && Jingle(i).Pressed == 0) {
        SlotSilent(i);
    }
    PaintMarks(i, Shaded.lp, Shaded.sq, Shaded.fx);
    ShowState(i, false);
}

/// Time left as a button shows it: tenths in the last ten seconds only, whole seconds before.
std::string timeLeftText(double seconds) {
    constexpr double kWithTenths = 10;
    const std::string text = seconds2msd(seconds);
    return seconds < kWithTenths ? text : text.substr(0, text.find('.'));
}

/// Paints a sounding button and its bar; returns its time left in seconds.
double soundingButton(int i, JingleButton& b) {
    const JingleRecord& j = Jingle(i);
    const Colour playing =
        j.PlayingOtherPal ? playingSettings.PlayingColorAnotherPal : playingSettings.PlayingColor;
    if (b.b_Jingle.backColor != playing && Plays(i)) {
        PaintButton(i, playing,
                    j.PlayingOtherPal ? GetForeColor(playing, "") : playingSettings.PlayingFColor);
        b.b_Jingle.borderColor = kNoColour;
    }
    ShowState(i, true);

    const PlayTime time = PlayTimeOf(i);
    MinDuration = std::min(MinDuration, time.duration);
    if (!BlinkTestOn && time.left > warningSettings.RemainWarn) {
        b.JRemLev.backColor = barSettings.JRemLevCol;
    }
    const int full = b.b_Jingle.width() - kBarMargin;
    const double share = time.duration > 0 ? std::min(1.0, time.left / time.duration) : 0;
    b.JRemLev.width = std::abs(GetMultipleOf(static_cast<int>(full * share), kTwipsPerPixel));
    b.JRemLev.caption = labelSettings.JDispDuration == 1 ? timeLeftText(time.left) : std::string();
    return time.left;
}

/// Gives all bars their colour back, those that the blink had just hidden too.
void showBars() {
    for (const int i : LiveJingles()) {
        if (JingleButton* b = Button(i)) {
            b->JRemLev.backColor = barSettings.JRemLevCol;
        }
    }
}

void warn() {
    Timer& blink = timers().TimerWarnBlink;
    switch (WarningFor(DispRemain, MinDuration, warningSettings.RemainWarn, warningSettings.WarnAllJ == 1,
                       blink.enabled())) {
        case WarnStep::start:
            blink.setInterval(WarnBlinkInterval(warningSettings.BlinkWarn));
            blink.restart();
            SetDigitsColour(warningSettings.RemainColor);
            break;
        case WarnStep::stop:
            blink.stop();
            SetDigitsColour(displaySettings.CountDownColor);
            showBars();
            break;
        case WarnStep::leave:
            break;
    }
}

}  // namespace

void TimerDispAndJButtonsTick() {
    guarded("frmMain.TimerDispAndJButtons_Timer", [] {
        double least = 0;
        MinDuration = kNoDuration;
        DuckTickBegin();
        const int last = LastLiveIdx();
        for (int i = 0; i <= last; ++i) {
            if (JExists[static_cast<std::size_t>(i)] != 1 || Button(i) == nullptr ||
                (IsSearchHit(i) && !Jingle(i).Playing)) {
                continue;
            }
            guarded("frmMain.TimerDispAndJButtons_Timer", [&] {
                DispLoopIdx = i;
                JingleButton& b = *Button(i);
                if (!Sounds(i)) {
                    silentButton(i, b);
                    PlayEnded(i);
                    return;
                }
                const double left = soundingButton(i, b);
                takeSmaller(least, left);
                DuckTickJingle(i, left);
            });
        }
        for (const double left : {TimeLeftOf(hTmAnVoice), TimeJingleLeft()}) {
            if (left > 0) {
                takeSmaller(least, left);
                DuckTickAnnouncer(left);
            }
        }
        if (WatchAnnouncer()) {
            ShowAnnouncer();
        }
        HighlightTimeJingles();
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
        DuckTickEnd(!Armed(frmMain().live.ckMixByTa));
        ShowWhyQuiet();
    });
}

}  // namespace zv
