#include "ui/edit/carried.h"

#include "model/rename_sound.h"
#include "model/state.h"
#include "startup/helpers.h"

namespace zv {

std::string MoveMode;
std::string MoveSourcePalette;
MovedJingle MoveBuffer;

void ForgetMoveTick() { MoveBuffer.tick = 0; }

void MovedPaletteNamed(const std::string& before, const std::string& name) {
    if (SameText(MoveSourcePalette, before)) {
        MoveSourcePalette = name;
    }
}

void MovedFileRenamed(const std::string& full, const std::string& path) {
    if (!MoveBuffer.fields.Path.empty() && IsFileOf(MoveBuffer.fields.Path, full)) {
        MoveBuffer.fields.Path = path;
        ClipPath = ClipPath.empty() ? ClipPath : path;
    }
}

}  // namespace zv
