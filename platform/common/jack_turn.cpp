#include "platform/common/jack_turn.h"

#include <chrono>

namespace zv {

std::unique_lock<std::timed_mutex> jackTurn() {
    constexpr std::chrono::milliseconds limit{300};
    static std::timed_mutex library;
    return std::unique_lock(library, limit);
}

}  // namespace zv
