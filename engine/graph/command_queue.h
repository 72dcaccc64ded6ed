/// Commands on their way from the callers to the audio side.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>

#include "engine/graph/command.h"
#include "engine/realtime/ring.h"

namespace zv::engine {

/// The ring, and what waits for room in it. A full ring is counted; nothing is lost. Stops, and gains of
/// buses (the microphone's among them), have room of their own.
class CommandQueue {
  public:
    CommandQueue() : ring_(kCapacity) {}
    void send(const Command& command);  ///< [any], under the engine's lock
    /// Moves what waits into the ring. [any], under the engine's lock
    void flush();
    bool pop(Command& command) { return ring_.pop(command); }  ///< [audio]
    bool empty() const { return ring_.filled() == 0; }
    bool settled() const { return empty() && waiting_.empty(); }  ///< under the engine's lock
    std::uint64_t overflows() const { return overflows_.load(std::memory_order_relaxed); }

    static constexpr std::size_t kCapacity = 8192, kReserved = 1024;

  private:
    static bool urgent(const Command& command);
    Ring<Command> ring_;
    std::deque<Command> waiting_;
    std::atomic<std::uint64_t> overflows_{0};
};

}  // namespace zv::engine
