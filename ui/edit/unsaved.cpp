#include "ui/edit/unsaved.h"

#include "model/held_palette.h"
#include "model/palette_files.h"
#include "model/state.h"
#include "startup/errors.h"
#include "startup/language.h"

namespace zv {

void MarkPalToSave() {
    ErrDisp("save", 0, Ln("mPalToSave"));
    PalToSave = true;
}

bool SaveHeldPalette() {
    SaveMode = "save";
    if (!CloseFile(HeldPalette())) {
        return false;
    }
    PalToSave = false;
    return true;
}

}  // namespace zv
