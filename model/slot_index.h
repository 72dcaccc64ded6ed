/// Indices from outside: a script, a surface, a file. [any]
#pragma once

#include "model/jingle.h"

namespace zv {

/// Whether there is a record J of that index.
constexpr bool IsSlot(int index) { return index >= 0 && index < kJingles; }

}  // namespace zv
