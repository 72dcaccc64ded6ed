#include "ui/edit/remove.h"

#include <filesystem>
#include <string>
#include <system_error>

#include "audio/streams.h"
#include "model/history.h"
#include "model/jingle.h"
#include "model/state.h"
#include "platform/desktop.h"
#include "platform/paths.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "ui/edit/undo.h"
#include "ui/edit/unsaved.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/screen/button_faces.h"
#include "ui/screen/captions.h"
#include "ui/screen/highlight.h"

namespace zv {

namespace {

void showDateLine() {
    DisplayControls& d = frmMain().display;
    d.lblDate.visible = true;
    d.lblTime.visible = true;
    d.lblDispMessage.visible = false;
}

}  // namespace

void ClearButton(int index) {
    if (JingleButton* b = Button(index)) {
        b->b_Jingle.caption = std::string();
        b->b_Jingle.toolTip = std::string();
        b->ckJingSel.visible = false;
    }
    FreeJingle(index);
    ClearRecord(index);
    HideMarks(index);
    PaintAtRest(index);
}

void DelJing(int index, bool withFile) {
    guarded("modClick.DelJing", [&] {
        JingleRecord& j = Jingle(index);
        if (j.Path.empty() && j.Kind == SlotKind::nothing) {
            return;
        }
        showDateLine();
        const bool file = withFile || (CtrlDown && AltDown && !ShiftDown);
        const std::string caption = btCaption(j.Path);
        const std::string question = file ? LnBox("mMsdbf") + "\r\n" + caption + "\r\n" + LnBox("mMsdba")
                                          : LnBox("mMsdb") + "\r\n" + caption;
        if (messageBox(question, "Zentrova", BoxKind::question, BoxButtons::yesNo,
                       Verbs(file ? "vbDeleteFile" : "vbClear", "vbKeep", true)) != BoxAnswer::yes) {
            return;
        }
        const UndoStep step(file ? "unDelete" : "unClear");
        const std::string path = GetFullPath(j.Path);
        ClearButton(index);
        if (file && FileExists(path)) {
            NoteDeletedFile(path);
            if (!KeepDeletedFile(path)) {
                std::error_code error;
                std::filesystem::remove(nativePath(path), error);
            }
        }
        MarkPalToSave();
        if (file && FileExists(path)) {
            ErrDisp("no", 1, Ln("unFileStays") + " " + path);
        }
    });
}

void ClearSelection() {
    guarded("frmMain.mnuClr_Click", [] {
        std::string captions;
        for (const int i : SelJ) {
            const JingleButton* b = Button(i);
            captions += "\r\n" + (HasPlaylistMark(i, 'P') && b != nullptr ? b->b_Jingle.caption()
                                                                          : btCaption(Jingle(i).Path));
        }
        if (messageBox(LnBox(SelJ.size() > 1 ? "mMsdbMany" : "mMsdb") + captions, "Zentrova",
                       BoxKind::question, BoxButtons::yesNo,
                       Verbs("vbClear", "vbKeep", true)) != BoxAnswer::yes) {
            return;
        }
        const UndoStep step("unClear");
        for (const int i : SelJ) {
            ClearButton(i);
            if (JingleButton* b = Button(i)) {
                b->picPlaylist.visible = false;
            }
        }
        MarkPalToSave();
    });
}

}  // namespace zv
