/// The records that a rehearsal is given: what it plays with and what it asks of the program. [control]
#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zv {

/// What a rehearsal needs of the program and cannot see from the controls; filled by the executable.
struct RehearsedProgram {
    std::function<bool()> start;   ///< start-up, until the palette is open; false: it ended there
    std::function<void()> listen;  ///< hangs listeners (noteEvent) to the program, early in its start-up
    std::function<void()> close;   ///< the closing path, after the script's end
    /// A value that no control shows: "J(3).State", "PaletteIndex", a setting. Nothing when unknown.
    std::function<std::optional<std::string>(std::string_view name)> value;
    /// Gives the grid another size, as the settings do.
    std::function<void(int rows, int columns)> grid;
    /// Members of the state file: "jingles": [...], "settings": {...}.
    std::function<void(std::ostream& json)> state;
    /// What the records, the buttons and the sound disagree on, empty while they agree. Asked after each
    /// tick.
    std::function<std::string()> fault;
};

struct RehearsalOptions {
    std::string script;                ///< file
    std::string home;                  ///< program folder, worked in place
    std::string out;                   ///< folder for the results, made when missing
    std::uint64_t seed = 1;            ///< of random actions that name none (SEED 0)
    bool keepSound = true;             ///< write main.wav and aux.wav
    int outputs = 2;                   ///< sound outputs that the machine has: none, the main one, or both
    std::vector<std::string> answers;  ///< of the boxes that come before the script begins
    std::vector<std::string> midi;     ///< MIDI devices that are there from the start
};

}  // namespace zv
