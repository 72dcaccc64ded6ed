/// Conversion of a channel to the rate of what it is plugged into.
#pragma once

#include <cstdint>

#include "engine/graph/pull.h"

namespace zv::engine {

class Conversion {
  public:
    explicit Conversion(Pull& pull) : pull_(pull) {}

    /// What the conversion of the next frames needs is there; else why not.
    enum class Filled : std::uint8_t { all, dry, ended };

    /// Whether what is converted is the file itself, in one or two channels: then its levels are those of its
    /// pages, and it may be converted together with others. A channel on which
    /// an effect, VOLDSP or a tempo was set stays alone until its next start: its conversion has read ahead, so the
    /// frame at which the setting ends is not known. [audio]
    static bool isFile(Channel& channel);
    /// Reads from the channel what its conversion needs for the next `want` frames. [audio]
    Filled fill(Channel& channel, std::uint32_t want);
    /// Hands the conversion what it needs for the next `frames`; `make`: converts at once, into Plug::out.
    /// After fill() gave Filled::all. [audio]
    static void take(Channel& channel, std::uint32_t frames, bool make);
    /// The next converted frames, `want` at most. [audio]
    View pull(Channel& channel, std::uint32_t want);

  private:
    Pull& pull_;
};

}  // namespace zv::engine
