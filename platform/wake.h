/// How another thread gets the interface thread to look at once, without waiting for a timer.
#pragma once

#include <functional>

namespace zv {

/// What the interface thread does when it was woken; one for the program, empty for nothing. [control]
void onWake(std::function<void()> handler);

/// The interface thread runs the handler soon; several calls before it does count as one. Takes no lock and no
/// memory. [any]
void wakeInterface() noexcept;

/// What the interface thread does when the system asks the program to end: a signal (TERM, INT, HUP), as at the
/// end of the session. The desktop answers; a rehearsal is never asked. [control]
void onEndAsked(std::function<void()> handler);

}  // namespace zv
