/// How another thread gets the interface thread to look at once, without waiting for a timer.
#pragma once

#include <functional>

namespace zv {

/// What the interface thread does when it was woken; one for the program, empty for nothing. [control]
void onWake(std::function<void()> handler);

/// The interface thread runs the handler soon; several calls before it does count as one. Takes no lock and no
/// memory. [any]
void wakeInterface() noexcept;

}  // namespace zv
