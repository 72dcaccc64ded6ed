#include "engine/realtime/thread_tags.h"

extern "C" {
/// Defined by the preloaded guard; absent otherwise.
__attribute__((weak)) void rt_guard_enter();
__attribute__((weak)) void rt_guard_leave();
}

namespace zv::engine {
namespace {

thread_local ThreadKind kindNow = ThreadKind::Caller;

void mark(ThreadKind kind) {
    const bool was = kindNow == ThreadKind::Audio, is = kind == ThreadKind::Audio;
    kindNow = kind;
    if (is && !was && rt_guard_enter) rt_guard_enter();
    if (was && !is && rt_guard_leave) rt_guard_leave();
}

}  // namespace

ThreadKind threadKind() { return kindNow; }

ThreadSection::ThreadSection(ThreadKind kind) : before_(kindNow) { mark(kind); }
ThreadSection::~ThreadSection() { mark(before_); }

}  // namespace zv::engine
