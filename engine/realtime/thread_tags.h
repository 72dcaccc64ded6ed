/// Which kind of thread runs: the tags [audio], [worker] and [control] are asserted in debug builds where a call
/// enters its thread's code. The callback's rule book (no lock that others hold, no allocation, no file, no
/// exception) is checked from outside by a guard that may be preloaded.
#pragma once

#include <cassert>
#include <cstdint>

#include "engine/dsp/denormals.h"

namespace zv::engine {

enum class ThreadKind : std::uint8_t {
    Caller,  ///< the program's own threads: [control]
    Audio,   ///< a device callback, or whoever renders in its place: [audio]
    Worker,  ///< decodes, stretches, reads the network: [worker]
    Sync,    ///< the sync dispatcher: [sync]
};

/// What the calling thread does now. [any]
ThreadKind threadKind();

inline void assertAudioThread() { assert(threadKind() == ThreadKind::Audio); }
/// For [any], [worker] and [control] alike.
inline void assertNotAudioThread() { assert(threadKind() != ThreadKind::Audio); }
/// For what may take long or waits for workers and dispatcher.
inline void assertControlThread() { assert(threadKind() == ThreadKind::Caller); }

/// Stands at the root of a thread's code, or of a stretch of it, and marks the thread.
class ThreadSection {
  public:
    explicit ThreadSection(ThreadKind kind);
    ~ThreadSection();
    ThreadSection(const ThreadSection&) = delete;
    ThreadSection& operator=(const ThreadSection&) = delete;

  private:
    ThreadKind before_;
};

/// Stands at the render root: marks the thread, tells the guard, flushes denormals to zero.
class AudioSection {
  private:
    FlushToZero flush_;
    ThreadSection mark_{ThreadKind::Audio};
};

/// Steps out of an AudioSection for work that only an offline render may do in it: waiting for a decoder.
class AudioPause {
  private:
    ThreadSection mark_{ThreadKind::Caller};
};

}  // namespace zv::engine
