/// Control surfaces. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of midi.inc, each with its default.
struct MidiSettings {
#include "startup/settings/midi.inc"
};

extern MidiSettings midiSettings;

}  // namespace zv
