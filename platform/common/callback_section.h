/// Marks a stretch of a driver's callback for the guard that may be preloaded (tools/rt_guard): it takes no memory,
/// no lock and no file there.
#pragma once

extern "C" {
/// Defined by the preloaded guard; absent otherwise.
__attribute__((weak)) void rt_guard_enter();
__attribute__((weak)) void rt_guard_leave();
}

namespace zv {

class CallbackSection {
  public:
    CallbackSection() {
        if (rt_guard_enter) rt_guard_enter();
    }
    ~CallbackSection() {
        if (rt_guard_leave) rt_guard_leave();
    }
    CallbackSection(const CallbackSection&) = delete;
    CallbackSection& operator=(const CallbackSection&) = delete;
};

}  // namespace zv
