#include "engine/api/errors.h"

namespace zv::engine {
namespace {
thread_local int threadError = BASS_OK;
}

void setError(int code) { threadError = code; }
int lastError() { return threadError; }

}  // namespace zv::engine
