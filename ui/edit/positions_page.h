/// The second page of frmFX: start, stop, loop, fade. Times go through the fields; what a field says goes to the nearest
/// place that its point may have. [control]
#pragma once

#include "audio/cue_points.h"

namespace zv {

/// Handlers of the page's controls; once.
void WirePositionsPage();
/// The record's positions in all fields and sliders.
void ShowPositions();
/// Takes start, stop and fade away; the loop stays.
void ResetPositions();
/// The texts that depend on what optStartEnd chose, in the language of the settings.
void ShowPositionTexts();
/// Brings the record's positions into the sound, which may have become shorter. True when one of them moved.
bool HoldPositions();
/// Moves a point as its fields would, but not to whole hundredths: to the nearest place that it may have.
void MovePoint(CuePoint point, double seconds);
/// optStartEnd chooses what the position's fields are: the start, or the stop.
void optStartEnd_Click(int which);

void checktimecue();
void checktimeLI();
void checktimeLO();
/// StopPos, in bytes, and the fade there; 0 is the end, without one.
void SetEndSync(double stop);
void UpdateLoopDuration();

}  // namespace zv
