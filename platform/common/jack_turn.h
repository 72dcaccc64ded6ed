/// The turn of those who open and close clients of JACK: its library's own state is not safe from two threads that do.
#pragma once

#include <mutex>

namespace zv {

/// The caller's until the lock goes. Empty after 300 ms: another's call hangs with its server. Whoever holds it asks
/// for no second one. [any]
std::unique_lock<std::timed_mutex> jackTurn();

}  // namespace zv
