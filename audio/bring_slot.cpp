#include "audio/bring_slot.h"

#include "audio/edit_sound.h"
#include "audio/effect_vector.h"
#include "audio/play.h"
#include "audio/sounding.h"
#include "audio/streams.h"
#include "audio/upcalls.h"
#include "model/after_sound.h"
#include "model/palette_lines.h"
#include "model/slot_keys.h"
#include "startup/guard.h"
#include "startup/upcalls.h"

namespace zv {
namespace {

/// New settings for the file that is open.
void change(int index, const PersistedJingle& content) {
    JingleRecord& j = Jingle(index);
    const PersistedJingle before = j.persisted();
    j.persisted() = content;
    if (j.LoopOut == 0) j.LoopOut = EditLength(index).length;
    if (j.FXV.empty()) j.FXV = NeutralFXV(j.Freq);
    DeriveFields(j);
    if (j.FXV != before.FXV) {
        const EffectVector effects = ParseFXV(j.FXV, j.Freq).effects;
        for (int band = 0; band < kEqBands; ++band) EditBand(index, band, effects.gain(band));
        EditReverb(index, effects.reverbMs);
        EditTempo(index, TempoPart::tempo, effects.tempo);
        EditTempo(index, TempoPart::rate, effects.rate);
        EditTempo(index, TempoPart::pitch, effects.pitch);
    }
    if (j.Volm != before.Volm) EditVolume(index, j.Volm);
    if (Sounds(index)) {
        EditLoop(index);
        ArmStopSync(index);
    } else {
        EditDone(index);
    }
    j.EndOffset = EndOffsetCalc(index);
    j.Duration = JDurationCalc(index);
    callUp(audioUpcalls.slotLoaded, index);
}

}  // namespace

std::optional<PersistedJingle> SlotContent(int index) {
    if (const PersistedJingle* next = AfterSound(index)) return *next;
    const JingleRecord& j = Jingle(index);
    if (j.PlayingOtherPal) return std::nullopt;
    PersistedJingle content = j.persisted();
    if (j.hSrc != 0 && content.LoopOut == EditLength(index).length) content.LoopOut = 0;
    if (j.Freq != 0 && content.FXV == NeutralFXV(j.Freq)) content.FXV.clear();
    return content;
}

void BringSlot(int index, const PersistedJingle& content) {
    guarded("modClick.BringSlot", [&] {
        JingleRecord& j = Jingle(index);
        const bool waits = AfterSound(index) != nullptr;
        DropAfterSound(index);
        const bool open = j.hPlay != 0 && j.Path == content.Path;
        if (waits && open) j.PlayingOtherPal = false;
        if (open) {
            change(index, content);
        } else if (Sounds(index)) {
            HoldAfterSound(index, content);
            callUp(audioUpcalls.namesRead, index);
        } else {
            FillSlot(index, content);
        }
    });
}

}  // namespace zv
