#include "ui/edit/unsaved.h"

#include "model/state.h"
#include "startup/errors.h"
#include "startup/language.h"

namespace zv {

void MarkPalToSave() {
    ErrDisp("save", 0, Ln("mPalToSave"));
    PalToSave = true;
}

}  // namespace zv
