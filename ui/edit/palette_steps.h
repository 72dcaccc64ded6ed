/// Picking, stepping, creating and deleting palettes. [control]
#pragma once

#include "platform/controls.h"

namespace zv {

void lstPal_MouseUp();
void lstpal_KeyDown(KeyEvent& event);
void evbtUp();
void evBtDn();
void btUp_MouseDown(const MouseEvent& event);
void btDn_MouseDown(const MouseEvent& event);
void btUpDn_MouseUp(const MouseEvent& event, bool up);
void TimerlstpalbotTick();
void TimerlstpaltopTick();
/// Page Up and Page Down held: the key that repeats.
void StartPageKey(Key key);
void StopPageKey();
void TimerPgUpDnPalLstTick();

void btNewTog();
void btDelpal_MouseUp();
/// Delete on the keyboard: the selected palette, after a question.
void lstpaldel();

}  // namespace zv
