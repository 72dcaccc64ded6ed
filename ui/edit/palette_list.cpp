// Filling the list of palettes, picking, stepping, creating and deleting.
#include "ui/edit/palette_list.h"

#include <algorithm>
#include <string>
#include <vector>

#include "audio/streams.h"
#include "model/jingle.h"
#include "model/palette_files.h"
#include "model/state.h"
#include "platform/clock.h"
#include "platform/desktop.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings.h"
#include "startup/stores.h"
#include "ui/edit/edit_commands.h"
#include "ui/press/press.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/counter.h"
#include "ui/screen/layout.h"

namespace zv {

bool PaletteOpening = false;
int PalLoadIdx = 0;

namespace {

constexpr int kLongestWait = 50;  // ticks of TimerLoadPal

PaletteTab& tab() { return frmMain().palettes; }

int rows() { return static_cast<int>(tab().lstPal.items().size()); }

void forgetPendingRemovals() {
    tab().lstSection.items = std::vector<std::string>();
    tab().lstJID.items = std::vector<std::string>();
}

bool modifierHeld() { return CtrlDown || ShiftDown || AltDown; }

bool markShows() { return frmMain().display.lblErr.visible; }

/// Slots 0 to 95 become empty.
void clearSlots() {
    for (int i = 0; i < kPaletteSlots; ++i) {
        guarded("modMain.ClearSlots", [&] { ClearButton(i); });
    }
}

/// What choosing another palette does before it is opened.
void leavePalette() {
    if (!markShows()) {
        forgetPendingRemovals();
        PalToSave = false;
    }
    NotSavePal();
}

void openSelected() {
    settings.PaletteIndex = tab().lstPal.text();
    frmMain().display.txtDisPal.caption = settings.PaletteIndex;
    OpenFile(settings.PaletteIndex);
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
        if (settings.LoopLstPal != 1) {
            return false;
        }
        row = row < 0 ? count - 1 : 0;
    }
    list.listIndex = row;
    return true;
}

void stepped() {
    LastCtrl = "lstpal";
    if (!modifierHeld()) {
        forgetPendingRemovals();
    }
    NotSavePal();
    PalToSave = false;
    settings.PaletteIndex = tab().lstPal.text();
    frmMain().display.txtDisPal.caption = settings.PaletteIndex;
    if (settings.CenterLstPal == 1) {
        CentrePaletteList();
    }
    PalLoadIdx = 0;
    timers().TimerLoadPal.restart();
}

void jumpTo(int row) {
    if (rows() == 0) {
        return;
    }
    tab().lstPal.listIndex = std::clamp(row, 0, rows() - 1);
    leavePalette();
    openSelected();
    if (settings.CenterLstPal == 1) {
        CentrePaletteList();
    }
}

bool askDelete(const std::string& name) {
    return messageBox(name + "\r\n" + LnBox("mMsdp"), "Zentrova", BoxKind::question, BoxButtons::yesNo) ==
           BoxAnswer::yes;
}

/// The section goes; the entry before it (or the first) is selected and opened.
void deleteSelected(bool clearFirst) {
    Control& list = tab().lstPal;
    const std::string name = list.text();
    if (name.empty() || !askDelete(name)) {
        return;
    }
    const int row = list.listIndex();
    PaletteStore.DeleteSection(name);
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

/// The list is limited; palettes beyond the limit are in the file all the same. Told once for each number.
void tellOfHidden(int hidden) {
    static int told = 0;
    if (hidden > 0 && hidden != told) {
        ErrDisp("notification", 0, Ln("mPalHidden") + " (" + std::to_string(hidden) + ")");
    }
    told = hidden;
}

}  // namespace

void lstPalRefresh() {
    guarded("modMain.lstPalRefresh", [] {
        lockUpdates();
        Control& list = tab().lstPal;
        if (PalFileTest()) {
            PaletteStore.ListSections();
            std::vector<std::string> names;
            const int count = PaletteStore.SectionCount();
            names.reserve(static_cast<std::size_t>(count));
            for (int i = 0; i < count; ++i) {
                names.push_back(PaletteStore.SectionName(i));
            }
            QuickSort(names);
            list.items = names;
            SelectPalette(SettingsStore.GetValue("PaletteIndex"));
            tellOfHidden(PaletteStore.HiddenSections());
        } else {
            list.items = std::vector<std::string>();
            list.listIndex = -1;
            frmMain().display.txtDisPal.caption = std::string();
            for (int i = 0; i < kPaletteSlots; ++i) {
                openNames(i, "", false);
                openStreams(i);
            }
        }
        unlockUpdates();
        list.touch();
    });
}

void SelectPalette(const std::string& name) {
    const std::vector<std::string>& names = tab().lstPal.items();
    const auto found = std::find(names.begin(), names.end(), name);
    tab().lstPal.listIndex = found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

void CentrePaletteList() {
    Control& list = tab().lstPal;
    if (list.listIndex() >= 0) {
        centreListRow(list, list.listIndex());
    }
}

void lstPal_MouseUp() {
    guarded(".lstPal_MouseUp", [] {
        if (tab().lstPal.text().empty()) {
            return;
        }
        LastCtrl = "lstpal";
        leavePalette();
        ErrDisp("wait", 0, Ln("errLoadPal"));
        HideErrMark();
        openSelected();
        if (settings.CenterLstPal == 1) {
            CentrePaletteList();
        }
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
        if (step(-1)) {
            stepped();
        }
    });
}

void evBtDn() {
    guarded("frmMain.evBtDn", [] {
        if (step(1)) {
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
        evBtDn();
        timers().Timerlstpalbot.restart();
    });
}

void btUpDn_MouseUp() {
    timers().Timerlstpaltop.stop();
    timers().Timerlstpalbot.stop();
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
    if (settings.BringLstPal == 1) {
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
        // The keyboard's state says when the key goes up, even when its release went to another window.
        if (heldPageKey == Key::none || !keyHeld(static_cast<int>(heldPageKey))) {
            StopPageKey();
        } else if (monotonicMs() - heldSince >= kRepeatDelay) {
            heldPageKey == Key::pageUp ? evbtUp() : evBtDn();
        }
    });
}

void TimerLoadPalTick() {
    guarded("frmMain.TimerLoadPal_Timer", [] {
        timers().TimerLoadPal.stop();
        if (settings.PaletteIndex.empty()) {
            return;
        }
        // Events run while a palette is opened slot by slot: two loads must not mix their slots.
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
        if (settings.MinimalView == 1) {
            for (Control& mark : frmMain().display.lblPlayMode) {
                mark.visible = true;
            }
        }
        const std::string opening = settings.PaletteIndex;
        while (PalLoadIdx <= LastPalIdx) {
            const int i = PalLoadIdx++;
            guarded("frmMain.TimerLoadPal_Timer", [&] {
                openNames(i, opening, false);
                openStreams(i);
            });
            processEvents();
            if (opening != settings.PaletteIndex || timers().TimerLoadPal.enabled()) {
                return;  // another palette was chosen meanwhile
            }
        }
        if (ErrMarkShows("h")) {
            HideErrMark();
        }
    });
}

void btNewTog() {
    guarded("frmMain.btNewTog", [] {
        LastCtrl = "btNew";
        if (messageBox(LnBox("mMsclearpal"), "Zentrova", BoxKind::question, BoxButtons::yesNo) !=
            BoxAnswer::yes) {
            return;
        }
        frmMain().display.txtDisPal.caption = std::string();
        tab().txtSave.caption = std::string();
        settings.PaletteIndex.clear();
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
