/// The window in which the time announcement's sound file is chosen. [control]
#pragma once

namespace zv {

/// Opens it; `failed`: the file could not be played, its name is red.
void OpenAnnouncerSettings(bool failed);

}  // namespace zv
