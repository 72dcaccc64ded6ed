/// Which channels sound, and where: starts, stops, and the list of sounding channels of each output and mixer.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

#include "engine/graph/positions.h"
#include "engine/graph/render_time.h"

namespace zv::engine {

class Playback {
  public:
    Playback(Positions& positions, const RenderTime& time, std::atomic<std::uint64_t>& underruns)
        : positions_(positions), time_(time), underruns_(underruns) {}

    void start(Channel& channel, std::uint32_t generation);  ///< [audio]
    void stop(Channel& channel);                             ///< by command [audio]
    void finish(Channel& channel);  ///< it came to its end: the caller's side is told [audio]
    /// Takes it off its mixer or output; its plug goes into the trash. [audio]
    void unplug(Channel& channel, Trash& trash);
    /// Whether it waits for a decoder. A file that begins to wait counts as an underrun. [audio]
    void setDry(Channel& channel, bool dry);

    /// The first channel that sounds on output `device`; null: none does. [audio]
    Channel* const& first(int device) const { return outputs_[static_cast<std::size_t>(device)].first; }
    /// Sounding channels in all lists, without buses. [audio]
    int sounding() const { return sounding_; }

  private:
    struct List {
        Channel *first = nullptr, *last = nullptr;
    };
    /// Both ends of the list that a channel stands in; null: in none.
    struct Ends {
        Channel **first = nullptr, **last = nullptr;
    };
    Ends listOf(const AudioState& a);
    static void soundsOrRests(Channel& channel, bool sounds);
    void link(Channel& channel);
    void unlink(Channel& channel);

    Positions& positions_;
    const RenderTime& time_;
    std::atomic<std::uint64_t>& underruns_;
    std::array<List, kMostDevices> outputs_;
    int sounding_ = 0;
};

}  // namespace zv::engine
