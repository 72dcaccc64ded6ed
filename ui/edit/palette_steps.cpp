#include "ui/edit/palette_steps.h"

#include <algorithm>
#include <cstdint>
#include <string>

#include "audio/open_palette.h"
#include "midi/feedback.h"
#include "model/held_palette.h"
#include "model/jingle.h"
#include "model/palette_files.h"
#include "model/pending_removals.h"
#include "model/state.h"
#include "platform/clock.h"
#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/palette_list_settings.h"
#include "startup/settings/palette_settings.h"
#include "ui/edit/leave_palette.h"
#include "ui/edit/options.h"
#include "ui/edit/palette_list.h"
#include "ui/edit/palette_load.h"
#include "ui/edit/remove.h"
#include "ui/edit/save_dialogue.h"
#include "ui/edit/search.h"
#include "ui/records/armed.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/error_mark.h"
#include "ui/screen/layout_strip.h"

namespace zv {

namespace {

PaletteTab& tab() { return frmMain().palettes; }

int rows() { return static_cast<int>(tab().lstPal.items().size()); }

/// Slots 0 to 95 become empty.
void clearSlots() {
    for (int i = 0; i < kPaletteSlots; ++i) {
        guarded("modMain.ClearSlots", [&] { ClearButton(i); });
    }
}

void openSelected() {
    paletteSettings.PaletteIndex = tab().lstPal.text();
    OpenFile(paletteSettings.PaletteIndex);
}

/// Steps the selection; true when it moved or wrapped.
bool step(int by) {
    Control& list = tab().lstPal;
    const int count = rows();
    if (count == 0) {
        return false;
    }
    int row = list.listIndex() < 0 ? (by > 0 ? 0 : count - 1) : list.listIndex() + by;
    if (row < 0 || row >= count) {
        if (paletteListSettings.LoopLstPal != 1) {
            return false;
        }
        row = row < 0 ? count - 1 : 0;
    }
    list.listIndex = row;
    return true;
}

void stepped() {
    StopSearchBlinking();
    LastCtrl = "lstpal";
    NotSavePal();
    paletteSettings.PaletteIndex = tab().lstPal.text();
    frmMain().display.txtDisPal.caption = paletteSettings.PaletteIndex;
    if (paletteListSettings.CenterLstPal == 1) {
        CentrePaletteList();
    }
    PalLoadIdx = 0;
    timers().TimerLoadPal.restart();
}

void jumpTo(int row) {
    if (rows() == 0) {
        return;
    }
    StopSearchBlinking();
    tab().lstPal.listIndex = row;
    NotSavePal();
    openSelected();
}

bool askDelete(const std::string& name) {
    return messageBox(name + "\r\n" + LnBox("mMsdp"), "Zentrova", BoxKind::question, BoxButtons::yesNo,
                      Verbs("vbDelete", "vbKeep", true)) == BoxAnswer::yes;
}

/// The section goes; the entry before it (or the first) is selected and opened.
void deleteSelected(bool clearFirst) {
    Control& list = tab().lstPal;
    const std::string name = list.text();
    if (name.empty() || !askDelete(name)) {
        return;
    }
    const int row = list.listIndex();
    if (SameText(name, HeldPalette())) {
        timers().SaveTimer.stop();
        DropRemovalsInto(name);
        HoldPalette("");
    } else {
        LeavePalette();
    }
    DeletePalette(name);
    if (clearFirst) {
        if (Armed(tab().ckAssign)) {
            CkAssignTog();
        }
        clearSlots();
    }
    lstPalRefresh();
    list.listIndex = rows() == 0 ? -1 : std::max(0, std::min(row - 1, rows() - 1));
    if (rows() > 0) {
        openSelected();
    } else {
        frmMain().display.txtDisPal.caption = std::string();
        if (!clearFirst) {
            clearSlots();
        }
    }
}

}  // namespace

void lstPal_MouseUp() {
    guarded(".lstPal_MouseUp", [] {
        if (tab().lstPal.text().empty()) {
            return;
        }
        LastCtrl = "lstpal";
        StopSearchBlinking();
        NotSavePal();
        ErrDisp("wait", 0, Ln("errLoadPal"));
        HideErrMark();
        openSelected();
    });
}

void lstpal_KeyDown(KeyEvent& event) {
    if (event.key == Key::pageUp || event.key == Key::pageDown || event.key == Key::del) {
        event.consumed = true;
    } else if (event.key == Key::enter && !event.repeat) {
        event.consumed = true;
        lstPal_MouseUp();  // the keyboard's way to open what is selected
    }
}

void evbtUp() {
    guarded("frmMain.evbtUp", [] {
        if (!MIDILearnActive && step(-1)) {
            stepped();
        }
    });
}

void evBtDn() {
    guarded("frmMain.evBtDn", [] {
        if (!MIDILearnActive && step(1)) {
            stepped();
        }
    });
}

void btUp_MouseDown(const MouseEvent& event) {
    guarded(".btUp_MouseDown", [&] {
        if (event.button != MouseButton::left) {
            return;
        }
        LastCtrl = "btUp";
        LampOfKey(LampKey::up, true);
        evbtUp();
        timers().Timerlstpaltop.restart();
    });
}

void btDn_MouseDown(const MouseEvent& event) {
    guarded(".btDn_MouseDown", [&] {
        if (event.button != MouseButton::left) {
            return;
        }
        LastCtrl = "btDn";
        LampOfKey(LampKey::down, true);
        evBtDn();
        timers().Timerlstpalbot.restart();
    });
}

void btUpDn_MouseUp(const MouseEvent& event, bool up) {
    timers().Timerlstpaltop.stop();
    timers().Timerlstpalbot.stop();
    if (event.button == MouseButton::left) {
        LampOfKey(up ? LampKey::up : LampKey::down, false);
    }
}

void TimerlstpalbotTick() {
    guarded("frmMain.Timerlstpalbot_Timer", [] {
        timers().Timerlstpalbot.stop();
        jumpTo(rows() - 1);
    });
}

void TimerlstpaltopTick() {
    guarded("frmMain.Timerlstpaltop_Timer", [] {
        timers().Timerlstpaltop.stop();
        jumpTo(0);
    });
}

namespace {
constexpr std::int64_t kRepeatDelay = 400;  // ms until a held key begins to run through the list
Key heldPageKey = Key::none;
std::int64_t heldSince = 0;
}  // namespace

void StartPageKey(Key key) {
    const bool up = key == Key::pageUp;
    if (paletteListSettings.BringLstPal == 1) {
        ChangeTab(static_cast<int>(MainTab::palettes));  // first: what is hidden takes no focus
    }
    setFocus(up ? tab().btUp : tab().btDn);
    if (!tab().lstPal.enabled || heldPageKey == key) {
        return;
    }
    heldPageKey = key;
    heldSince = monotonicMs();
    timers().TimerPgUpDnPalLst.restart();
    up ? evbtUp() : evBtDn();
}

void StopPageKey() {
    heldPageKey = Key::none;
    timers().TimerPgUpDnPalLst.stop();
}

void TimerPgUpDnPalLstTick() {
    guarded("frmMain.TimerPgUpDnPalLst_Timer", [] {
        // Polls the keyboard: the release of the key may have gone to another window.
        if (heldPageKey == Key::none || !keyHeld(static_cast<int>(heldPageKey))) {
            StopPageKey();
        } else if (monotonicMs() - heldSince >= kRepeatDelay) {
            heldPageKey == Key::pageUp ? evbtUp() : evBtDn();
        }
    });
}

void btNewTog() {
    guarded("frmMain.btNewTog", [] {
        LastCtrl = "btNew";
        if (messageBox(LnBox("mMsclearpal"), "Zentrova", BoxKind::question, BoxButtons::yesNo,
                       Verbs("vbNewPalette", "mCancel", true)) != BoxAnswer::yes) {
            return;
        }
        LeavePalette();
        frmMain().display.txtDisPal.caption = std::string();
        tab().txtSave.caption = std::string();
        paletteSettings.PaletteIndex.clear();
        HoldPalette("");
        clearSlots();
        tab().lstPal.listIndex = -1;
    });
}

void btDelpal_MouseUp() {
    guarded("frmMain.btDelpal_MouseUp", [] {
        LastCtrl = "btDelpal";
        deleteSelected(true);
    });
}

void lstpaldel() {
    guarded("frmMain.lstpaldel", [] {
        if (LastCtrl.find("b_Jingle") == std::string::npos) {
            deleteSelected(false);
        }
    });
}

}  // namespace zv
