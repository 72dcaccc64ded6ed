/// The jingle that frmFX works on, as it was when the window opened and as its controls have it now. [control]
#pragma once

#include "audio/effect_vector.h"
#include "model/jingle.h"

namespace zv {

struct EditedJingle {
    int index = -1;
    PersistedJingle entry;  ///< on entry, Seq as it was
    bool unsavedOnEntry = false;
    EffectVector effects;  ///< what the record's FXV says; a control changes its own element only
};
extern EditedJingle Edited;

/// The record of the jingle.
inline JingleRecord& EditedRecord() { return Jingle(Edited.index); }
/// The effects go into the record, the button shows whether there are any, and the palette counts as changed when the
/// jingle is not what it was on entry.
void UpdateJFX();

}  // namespace zv
