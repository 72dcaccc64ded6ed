/// The jingle that frmFX works on, as it was when the window opened and as its controls have it now. [control]
#pragma once

#include <limits>

#include "audio/cue_points.h"
#include "audio/effect_vector.h"
#include "model/jingle.h"

namespace zv {

struct EditedJingle {
    int index = -1;
    PersistedJingle entry;      ///< on entry, Seq as it was
    std::uint32_t channel = 0;  ///< its hPlay on entry
    bool unsavedOnEntry = false;
    /// Bytes of the file as it lies on the disk now, where it was changed meanwhile; what sounds is still the old one.
    double fileLength = std::numeric_limits<double>::infinity();
    EffectVector effects;  ///< what the record's FXV says; a control changes its own element only
};
extern EditedJingle Edited;

/// The record of the jingle.
inline JingleRecord& EditedRecord() { return Jingle(Edited.index); }
/// False when another jingle, or none, lies on the button by now.
bool EditedIsThere();
/// What the points must stay within: the sound, and what the file on the disk still has of it.
SoundLength EditedLength();
/// The effects go into the record, the button shows whether there are any, and the palette counts as changed when the
/// jingle is not what it was on entry.
void UpdateJFX();

}  // namespace zv
