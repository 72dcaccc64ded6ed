#include "ui/edit/palette_load.h"

#include <string>

#include "audio/streams.h"
#include "model/held_palette.h"
#include "model/jingle.h"
#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/settings/minimal_settings.h"
#include "startup/settings/palette_settings.h"
#include "ui/edit/leave_palette.h"
#include "ui/edit/selection.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"

namespace zv {

namespace {

constexpr int kLongestWait = 50;  // ticks of TimerLoadPal

}  // namespace

bool PaletteOpening = false;
int PalLoadIdx = 0;

void TimerLoadPalTick() {
    guarded("frmMain.TimerLoadPal_Timer", [] {
        timers().TimerLoadPal.stop();
        if (paletteSettings.PaletteIndex.empty()) {
            return;
        }
        // Events run while OpenFile opens slot by slot: wait for it, or two loads would mix their slots.
        static int waited = 0;
        if (PaletteOpening && waited < kLongestWait) {
            ++waited;
            timers().TimerLoadPal.restart();
            return;
        }
        waited = 0;
        PaletteOpening = false;
        ErrDisp("wait", 0, Ln("errLoadPal"));
        HideSelectors();
        if (minimalSettings.MinimalView == 1) {
            for (Control& mark : frmMain().display.lblPlayMode) {
                mark.visible = true;
            }
        }
        const std::string opening = paletteSettings.PaletteIndex;
        const int load = BeginPaletteLoad(opening);
        // Every slot that has a button, out of the grid too: a save walks them all.
        while (PalLoadIdx < kPaletteSlots) {
            const int i = PalLoadIdx++;
            if (JExists[static_cast<std::size_t>(i)] != 1) {
                continue;
            }
            guarded("frmMain.TimerLoadPal_Timer", [&] {
                openNames(i, opening, false);
                openStreams(i);
            });
            processEvents();
            if (opening != paletteSettings.PaletteIndex || timers().TimerLoadPal.enabled() ||
                !IsNewestLoad(load)) {
                return;  // another palette was chosen meanwhile
            }
        }
        EndPaletteLoad(load, opening);
        PaletteOpened();
    });
}

}  // namespace zv
