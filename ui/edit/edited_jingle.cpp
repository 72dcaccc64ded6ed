#include "ui/edit/edited_jingle.h"

#include <algorithm>

#include "audio/edit_sound.h"
#include "model/palette_lines.h"
#include "model/state.h"
#include "startup/errors.h"
#include "ui/edit/unsaved.h"
#include "ui/records/jingle_buttons.h"

namespace zv {

EditedJingle Edited;

bool EditedIsThere() {
    const JingleRecord& j = EditedRecord();
    // A save may bring the file to another folder, another output may give the jingle another channel.
    return j.hPlay != 0 && (j.hPlay == Edited.channel || j.Path == Edited.entry.Path);
}

SoundLength EditedLength() {
    SoundLength sound = EditLength(Edited.index);
    sound.length = std::min(sound.length, Edited.fileLength);
    if (sound.length <= sound.minGap) sound.minGap = 0;
    return sound;
}

void UpdateJFX() {
    if (!EditedIsThere()) return;
    JingleRecord& j = EditedRecord();
    // A vector that nobody touched keeps its own text.
    if (ParseFXV(j.FXV, j.Freq).effects != Edited.effects) j.FXV = FXVText(Edited.effects);
    if (JingleButton* b = Button(Edited.index))
        b->fx_Jingle.visible =
            j.FXV != NeutralFXV(j.Freq) || j.CueStart != 0 || j.StopPos != 0 || j.FadeOut != 0;
    PersistedJingle now = j.persisted();
    now.Seq = Edited.entry.Seq;  // is put aside while the window is open
    if (now != Edited.entry) {
        if (!PalToSave) MarkPalToSave();
    } else if (!Edited.unsavedOnEntry && PalToSave) {
        PalToSave = false;
        ErrDisp("hide");
    }
}

}  // namespace zv
