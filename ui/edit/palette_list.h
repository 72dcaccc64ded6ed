/// The list of palettes and the dialogue that names one. [control]
#pragma once

#include <string>

#include "platform/controls.h"

namespace zv {

extern bool PaletteOpening;  ///< OpenFile is under way: what steps through the list waits for it
extern int PalLoadIdx;       ///< next slot that TimerLoadPal opens

void lstPalRefresh();
/// Selects the entry of that name; none when it is missing.
void SelectPalette(const std::string& name);
void CentrePaletteList();

void lstPal_MouseUp();
void lstpal_KeyDown(KeyEvent& event);
void evbtUp();
void evBtDn();
void btUp_MouseDown(const MouseEvent& event);
void btDn_MouseDown(const MouseEvent& event);
void btUpDn_MouseUp();
void TimerLoadPalTick();
void TimerlstpalbotTick();
void TimerlstpaltopTick();
void TimerPgUpDnPalLstTick();
/// Page Up and Page Down held: the key that repeats.
void StartPageKey(Key key);
void StopPageKey();

void btNewTog();
void btDelpal_MouseUp();
void lstpaldel();

/// Marks the palette as changed: the message "mPalToSave" in the mode "save".
void MarkPalToSave();
/// Opens the naming dialogue, or confirms it when it is open. `mode` 2 renames, any other saves.
void SavePal(int mode = 0);
void NotSavePal();
/// A click on the mark of the display.
void ErrClick();
void txtSave_KeyDown(KeyEvent& event);
void SaveTimerTick();

}  // namespace zv
