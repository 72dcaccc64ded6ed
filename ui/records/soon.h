/// A task for the next turn of the event loop: what opens a question must not do so from within a job's end. [control]
#pragma once

#include <functional>

namespace zv {

/// Runs `task` guarded under `procedure` within some milliseconds, once; not after the window has gone.
void Soon(const char* procedure, std::function<void()> task);

}  // namespace zv
