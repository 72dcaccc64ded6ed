/// Showing on the screen what changed in the records, and what waits in the toolkit's queue. Stands below the
/// windows: what only they can do is asked through windowUpcalls. [control]
#pragma once

#include <cstdint>

#include "platform/controls.h"

namespace zv::shell {

/// Shows what changed in the records since the last call: sets widgets, marks rectangles for painting. The
/// desktop needs no call (one is queued by the first change of a turn); the rehearsal calls it when it likes.
void flushChanged();
/// Delivers what waits in the toolkit's queue (posted events, painting) without waiting for more.
void deliverEvents();
/// A window, menu or dialog opens: the press that opened it ends there, wherever its release goes.
void noteOpened();
/// How often noteOpened was called.
std::uint64_t openedSoFar();

/// The windows' part in showing changes; filled before the first flush.
struct WindowUpcalls {
    void (*changed)(Control& window) = nullptr;            ///< size, title, visibility, theme
    void (*formChanged)(const Control& record) = nullptr;  ///< a record of a form changed
    void (*advance)(std::int64_t now) = nullptr;           ///< what moves by itself goes on
};
inline WindowUpcalls windowUpcalls;

}  // namespace zv::shell
