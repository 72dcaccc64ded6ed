#include "ui/edit/assign.h"

#include <cstdint>
#include <string>

#include "audio/streams.h"
#include "model/jingle.h"
#include "model/state.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/automix_settings.h"
#include "startup/settings/folders_settings.h"
#include "ui/edit/undo.h"
#include "ui/edit/unsaved.h"
#include "ui/records/armed.h"
#include "ui/records/main_window.h"
#include "ui/screen/button_faces.h"
#include "ui/screen/display_message.h"
#include "ui/screen/highlight.h"

namespace zv {

std::string WhyNotAssigned(const std::string& path) {
    if (path.find_first_of("\r\n") != std::string::npos) {
        return "mRefLineEnd";
    }
    return IsSoundExtension(GetFileExt(GetFileName(path))) ? std::string() : "mRefNoSound";
}

void PutFile(int index, const std::string& path, const std::string& effects) {
    JingleRecord& j = Jingle(index);
    FreeJingle(index);
    ClearRecord(index);
    j.Path = path;
    j.FXV = effects;
    j.LogFadeOut = static_cast<std::uint8_t>(automixSettings.LogFadeOut);
    HideMarks(index);
    ShowPlayModeMark(index);
    PaintButton(index, BtnFaceColor, JingleForeColor);
    openStreams(index);
}

void clAssign(int index) {
    guarded("modClick.clAssign", [&] {
        const JingleRecord& j = Jingle(index);
        if (j.Playing) {
            ShowDisplayMessage(Ln("mRefPlaying"));
            return;
        }
        MainWindow& w = frmMain();
        DisarmOptions();
        ResetOption();
        ResetJingles();
        OptionCode.clear();
        if (!FolderExists(folderSettings.SampleDir)) {
            MkDirs(folderSettings.SampleDir);
        }
        std::string path = ClipPath;
        if (path.empty()) {
            path = openFileDialog(Ln("mDlgAsBu"), folderSettings.LastcmDlgDir,
                                  Ln("mDlgType") + "|" + FileFilter());
            if (path.empty()) {
                return;
            }
            folderSettings.LastcmDlgDir = GetPath(path);
        }
        if (const std::string why = WhyNotAssigned(path); !why.empty()) {
            ShowDisplayMessage(Ln(why));
            return;
        }
        const DisplayControls& d = w.display;
        const bool pasting = d.lblDispMessage.visible && d.lblDispMessage.caption() == Ln("mlblSelBtarget");
        const UndoStep step("unAssign");
        PutFile(index, path, pasting ? j.FXV : std::string());
        ClipPath.clear();
        MarkPalToSave();
    });
}

void b_Jingle_OLEDragDrop(int index, const std::string& path) {
    guarded(".b_Jingle_OLEDragDrop", [&] {
        if (path.empty()) {
            messageBox(LnBox("mNoClipB"), "Zentrova", BoxKind::information, BoxButtons::ok);
            return;
        }
        const bool idle = Jingle(index).State == PlayState::idle;
        if (const std::string why = idle ? WhyNotAssigned(path) : "mRefPlaying"; !why.empty()) {
            ShowDisplayMessage(Ln(why));
            return;
        }
        folderSettings.LastcmDlgDir = GetPath(path);
        ClipPath = path;
        clAssign(index);
        ClipPath.clear();
    });
}

}  // namespace zv
