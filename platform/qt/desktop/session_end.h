/// The end of the user's session and the system's requests to end the process, told to onSessionEnd. [control]
#pragma once

namespace zv {

/// Watches from now on, while the event loop runs.
void watchSessionEnd();

}  // namespace zv
