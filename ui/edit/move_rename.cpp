// Cut, copy and paste of buttons, and the renaming of a button's file.
#include <array>
#include <filesystem>
#include <string>

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
#include "ui/edit/edit_commands.h"
#include "ui/edit/palette_list.h"
#include "ui/press/press.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/screen/colours.h"
#include "ui/screen/layout.h"

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

bool sounds(const JingleRecord& j) {
    return j.hPlay != 0 && BASS_ChannelIsActive(j.hPlay) == BASS_ACTIVE_PLAYING;
}

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
    if (sounds(j) || j.Kind == SlotKind::nothing) {
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
    if (MoveSrcJ < 0 || (samePalette && index == MoveSrcJ) || sounds(Jingle(index))) {
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

// ---- renaming ----

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

void clRename(int index) {
    guarded("modClick.clRename", [&] {
        const JingleRecord& j = Jingle(index);
        if (RenameJ != -1 || j.Path.empty() || sounds(j)) {
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
