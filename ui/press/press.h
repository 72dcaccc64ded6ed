/// Everything that a press on a jingle button can mean: the decision order, the options that are armed, the
/// modifier keys. All on the interface thread. [control]
#pragma once

#include <string>

#include "model/jingle.h"
#include "platform/controls.h"

namespace zv {

/// Codes of the armed option; empty for none.
extern std::string OptionCode;     ///< "ass", "ar", "tc", "ps", "ns", "co", "fx", "lp", "sq", "ta", "sp"
extern std::string OptionControl;  ///< "ckAutoRepI", ... or empty
extern int LoopToggleStep;         ///< of ckLoopI: 0 off, 1 loop armed, 2 sequence armed
extern bool SelectorsShown;        ///< the selection boxes are on screen
extern bool SelectorsSuppressed;
extern bool PrevCtrlDown, PrevShiftDown;
extern bool DeletePromptOn;      ///< Alt shows the delete prompt
extern std::string FocusedName;  ///< control that had the focus at the last poll

/// The decision order of a press: the first line that fits acts. The only entry for a press from mouse,
/// keyboard and control surfaces. [control]
void btClic(int index);

// Events of the button array. Each button is independent: several fingers press and release at once.
void b_Jingle_MouseDown(int index, const MouseEvent& event);
void b_Jingle_MouseUp(int index, const MouseEvent& event);
void b_Jingle_KeyDown(int index, KeyEvent& event);
void b_Jingle_OLEDragDrop(int index, const std::string& path);
/// Keyboard and touch form of a press.
void PlayJing(int index);

// Option toggles of the fourth tab, and the assign toggle of the first: mouse down.
void ckAutoRepI_MouseDown();
void ckTouchI_MouseDown();
void ckPlayStopI_MouseDown();
void ckNoStopI_MouseDown();
void ckColorI_MouseDown();
void ckFXI_MouseDown();
void ckLoopITog();
void CkAssignTog();
void ckTab_MouseDown(int tab);

/// Paints every live button: those that fit in the option's colour, the others as faces.
void HighlightButtons(Colour shaded, bool (*fits)(const JingleRecord&));
/// The same for the option that is armed now, in the colours that it has now.
void HighlightArmed();
/// Ends highlighting: every button that does not play gets its colours back. `except` keeps one as it is.
void ResetJingles(int except = -1);
/// Disarms all toggles when a control was in use (LastCtrl).
void ResetOption();
/// True when a toggle's back colour is not the face.
bool Armed(const Control& toggle);
void Arm(Control& toggle, Colour colour);
void Disarm(Control& toggle);

// The options applied to SelJ.
void clAutoRepSet(int index);
void clTouchSet(int index);
void clPlayStopSet(int index);
void clNoStopSet(int index);
void clLoopSet(int index);
void clSeqSet(int index);

/// Stops everything and disarms the announcer and the stream.
void btStop_MouseDown(const MouseEvent& event);
/// Delete on the keyboard.
void DeleteObj();

/// What the display says while modifier keys are held.
enum class ModifierMessage { none, move, copy, rename, remove, removeFile };
ModifierMessage MessageFor(bool ctrl, bool shift, bool alt);
/// Poll of Ctrl, Shift and Alt with its messages on the display.
void TimerKeyModifiersTick();

}  // namespace zv
