// Assigning, relocating, deleting, and several buttons at once.
#include "ui/edit/edit_commands.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "audio/streams.h"
#include "engine/bass.h"
#include "model/jingle.h"
#include "model/palette_files.h"
#include "model/state.h"
#include "platform/desktop.h"
#include "platform/paths.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings.h"
#include "ui/edit/palette_list.h"
#include "ui/press/press.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/screen/colours.h"
#include "ui/screen/counter.h"
#include "ui/screen/layout.h"

namespace zv {

bool SelHasPlaylist = false;

namespace {

bool supported(const std::string& path) { return IsSoundExtension(GetFileExt(GetFileName(path))); }

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
    PaintButton(index, BtnFaceColor, JingleForeColor);
}

void clAssign(int index) {
    guarded("modClick.clAssign", [&] {
        JingleRecord& j = Jingle(index);
        if (j.Playing) {
            return;
        }
        MainWindow& w = frmMain();
        Disarm(w.palettes.ckAssign);
        ResetOption();
        ResetJingles();
        OptionCode.clear();
        if (!FolderExists(settings.SampleDir)) {
            MkDirs(settings.SampleDir);
        }
        std::string path = ClipPath;
        if (path.empty()) {
            path = openFileDialog(Ln("mDlgAsBu"), settings.LastcmDlgDir, FileFilter());
            if (path.empty()) {
                return;
            }
            settings.LastcmDlgDir = GetPath(path);
        }
        if (path.empty() || !supported(path)) {
            return;
        }
        const DisplayControls& d = w.display;
        const bool pasting = d.lblDispMessage.visible && d.lblDispMessage.caption() == Ln("mlblSelBtarget");
        const std::string effects = pasting ? j.FXV : std::string();
        FreeJingle(index);
        ClearRecord(index);
        j.Path = path;
        j.FXV = effects;
        j.LogFadeOut = static_cast<std::uint8_t>(settings.LogFadeOut);
        HideMarks(index);
        ShowPlayModeMark(index);
        PaintButton(index, BtnFaceColor, JingleForeColor);
        openStreams(index);
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
        if (Jingle(index).State != PlayState::idle || !supported(path)) {
            return;
        }
        settings.LastcmDlgDir = GetPath(path);
        ClipPath = path;
        clAssign(index);
        ClipPath.clear();
    });
}

void clReloc(int index) {
    guarded("modClick.clReloc", [&] {
        JingleRecord& j = Jingle(index);
        if (j.Unplayable || j.Path.empty()) {
            return;
        }
        const std::string name = GetFileName(j.Path);
        const std::string folder =
            folderDialog(Ln("mSrchTitle") + " - " + Ln("mSrchStr") + " " + name, settings.LastcmDlgDir);
        if (folder.empty()) {
            return;
        }
        settings.LastcmDlgDir = folder;
        ErrDisp("wait", 0, Ln("errSearchFile") + " \"" + name + "\" ...");
        processEvents();
        FolderList list;
        ListFolder(folder, true, list);
        HideErrMark();
        std::vector<std::string> hits;
        for (const std::string& path : Split(list.text, "\r\n")) {
            if (!path.empty() && SameText(GetFileName(path), name)) {
                hits.push_back(path);
            }
        }
        if (hits.empty()) {
            messageBox(LnBox("sfFileNotFound") + "\r\n" + name, Ln("mSrchTitle"), BoxKind::information,
                       BoxButtons::ok);
            return;
        }
        std::string chosen = hits.front();
        if (hits.size() > 1) {
            // Several files of that name: the presenter points at the right one.
            chosen = openFileDialog(Ln("sffrmSelFile"), GetPath(hits.front()), name);
        }
        if (chosen.empty()) {
            return;
        }
        FreeJingle(index);
        j.Kind = SlotKind::nothing;
        j.Path = chosen;
        openStreams(index);
        MarkPalToSave();
    });
}

void clFXSet(int) {
    guarded("modClick.clFXSet", [] {
        // The jingle editor is not there yet: the option is given back unspent.
        Disarm(frmMain().options.ckFXI);
        OptionControl.clear();
        OptionCode.clear();
        ResetJingles();
    });
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
        if (messageBox(question, "Zentrova", BoxKind::question, BoxButtons::yesNo) != BoxAnswer::yes) {
            return;
        }
        const std::string path = GetFullPath(j.Path);
        ClearButton(index);
        if (file && FileExists(path)) {
            std::error_code error;
            std::filesystem::remove(nativePath(path), error);
        }
        MarkPalToSave();
    });
}

void ShowSelectors() {
    guarded("frmMain.ShowSelectors", [] {
        if (Unloading || SelectorsShown) {
            return;
        }
        SelectorsShown = true;
        for (const int i : LiveJingles()) {
            JingleButton* b = Button(i);
            if (b == nullptr) {
                continue;
            }
            const JingleRecord& j = Jingle(i);
            const bool file = !j.Path.empty() && !HasPlaylistMark(i, 'K') && !j.MissingFile && j.BassErr == 0;
            if (file || j.Kind == SlotKind::playlist) {
                b->ckJingSel.visible = true;
                if (settings.JNumbPos == 2) {
                    b->picbtnumber.visible = false;
                    b->lblbtnumber.visible = false;
                }
            }
        }
    });
}

void HideSelectors() {
    guarded("frmMain.HideSelectors", [] {
        if (Unloading || !SelectorsShown) {
            return;
        }
        SelectorsShown = false;
        for (int i = 0; i < kJingles; ++i) {
            if (JingleButton* b = Button(i)) {
                b->ckJingSel.visible = false;
                b->ckJingSel.value = 0;
                if (settings.JNumbPos == 2) {
                    b->picbtnumber.visible = true;
                    b->lblbtnumber.visible = true;
                }
            }
        }
        ForgetMoveTick();
    });
}

void CheckAllSelectors() {
    guarded("frmMain.CheckAllSelectors", [] {
        for (const int i : LiveJingles()) {
            JingleButton* b = Button(i);
            if (b != nullptr && b->ckJingSel.visible) {
                b->ckJingSel.value = 1;
            }
        }
    });
}

void CopyAllJings() {
    guarded("frmMain.CopyAllJings", [] {
        if (!SelectorsShown) {
            return;
        }
        std::string text;
        bool hot = false;
        for (const int i : LiveJingles()) {
            const JingleButton* b = Button(i);
            if (i >= kPaletteSlots && !hot) {
                hot = true;
                text += "=============== HOT JINGLES ===============\r\n";
            }
            if (b != nullptr && b->ckJingSel.value == 1 && !Jingle(i).Path.empty()) {
                text += btCaption(Jingle(i).Path) + "\r\n";
            }
        }
        setClipboard(text);
    });
}

bool BuildSelJ(int index) {
    SelJ.clear();
    if (CtrlDown) {
        for (const int i : LiveJingles()) {
            const JingleButton* b = Button(i);
            if (b != nullptr && b->ckJingSel.visible && b->ckJingSel.value == 1) {
                SelJ.push_back(i);
            }
        }
        if (SelJ.size() >= 2) {
            return false;
        }
    }
    SelJ = {index};
    return true;
}

}  // namespace zv
