#include "ui/edit/leave_palette.h"

#include <string>

#include "model/after_sound.h"
#include "model/held_palette.h"
#include "model/palette_files.h"
#include "model/pending_removals.h"
#include "model/state.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/settings/palette_settings.h"
#include "startup/stores.h"
#include "ui/edit/jingle_editor.h"
#include "ui/edit/palette_list.h"
#include "ui/edit/undo.h"
#include "ui/edit/unsaved.h"
#include "ui/records/timers.h"
#include "ui/screen/error_mark.h"

namespace zv {

namespace {

std::string untold;        ///< name of the palette whose last edits could not be saved
bool leftUnsaved = false;  ///< a palette was left with unsaved edits, which may be the hot jingles'

}  // namespace

void LeavePalette() {
    guarded("frmMain.LeavePalette", [] {
        OKfx();  // what it edits belongs to the palette that is left
        timers().SaveTimer.stop();
        if (PalToSave && paletteSettings.AutoSave == 1 && !HeldPalette().empty()) {
            if (!SaveHeldPalette()) {
                untold = HeldPalette();
            }
        }
        if (PalToSave) {
            KeepUnsavedPalette();
            leftUnsaved = true;
        }
        DropRemovalsInto(HeldPalette());
        DropAfterSoundOfPalette();
        ForgetUndo();
        PalToSave = false;
    });
}

void LeaveForGood() {
    LeavePalette();
    if (leftUnsaved) {
        KeepUnsavedHotJingles();
    }
}

void PaletteOpened() {
    if (ErrMarkShows("h")) {
        HideErrMark();
    }
    if (!untold.empty()) {
        ErrDisp("no", 1, Ln("mSaveFailed") + " " + PalFile + ": " + untold);
        untold.clear();
    } else if (PaletteStore.Away()) {
        ErrDisp("no", 1, Ln("mPalAway"));
    } else {
        TellHiddenPalettes(true);
    }
}

}  // namespace zv
