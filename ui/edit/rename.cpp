#include "ui/edit/rename.h"

#include <string>
#include <vector>

#include "audio/sounding.h"
#include "audio/streams.h"
#include "model/held_palette.h"
#include "model/jingle.h"
#include "model/rename_sound.h"
#include "model/state.h"
#include "platform/controls.h"
#include "platform/desktop.h"
#include "platform/paths.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "ui/edit/carried.h"
#include "ui/edit/undo.h"
#include "ui/edit/unsaved.h"
#include "ui/records/main_window.h"
#include "ui/screen/button_faces.h"
#include "ui/screen/display_message.h"
#include "ui/windows/rename_window.h"

namespace zv {

namespace {

std::string oldName;
std::string extension;  // with its dot

std::string cleanedName() {
    return ValidFileName(CannotBeEmpty(frmRenameFile().txtFilename.caption(), Ln("mRFUntitled")));
}

void closeRename() {
    frmRenameFile().form.close();
    RenameJ = -1;
    ShiftDown = false;
    frmMain().palettes.lstPal.enabled = true;
}

void applyRename() {
    RenameWindow& r = frmRenameFile();
    const int index = RenameJ;
    const std::string name = cleanedName();
    if (index < 0 || name == oldName) {
        closeRename();
        return;
    }
    const std::string from = Jingle(index).Path;
    const std::string full = GetFullPath(from);
    const std::string path = GetPath(from) + name + extension;
    const bool otherCase = SameText(name, oldName) && nativePath(GetFullPath(path)) == nativePath(full);
    if (FileExists(GetFullPath(path)) && !otherCase) {
        r.lblNewFilename.foreColor = kMissingColour;
        r.lblNewFilename.caption = Ln("mRFFileExists");
        return;
    }
    // Every button of that file follows with all that it holds. What sounds keeps its open file.
    std::vector<int> buttons;
    for (int i = 0; i < kJingles; ++i) {
        if (!Jingle(i).Path.empty() && IsFileOf(Jingle(i).Path, full)) {
            buttons.push_back(i);
        }
    }
    const UndoStep step("unRename");
    NoteRename(from, path);
    for (const int i : buttons) {
        if (!Plays(i)) {
            FreeJingle(i);
        }
    }
    const std::string why = RenameSound(from, path);
    closeRename();
    if (why.empty()) {
        MovedFileRenamed(full, path);
    }
    for (const int i : buttons) {
        if (why.empty()) {
            Jingle(i).Path = path;
        }
        if (!Plays(i)) {
            openStreams(i);
            ShowMarks(i);
        }
    }
    if (!why.empty()) {
        ErrDisp("no", 0, why);
        return;
    }
    SaveHeldPalette();
}

void typed() {
    RenameWindow& r = frmRenameFile();
    r.lblNewFilename.foreColor = kNoColour;
    r.lblNewFilename.caption = cleanedName() + extension;
}

}  // namespace

void clRename(int index) {
    guarded("modClick.clRename", [&] {
        const JingleRecord& j = Jingle(index);
        if (RenameJ != -1 || j.Path.empty()) {
            return;
        }
        if (Plays(index)) {
            ShowDisplayMessage(Ln("mRefPlaying"));
            return;
        }
        MainWindow& w = frmMain();
        w.display.lblDate.visible = true;
        w.display.lblTime.visible = true;
        w.display.lblDispMessage.visible = false;
        w.palettes.lstPal.enabled = false;
        RenameJ = index;
        RenameWindow& r = frmRenameFile();
        r.onTyped = typed;
        r.onAccepted = applyRename;
        r.onCancelled = closeRename;
        const std::string name = GetFileName(j.Path);
        const std::string end = GetFileExt(name);
        extension = end.empty() ? std::string() : "." + end;
        oldName = name.substr(0, name.size() - extension.size());
        r.txtFilename.caption = oldName;
        r.lblNewFilename.foreColor = kNoColour;
        r.lblNewFilename.caption = name;
        r.form.open(&r.txtFilename);
        SelectAllText(r.txtFilename);
    });
}

}  // namespace zv
