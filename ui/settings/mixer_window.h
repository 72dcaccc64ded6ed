/// The mixer window "frmMixer": outputs, microphone, talk-over and auto-duck, set while they sound. [control]
#pragma once

namespace zv {

/// Lists the devices that are there and shows the window; it does not hold the main window up.
void OpenMixer();

}  // namespace zv
