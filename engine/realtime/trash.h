/// What the audio side is done with travels back through here and is destroyed elsewhere.
#pragma once

#include <atomic>

#include "engine/realtime/thread_tags.h"

namespace zv::engine {

/// Anything that is handed to the audio side. Destroyed on another thread only.
class Garbage {
  public:
    Garbage() = default;
    virtual ~Garbage() { assertNotAudioThread(); }
    Garbage(const Garbage&) = delete;
    Garbage& operator=(const Garbage&) = delete;
    Garbage* nextInTrash = nullptr;
};

/// One side throws in without waiting, the other takes everything out at once. Has no capacity to overflow.
class Trash {
  public:
    ~Trash() { empty(); }
    void add(Garbage* item) {  // [audio]
        assertAudioThread();
        if (!item) return;
        item->nextInTrash = head_.load(std::memory_order_relaxed);
        while (!head_.compare_exchange_weak(item->nextInTrash, item, std::memory_order_release)) {
        }
    }
    void empty() {  // [any but audio]
        assertNotAudioThread();
        Garbage* item = head_.exchange(nullptr, std::memory_order_acquire);
        while (item) {
            Garbage* next = item->nextInTrash;
            delete item;
            item = next;
        }
    }

  private:
    std::atomic<Garbage*> head_{nullptr};
};

}  // namespace zv::engine
