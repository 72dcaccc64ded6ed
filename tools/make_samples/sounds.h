/// The sample sounds by name.
#pragma once

#include <cstdint>
#include <vector>

#include "synth.h"

namespace samples {

struct Sound {
    const char* name;    ///< of the file, without its ending
    const char* format;  ///< "wav", "flac", "ogg", "mp3", "m4a"
    Stereo (*make)();
};

extern const std::vector<Sound> kStingers, kEffects, kBeds;

/// A tracker module of four channels: a walking bass, a ride cymbal and an electric piano.
std::vector<std::uint8_t> jazzModule();

}  // namespace samples
