#include "ui/edit/save_dialogue.h"

#include <string>

#include "model/held_palette.h"
#include "model/palette_files.h"
#include "model/state.h"
#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/marks_settings.h"
#include "startup/settings/minimal_settings.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings_file.h"
#include "ui/edit/colour_picker.h"
#include "ui/edit/palette_list.h"
#include "ui/edit/unsaved.h"
#include "ui/records/armed.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/error_mark.h"
#include "ui/screen/highlight.h"
#include "ui/screen/layout_strip.h"

namespace zv {

namespace {

constexpr int kRename = 2;  // SavePal's mode that renames

bool renaming = false;  // what the dialogue was opened for; saves may come in between

PaletteTab& tab() { return frmMain().palettes; }

bool dialogueOpen() { return tab().btSave.backColor == markSettings.spColor; }

void atRest() {
    PaletteTab& t = tab();
    Disarm(t.btSave);
    t.btDelPal.enabled = true;
    t.btNew.enabled = true;
    t.PalNameCar.visible = false;
    t.txtSave.visible = false;
    t.txtSave.enabled = false;
    if (OptionCode == "sp") {
        OptionCode.clear();
    }
    TabDraw(static_cast<int>(MainTab::palettes));
}

void confirm() {
    const std::string name = Trim(tab().txtSave.caption());
    if (!name.empty()) {
        SaveMode = renaming ? "rename" : "save";
        if (!CloseFile(name)) {
            // The mark says why; the dialogue stays open, nothing counts as saved.
            return;
        }
        paletteSettings.PaletteIndex = CheckSection(name);
        HoldPalette(paletteSettings.PaletteIndex);  // spelt as in the file
        frmMain().display.txtDisPal.caption = paletteSettings.PaletteIndex;
        PalToSave = false;
    }
    SaveMode.clear();
    atRest();
    lstPalRefresh();
    SelectPalette(paletteSettings.PaletteIndex);
    setFocus(tab().lstPal);
}

void open(int mode) {
    PaletteTab& t = tab();
    ResetJingles();
    Arm(t.btSave, markSettings.spColor);
    OptionCode = "sp";
    renaming = mode == kRename;
    SaveMode = renaming ? "rename" : "save";
    t.PalNameCar.caption = Ln(renaming ? "mlblPalNameCarRen" : "mlblPalNameCar");
    t.PalNameCar.visible = true;
    t.btDelPal.enabled = false;
    t.btNew.enabled = false;
    t.txtSave.caption = frmMain().display.txtDisPal.caption();
    t.txtSave.visible = true;
    t.txtSave.enabled = true;
    TabDraw(static_cast<int>(MainTab::palettes));
    setFocus(t.txtSave);
    SelectAllText(t.txtSave);
}

}  // namespace

void SavePal(int mode) {
    guarded("frmMain.SavePal", [&] {
        LastCtrl = "btSave";
        if (minimalSettings.MinimalView == 1) {
            if (frmMain().display.lblErr.visible && !tab().lstPal.text().empty()) {
                SaveHeldPalette();
            }
            return;
        }
        if (dialogueOpen()) {
            confirm();
        } else {
            open(mode);
        }
    });
}

void NotSavePal() {
    guarded("frmMain.NotSavePal", [] {
        if (dialogueOpen()) {
            SaveMode.clear();
            atRest();
        }
    });
}

void txtSave_KeyDown(KeyEvent& event) {
    guarded(".txtSave_KeyDown", [&] {
        if (event.key == Key::enter) {
            event.consumed = true;
            if (dialogueOpen()) {
                confirm();
            }
        } else if (event.key == Key::escape) {
            event.consumed = true;
            NotSavePal();
            setFocus(tab().lstPal);
        }
    });
}

void ErrClick() {
    guarded("frmMain.ErrClick", [] {
        // Another message may have taken the place of the save mark, a failed save too: a click tries again.
        if (!ErrMarkShows("f") && !PalToSave) {
            return;
        }
        if (PaletteLoading()) {
            // The records are those of no palette yet; the mark stays.
            timers().SaveTimer.restart();
            return;
        }
        timers().SaveTimer.stop();
        CloseColorPicker();
        if (HeldPalette().empty()) {
            if (!tab().txtSave.visible) {
                ChangeTab(static_cast<int>(MainTab::palettes));
                SavePal();
            }
        } else if (!SaveHeldPalette()) {
            return;
        }
        // A mark that the save itself has left (a file that was locked) stays.
        if (ErrMarkShows("f")) {
            HideErrMark();
        }
        if (minimalSettings.MinimalView == 1) {
            for (Control& mark : frmMain().display.lblPlayMode) {
                mark.visible = true;
            }
        }
    });
}

void SaveTimerTick() {
    guarded("frmMain.SaveTimer_Timer", [] {
        if (FxOpen) {
            return;
        }
        timers().SaveTimer.stop();
        ErrClick();
    });
}

}  // namespace zv
