/// Cut, copy and paste of buttons. [control]
#pragma once

#include <string>

namespace zv {

extern std::string MoveMode;           ///< "cut" or "copy"
extern std::string MoveSourcePalette;  ///< palette that MoveSrcJ was taken from

/// `mode`: "cut", "copy" or "paste".
void clMove(int index, const std::string& mode);
/// The tick of a box that travels with a move is forgotten.
void ForgetMoveTick();

}  // namespace zv
