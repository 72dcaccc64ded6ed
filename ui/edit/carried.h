/// What was cut or copied and waits to be pasted. [control]
#pragma once

#include <string>

#include "model/jingle.h"

namespace zv {

extern std::string MoveMode;           ///< "cut" or "copy"
extern std::string MoveSourcePalette;  ///< palette that MoveSrcJ was taken from

/// What moves with a button.
struct MovedJingle {
    PersistedJingle fields;
    int tick = 0;  ///< of its box
};
extern MovedJingle MoveBuffer;

/// The tick of a box that travels with a move is forgotten.
void ForgetMoveTick();
/// What was cut or copied from palette `before` stands in palette `name` from now on.
void MovedPaletteNamed(const std::string& before, const std::string& name);
/// The file of absolute path `full` is found at `path` from now on: what waits to be pasted follows.
void MovedFileRenamed(const std::string& full, const std::string& path);

}  // namespace zv
