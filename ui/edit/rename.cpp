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

namespace zv {

namespace {

/// The small window that asks for a file's new name.
struct RenameWindow {
    Control window{"frmRenameFile", ControlKind::window};
    Control lblTitle{"mRFFileWillBeRenamedAs", ControlKind::label, &window};
    Control txtFilename{"txtFilename", ControlKind::textBox, &window};
    Control lblNewFilename{"lblNewFilename", ControlKind::label, &window};
    Control btOK{"rfbtOK", ControlKind::button, &window};
    Control btCancel{"rfbtCancel", ControlKind::button, &window};
    std::string oldName;
    std::string extension;  // with its dot
};

RenameWindow& renameWindow();

std::string cleanedName() {
    RenameWindow& r = renameWindow();
    return ValidFileName(CannotBeEmpty(r.txtFilename.caption(), Ln("mRFUntitled")));
}

void closeRename() {
    hideWindow(renameWindow().window);
    RenameJ = -1;
    ShiftDown = false;
    frmMain().palettes.lstPal.enabled = true;
}

void applyRename() {
    RenameWindow& r = renameWindow();
    const int index = RenameJ;
    const std::string name = cleanedName();
    if (index < 0 || name == r.oldName) {
        closeRename();
        return;
    }
    JingleRecord& j = Jingle(index);
    const std::string path = GetPath(j.Path) + name + r.extension;
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

RenameWindow& renameWindow() {
    static RenameWindow r;
    static const bool wired = [] {
        constexpr int width = 6000, line = 360, margin = 180;
        const auto at = [](Control& c, int left, int top, int w, int h) {
            c.left = left;
            c.top = top;
            c.width = w;
            c.height = h;
        };
        r.window.width = width;
        r.window.height = 5 * line + 4 * margin;
        r.window.caption = Ln("mRFTitle");
        at(r.lblTitle, margin, margin, width - 2 * margin, line);
        at(r.txtFilename, margin, margin + line, width - 2 * margin, line);
        at(r.lblNewFilename, margin, 2 * (margin + line), width - 2 * margin, line);
        at(r.btOK, width / 2 - 1500 - margin, 3 * (margin + line), 1500, line);
        at(r.btCancel, width / 2 + margin, 3 * (margin + line), 1500, line);
        r.lblTitle.caption = Ln("mRFFileWillBeRenamedAs");
        r.btOK.caption = Ln("rfbtOK");
        r.btCancel.caption = Ln("rfbtCancel");
        r.txtFilename.onChange = [] {
            guarded("frmRenameFile.txtFilename_Change", [] {
                r.lblNewFilename.foreColor = kNoColour;
                r.lblNewFilename.caption = cleanedName() + r.extension;
            });
        };
        r.btOK.onClick = [] { guarded("frmRenameFile.btOK_Click", applyRename); };
        r.btCancel.onClick = [] { guarded("frmRenameFile.btCancel_Click", closeRename); };
        r.window.onClose = [] { guarded("frmRenameFile.Form_Unload", closeRename); };
        r.window.onKeyDown = [](KeyEvent& e) {
            if (e.key == Key::enter || e.key == Key::escape) {
                e.consumed = true;
                guarded("frmRenameFile.Form_KeyDown",
                        [&] { e.key == Key::enter ? applyRename() : closeRename(); });
            }
        };
        return true;
    }();
    (void)wired;
    return r;
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
        RenameWindow& r = renameWindow();
        const std::string name = GetFileName(j.Path);
        const std::string extension = GetFileExt(name);
        r.extension = extension.empty() ? std::string() : "." + extension;
        r.oldName = name.substr(0, name.size() - r.extension.size());
        r.txtFilename.caption = r.oldName;
        r.lblNewFilename.foreColor = kNoColour;
        r.lblNewFilename.caption = name;
        r.window.backColor = w.window.backColor();
        showWindow(r.window);
        setFocus(r.txtFilename);
        SelectAllText(r.txtFilename);
        setAlwaysOnTop(r.window, settings.AlwaysOnTop == 1);
    });
}

}  // namespace zv
