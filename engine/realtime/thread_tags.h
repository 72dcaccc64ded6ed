/// Which kind of thread runs: asserted in debug builds. The callback's rule book (no lock that others hold,
/// no allocation, no file, no exception) is checked from outside by a guard that may be preloaded.
#pragma once

#include <cassert>

#include "engine/dsp/denormals.h"

namespace zv::engine {

/// True inside a device callback (or whoever renders in its place). [any]
bool onAudioThread();
inline void assertAudioThread() { assert(onAudioThread()); }
inline void assertNotAudioThread() { assert(!onAudioThread()); }

/// Stands at the render root: marks the thread, tells the guard, flushes denormals to zero.
class AudioSection {
  public:
    AudioSection();
    ~AudioSection();
    AudioSection(const AudioSection&) = delete;
    AudioSection& operator=(const AudioSection&) = delete;

  private:
    FlushToZero flush_;
    bool before_;
};

/// Steps out of an AudioSection for work that only an offline render may do in it: waiting for a decoder.
class AudioPause {
  public:
    AudioPause();
    ~AudioPause();
    AudioPause(const AudioPause&) = delete;
    AudioPause& operator=(const AudioPause&) = delete;

  private:
    bool before_;
};

}  // namespace zv::engine
