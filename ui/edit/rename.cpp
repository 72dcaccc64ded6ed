#include "ui/edit/rename.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <system_error>

#include "audio/sounding.h"
#include "audio/streams.h"
#include "model/jingle.h"
#include "model/palette_files.h"
#include "model/state.h"
#include "platform/controls.h"
#include "platform/desktop.h"
#include "platform/paths.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings.h"
#include "ui/edit/assign.h"
#include "ui/records/main_window.h"
#include "ui/screen/button_faces.h"
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
    JingleRecord& j = Jingle(index);
    const std::string path = GetPath(j.Path) + name + extension;
    if (FileExists(GetFullPath(path))) {
        r.lblNewFilename.foreColor = kMissingColour;
        r.lblNewFilename.caption = Ln("mRFFileExists");
        return;
    }
    const PlayMode mode = j.PlayMod;
    const std::uint8_t loop = j.Loop;
    FreeJingle(index);
    std::error_code error;
    const std::string full = GetFullPath(j.Path);
    if (FileExists(full)) {
        std::filesystem::rename(nativePath(full), nativePath(GetFullPath(path)), error);
    }
    closeRename();
    if (error) {
        openStreams(index);
        ErrDisp("no", 0, error.message());
        return;
    }
    ClipPath = path;
    clAssign(index);
    j.PlayMod = mode;
    j.Loop = loop;
    ShowMarks(index);
    SaveMode = "save";
    CloseFile(settings.PaletteIndex);
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
        if (RenameJ != -1 || j.Path.empty() || Plays(index)) {
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
