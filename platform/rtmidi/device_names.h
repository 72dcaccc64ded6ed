/// Names of MIDI devices as the program keeps them: the same after each start of the system.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zv {

/// One port's name without what the system adds: client and port numbers, and the word for its direction.
///     "nanoPAD2:nanoPAD2 nanoPAD2 _ PAD 20:0"             "nanoPAD2 nanoPAD2 _ PAD"
///     "a2j:Launchpad [24] (capture): Launchpad MIDI 1"    "a2j:Launchpad: Launchpad MIDI 1"
///     "system:midi_playback_2"                            "system:midi_2"
/// [any]
std::string cleanMidiName(std::string_view port);

/// Clean names of all ports in their order; of equal ones the second becomes "NAME (2)", the third "NAME (3)".
/// [any]
std::vector<std::string> distinctMidiNames(const std::vector<std::string>& ports);

}  // namespace zv
