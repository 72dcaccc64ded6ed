/// What a rehearsal reads from the program beyond its controls: the records, the settings, and whether all of
/// them agree with what sounds. [control]
#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

namespace zv {

/// "J(3).State" and the other fields of a jingle record under their names, "PaletteIndex" and the other
/// settings, "BASS_ChannelIsActive(3)" of a jingle's channel. Nothing when unknown.
std::optional<std::string> programValue(std::string_view name);

/// "jingles": the slots that hold something; "settings": all keys.
void writeProgramState(std::ostream& json);

/// What a live slot's record, button and channel disagree on, the first one found; empty while they agree.
/// Holds right after a tick of the display.
std::string programFault();

/// Gives the grid another size, as the settings do, and opens what the palette has for it.
void changeGrid(int rows, int columns);

/// From now on marks, reports and the console's lines go to events.log as well as where they went.
void listenToProgram();

}  // namespace zv
