#include "ui/screen/flashing.h"

#include <string>
#include <utility>

#include "audio/sounding.h"
#include "model/jingle.h"
#include "platform/controls.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/settings/clock_settings.h"
#include "startup/settings/display_settings.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/screen/button_faces.h"
#include "ui/screen/error_mark.h"
#include "ui/screen/shaded.h"

namespace zv {

namespace {

constexpr int kMostFlashes = 20;

}  // namespace

bool FadePhase = false, FlashPhase = false;

void TimerFadeOutLEDTick() {
    guarded("frmMain.TimerFadeOutLED_Timer", [] {
        FadePhase = !FadePhase;
        for (const int i : LiveJingles()) {
            const JingleRecord& j = Jingle(i);
            if (j.State != PlayState::stopping || j.hSrc == 0) {
                continue;
            }
            Colour lp = Shaded.lp, sq = Shaded.sq, fx = Shaded.fx;
            if (!FadePhase) {
                if (j.LoopFadeOut != 0) {
                    std::swap(lp, sq);
                } else {
                    lp = sq = 0;
                    if (j.Loop == 0) {
                        fx = 0;
                    }
                }
            }
            PaintMarks(i, lp, sq, fx);
        }
    });
}

void TimerControlFlashTick() {
    guarded("frmMain.TimerControlFlash_Timer", [] {
        FlashPhase = !FlashPhase;
        for (const int i : LiveJingles()) {
            JingleButton* b = Button(i);
            const JingleRecord& j = Jingle(i);
            if (b == nullptr || j.hSrc == 0 || j.Seq == 0 || j.State == PlayState::stopping || !Plays(i)) {
                continue;
            }
            b->sq_Jingle.foreColor = InLoop(i) && FlashPhase ? Shaded.lp : Shaded.sq;
        }
        Control& mark = frmMain().display.lblErr;
        if (ErrOneShot == 0) {
            return;
        }
        mark.foreColor = FlashPhase ? displaySettings.DispBackCol : clockSettings.DateTimeColor;
        if (++ErrBlinkCount > kMostFlashes) {
            ErrOneShot = 0;
            mark.foreColor = clockSettings.DateTimeColor;
            // What failed or waits to be saved stays until it is mended.
            if (mark.visible && !ErrMarkShows("h") && !ErrMarkShows("x") && !ErrMarkShows("f")) {
                mark.caption = std::string();
                mark.visible = false;
            }
        }
    });
}

}  // namespace zv
