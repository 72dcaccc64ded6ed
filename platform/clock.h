/// The program's clocks. The desktop answers with the system's, the rehearsal with virtual ones.
#pragma once

#include <cstdint>

namespace zv {

/// Wall time in the user's zone.
struct WallTime {
    int year = 1970, month = 1, day = 1;  ///< month 1..12, day 1..31
    int weekday = 4;                      ///< 0 Sunday .. 6 Saturday
    int hour = 0, minute = 0, second = 0, millisecond = 0;
};

/// Milliseconds that never go back. [any]
std::int64_t monotonicMs();
/// [any]
WallTime wallTime();
/// Waits on the interface thread while the sound goes on (the rehearsal renders it). [control]
void sleepMs(int ms);

}  // namespace zv
