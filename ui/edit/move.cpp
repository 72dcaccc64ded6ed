#include "ui/edit/move.h"

#include <cstddef>
#include <string>

#include "audio/sounding.h"
#include "audio/streams.h"
#include "model/jingle.h"
#include "model/state.h"
#include "platform/controls.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/settings.h"
#include "ui/edit/remove.h"
#include "ui/edit/unsaved.h"
#include "ui/records/armed.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/screen/button_faces.h"

namespace zv {

std::string MoveMode;
std::string MoveSourcePalette;

namespace {

/// What moves with a button.
struct MovedJingle {
    JingleRecord fields;
    bool fxMark = false;
    int tick = 0;
};
MovedJingle MoveBuffer;

void copyPersisted(JingleRecord& to, const JingleRecord& from) {
    to.Path = from.Path;
    to.Volm = from.Volm;
    to.Loop = from.Loop;
    to.Seq = from.Seq;
    to.LoopIn = from.LoopIn;
    to.LoopOut = from.LoopOut;
    to.LoopLen = from.LoopLen;
    to.FadeOut = from.FadeOut;
    to.AutoDuck = from.AutoDuck;
    to.AutoDuckKey = from.AutoDuckKey;
    to.BassErr = from.BassErr;
    to.MissingFile = from.MissingFile;
    to.Unplayable = from.Unplayable;
    to.NoAutomix = from.NoAutomix;
    to.NoTrigDuck = from.NoTrigDuck;
    to.FadeAttrib = from.FadeAttrib;
    to.LogFadeOut = from.LogFadeOut;
    to.LoopFadeOut = from.LoopFadeOut;
    to.BTNCol = from.BTNCol;
    to.PlayMod = from.PlayMod;
    to.CueStart = from.CueStart;
    to.StopPos = from.StopPos;
    to.FXV = from.FXV;
}

void cutOrCopy(int index, const std::string& mode) {
    const JingleRecord& j = Jingle(index);
    if (Plays(index) || j.Kind == SlotKind::nothing) {
        return;
    }
    const JingleButton* b = Button(index);
    MoveBuffer.tick = b != nullptr ? b->ckJingSel.value() : 0;
    frmMain().display.lblDispMessage.caption = Ln("mlblSelBtarget");
    MoveSrcJ = index;
    MoveMode = mode;
    MoveSourcePalette = settings.PaletteIndex;
    if (j.Path.find('.') == std::string::npos) {
        return;
    }
    copyPersisted(MoveBuffer.fields, j);
    MoveBuffer.fxMark = b != nullptr && b->fx_Jingle.visible;
    ClipPath = j.Path;
}

/// The hidden lists of what leaves other palettes at the next save, in step with each other.
void addPendingRemoval(const std::string& section, int slot) {
    PaletteTab& t = frmMain().palettes;
    auto sections = t.lstSection.items();
    auto slots = t.lstJID.items();
    sections.push_back(section);
    slots.push_back(std::to_string(slot));
    t.lstSection.items = sections;
    t.lstJID.items = slots;
}

void dropPendingRemoval(const std::string& section, int slot) {
    PaletteTab& t = frmMain().palettes;
    auto sections = t.lstSection.items();
    auto slots = t.lstJID.items();
    const std::string number = std::to_string(slot);
    for (std::size_t i = sections.size(); i-- > 0;) {
        if (sections[i] == section && i < slots.size() && slots[i] == number) {
            sections.erase(sections.begin() + static_cast<std::ptrdiff_t>(i));
            slots.erase(slots.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
    t.lstSection.items = sections;
    t.lstJID.items = slots;
}

void paste(int index) {
    // Hot jingles are the same in every palette.
    const bool samePalette = MoveSourcePalette == settings.PaletteIndex || MoveSrcJ >= kPaletteSlots;
    if (MoveSrcJ < 0 || (samePalette && index == MoveSrcJ) || Plays(index)) {
        return;
    }
    MoveDstJ = index;
    const int source = MoveSrcJ;
    const bool cut = MoveMode == "cut";
    JingleButton* b = Button(index);
    if (MoveBuffer.fields.Path.find('.') != std::string::npos) {
        FreeJingle(index);
        ClearRecord(index);
        copyPersisted(Jingle(index), MoveBuffer.fields);
        openStreams(index);
        Colour back = 0;
        Colour fore = 0;
        RestColours(index, back, fore);
        PaintButton(index, back, fore);
        if (b != nullptr) {
            b->ckJingSel.value = MoveBuffer.tick;
            b->ckJingSel.visible = SelectorsShown;
        }
    }
    if (cut) {
        if (samePalette) {
            ClearButton(source);
        } else {
            addPendingRemoval(MoveSourcePalette, source);
        }
    }
    dropPendingRemoval(settings.PaletteIndex, index);
    if (cut) {
        MoveSrcJ = -1;
        MoveDstJ = -1;
    }
    ClipPath.clear();
    MarkPalToSave();
}

}  // namespace

void ForgetMoveTick() { MoveBuffer.tick = 0; }

void clMove(int index, const std::string& mode) {
    guarded("modClick.clMove", [&] {
        if (mode == "paste") {
            paste(index);
        } else {
            cutOrCopy(index, mode);
        }
    });
}

}  // namespace zv
