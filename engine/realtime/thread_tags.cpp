#include "engine/realtime/thread_tags.h"

extern "C" {
/// Defined by the preloaded guard; absent otherwise.
__attribute__((weak)) void rt_guard_enter();
__attribute__((weak)) void rt_guard_leave();
}

namespace zv::engine {
namespace {

thread_local bool audioThread = false;

void mark(bool audio) {
    if (audioThread == audio) return;
    audioThread = audio;
    if (audio && rt_guard_enter) rt_guard_enter();
    if (!audio && rt_guard_leave) rt_guard_leave();
}

}  // namespace

bool onAudioThread() { return audioThread; }

AudioSection::AudioSection() : before_(audioThread) { mark(true); }
AudioSection::~AudioSection() { mark(before_); }

AudioPause::AudioPause() : before_(audioThread) { mark(false); }
AudioPause::~AudioPause() { mark(before_); }

}  // namespace zv::engine
