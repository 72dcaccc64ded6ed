#include "ui/edit/move.h"

#include <string>

#include "audio/sounding.h"
#include "audio/streams.h"
#include "model/colours.h"
#include "model/held_palette.h"
#include "model/jingle.h"
#include "model/pending_removals.h"
#include "model/state.h"
#include "platform/controls.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "ui/edit/carried.h"
#include "ui/edit/remove.h"
#include "ui/edit/undo.h"
#include "ui/edit/unsaved.h"
#include "ui/records/armed.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/screen/button_faces.h"
#include "ui/screen/display_message.h"
#include "ui/screen/highlight.h"

namespace zv {

namespace {

void cutOrCopy(int index, const std::string& mode) {
    const JingleRecord& j = Jingle(index);
    // A button that plays a playlist is not carried: what is written there is no file.
    if (j.Path.find('.') == std::string::npos) {
        return;
    }
    if (j.Kind == SlotKind::nothing) {
        SayWhyBroken(index);
        return;
    }
    if (Plays(index)) {
        ShowDisplayMessage(Ln("mRefPlaying"));
        return;
    }
    const JingleButton* b = Button(index);
    MoveBuffer.tick = b != nullptr ? b->ckJingSel.value() : 0;
    frmMain().display.lblDispMessage.caption = Ln("mlblSelBtarget");
    MoveSrcJ = index;
    MoveMode = mode;
    MoveSourcePalette = HeldPalette();
    MoveBuffer.fields = j;
    ClipPath = j.Path;
}

void paste(int index) {
    // Hot jingles are the same in every palette.
    const bool samePalette = SameText(MoveSourcePalette, HeldPalette()) || MoveSrcJ >= kPaletteSlots;
    if (MoveSrcJ < 0 || (samePalette && index == MoveSrcJ)) {
        return;
    }
    if (Plays(index)) {
        ShowDisplayMessage(Ln("mRefPlaying"));
        return;
    }
    const int source = MoveSrcJ;
    const bool cut = MoveMode == "cut";
    const UndoStep step(cut ? "unMove" : "unCopy");
    JingleButton* b = Button(index);
    if (MoveBuffer.fields.Path.find('.') != std::string::npos) {
        FreeJingle(index);
        ClearRecord(index);
        Jingle(index).persisted() = MoveBuffer.fields;
        Jingle(index).FadeAttrib = FadeAttribOf(Jingle(index));
        openStreams(index);
        Jingle(index).BackRGB = ButtonColour(Jingle(index).BTNCol);
        Jingle(index).ForeRGB = GetForeColor(Jingle(index).BackRGB, "jingle");
        PaintAtRest(index);
        if (b != nullptr) {
            b->ckJingSel.value = MoveBuffer.tick;
            b->ckJingSel.visible = SelectorsShown;
        }
    }
    if (cut) {
        if (samePalette) {
            ClearButton(source);
        } else {
            const std::string into = index < kPaletteSlots ? HeldPalette() : std::string();
            AddRemoval({MoveSourcePalette, source, into, MoveBuffer.fields.Path});
        }
    }
    if (index < kPaletteSlots) {
        DropRemoval(HeldPalette(), index);
    }
    if (cut) {
        MoveSrcJ = -1;
    }
    ClipPath.clear();
    MarkPalToSave();
}

}  // namespace

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
