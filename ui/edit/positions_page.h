/// The second page of frmFX: start, stop, loop, fade. Times go through the fields; what a field says goes to the nearest
/// place that its point may have. [control]
#pragma once

namespace zv {

/// Points of a jingle that can be moved.
enum class CuePoint { start, stop, loopIn, loopOut };

/// Handlers of the page's controls; once.
void WirePositionsPage();
/// The record's positions in all fields and sliders.
void ShowPositions();
/// Start, stop and fade as they are without any; the loop stays.
void ResetPositions();
/// Moves a point as its fields would, to the nearest place that it may have.
void MovePoint(CuePoint point, double seconds);
/// optStartEnd chooses what the position's fields are: the start, or the stop.
void optStartEnd_Click(int which);

void checktimecue();
void checktimeLI();
void checktimeLO();
/// The fade at StopPos, which is read from its fields; with `clear` none, and StopPos is the end.
void SetEndSync(bool clear);
void UpdateLoopDuration();

}  // namespace zv
