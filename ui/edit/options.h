/// The toggles of the options tab and Assign: arming, and what an armed option does to SelJ. [control]
#pragma once

namespace zv {

// Mouse down on the toggles of the fourth tab, and on Assign of the first.
void ckAutoRepI_MouseDown();
void ckTouchI_MouseDown();
void ckPlayStopI_MouseDown();
void ckNoStopI_MouseDown();
void ckColorI_MouseDown();
void ckFXI_MouseDown();
void ckLoopITog();
void CkAssignTog();
void ckTab_MouseDown(int tab);

// The options applied to SelJ.
void clAutoRepSet(int index);
void clTouchSet(int index);
void clPlayStopSet(int index);
void clNoStopSet(int index);
void clLoopSet(int index);
void clSeqSet(int index);

}  // namespace zv
