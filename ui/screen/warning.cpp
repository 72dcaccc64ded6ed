#include "ui/screen/warning.h"

#include "model/jingle.h"
#include "startup/guard.h"
#include "startup/settings/bars_settings.h"
#include "startup/settings/display_settings.h"
#include "startup/settings/playing_settings.h"
#include "startup/settings/warning_settings.h"
#include "ui/records/jingle_buttons.h"
#include "ui/screen/digits.h"

namespace zv {

namespace {

constexpr int kBlinkUnit = 10000;  // ms: the interval at a blink rate of 1

}  // namespace

bool BlinkTestOn = false;
bool BlinkPhase = false;

WarnStep WarningFor(double remain, double minDuration, double remainWarn, bool warnAll, bool blinkRuns) {
    const bool near = remain <= remainWarn;
    const bool wanted = near && (warnAll || minDuration > remainWarn);
    if (wanted == blinkRuns) {
        return WarnStep::leave;
    }
    return wanted ? WarnStep::start : WarnStep::stop;
}

int WarnBlinkInterval(int blinkWarn) { return blinkWarn <= 0 ? 0 : kBlinkUnit / blinkWarn; }

void TimerWarnBlinkTick() {
    guarded("frmMain.TimerWarnBlink_Timer", [] {
        if (warningSettings.BlinkWarn == 0) {
            SetDigitsColour(warningSettings.RemainColor);
            return;
        }
        if (warningSettings.BlinkTarget == 1 || warningSettings.BlinkTarget == 2) {
            for (const int i : LiveJingles()) {
                JingleButton* b = Button(i);
                if (b == nullptr) {
                    continue;
                }
                const JingleRecord& j = Jingle(i);
                if (BlinkPhase) {
                    if (barSettings.JRemLevPos != 0) {
                        b->JRemLev.backColor = barSettings.JRemLevCol;
                        if (BlinkTestOn) {
                            b->JRemLev.visible = true;
                        }
                    }
                } else if (barSettings.JRemLevTrBg == 1) {
                    b->JRemLev.backColor = j.PlayingOtherPal ? playingSettings.PlayingColorAnotherPal
                                           : j.Playing       ? playingSettings.PlayingColor
                                                             : j.BackRGB;
                } else {
                    b->JRemLev.backColor =
                        j.PlayingOtherPal ? barSettings.JRemLevColBgPl : barSettings.JRemLevColBg;
                }
            }
        }
        if (warningSettings.BlinkTarget == 0 || warningSettings.BlinkTarget == 2) {
            SetDigitsColour(BlinkPhase ? warningSettings.RemainColor : displaySettings.DispBackCol);
        }
        BlinkPhase = !BlinkPhase;
    });
}

}  // namespace zv
