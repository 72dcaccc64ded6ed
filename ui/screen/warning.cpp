#include "ui/screen/warning.h"

#include "model/jingle.h"
#include "startup/guard.h"
#include "startup/settings.h"
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

}  // namespace zv
