/// Positions that callers wait for: who waits on a channel, and the events that tell of a position passed.
#pragma once

#include <cstdint>

#include "engine/graph/channel.h"
#include "engine/graph/command.h"
#include "engine/realtime/ring.h"

namespace zv::engine {

/// A position was passed: told to the dispatcher.
struct SyncEvent {
    HSYNC sync = 0;
    DWORD channel = 0;
    std::uint32_t moves = 0;  ///< number of the set position that the passing belongs to
    bool slides = false;      ///< the slide tied to the sync has begun with its frame
};

class Syncs {
  public:
    explicit Syncs(Ring<SyncEvent>& events) : events_(events) {}

    void add(Channel& channel, SyncNode* node);  ///< [audio]
    /// Takes the sync `handle` off the channel, 0: all of them. [audio]
    void remove(Channel& channel, HSYNC handle, Trash& trash);
    /// Ties a slide of VOL to a sync: CommandKind::SlideAtSync. [audio]
    static void tieSlide(const Command& command);
    /// The channel is being freed with its syncs. [audio]
    void forget(const Channel& channel);

    /// Frames from..to (without `to`) were passed: tells the syncs that wait for one of them. [audio]
    void passed(Channel& channel, std::uint64_t from, std::uint64_t to);
    /// Tells one sync. A sync that fires once waits no more. False when the ring of events is full. [audio]
    bool tell(Channel& channel, SyncNode& node);
    /// Syncs that wait on buses, whose positions advance in silence as well. [audio]
    int onBuses() const { return onBuses_; }

    /// Looks up the lowest frame that a sync of the channel waits for. [audio]
    static void findFirst(AudioState& a);

  private:
    void count(const Channel& channel, int syncs);

    Ring<SyncEvent>& events_;
    int onBuses_ = 0;
};

}  // namespace zv::engine
