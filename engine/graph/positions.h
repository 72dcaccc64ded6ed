/// Positions of files as they are heard. A conversion reads ahead of what is heard, a stretched sound jumps within
/// its source; syncs and callers are told what is heard.
#pragma once

#include <cstdint>

#include "engine/graph/syncs.h"

namespace zv::engine {

class Positions {
  public:
    explicit Positions(Syncs& syncs) : syncs_(syncs) {}

    /// Stores the position that is heard for everyone to read. [audio]
    void publish(Channel& channel);
    /// Frames from..to of the file `source` were delivered through `channel`, which is the file itself or
    /// stretches it: tells the syncs of both. A conversion is heard later: publish() tells of it. [audio]
    void delivered(Channel& channel, Channel& source, std::uint64_t from, std::uint64_t to);
    /// The same for a tempo channel whose source went from `from` to `to`: on, or over the end of a loop.
    /// A step back of less than 25 ms is no wrap: a new lane may begin a little before the place where the last one
    /// was left. [audio]
    void stretched(Channel& channel, std::uint64_t from, std::uint64_t to);
    /// The resampler of the channel reads ahead. If loop or end changed since, returns the frames not yet heard
    /// to the source. [audio]
    static void takeBack(Channel& channel);

  private:
    void passed(Channel& channel, Channel& source, std::uint64_t from, std::uint64_t to);
    void heard(Channel& channel, Channel& source, std::uint64_t to);

    Syncs& syncs_;
};

}  // namespace zv::engine
