/// The sound of the edited jingle as a picture in frmFX: its positions as handles, its playhead. The mouse drags handles
/// (with Shift to a zero crossing) and the picture, the wheel zooms, a double click shows all, a click places the
/// playhead. Keys: left and right move the chosen handle, up and down choose one, Page Up and Down zoom, Home shows all.
/// [control]
#pragma once

namespace zv {

/// Handlers of the canvas; once.
void WireWave();
/// A jingle was opened: its outline is read anew unless it is kept.
void OpenWave();
/// The window closes: what is still read is given up.
void CloseWave();
/// Draws what has changed: positions, playhead, size.
void ShowWave();

}  // namespace zv
