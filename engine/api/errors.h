/// Result codes of the operations, one a thread.
#pragma once

#include <concepts>

#include "engine/bass.h"

namespace zv::engine {

/// Leaves `code` for BASS_ErrorGetCode of this thread. [any]
void setError(int code);
int lastError();

/// Leaves `code` and returns `result`: `return fail(BASS_ERROR_HANDLE, false);`
template <typename T>
T fail(std::same_as<int> auto code, T result) {
    setError(code);
    return result;
}
/// Leaves success and returns `result`.
template <typename T>
T succeed(T result) {
    setError(BASS_OK);
    return result;
}

}  // namespace zv::engine
