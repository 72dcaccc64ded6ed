#include "ui/press/press.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "audio/play.h"
#include "midi/feedback.h"
#include "model/jingle.h"
#include "model/state.h"
#include "platform/controls.h"
#include "platform/desktop.h"
#include "platform/waiting.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/settings/folders_settings.h"
#include "startup/settings/keys_settings.h"
#include "ui/edit/announcer_tab.h"
#include "ui/edit/assign.h"
#include "ui/edit/colour_picker.h"
#include "ui/edit/jingle_editor.h"
#include "ui/edit/jingle_menu.h"
#include "ui/edit/move.h"
#include "ui/edit/options.h"
#include "ui/edit/palette_steps.h"
#include "ui/edit/relocate.h"
#include "ui/edit/remove.h"
#include "ui/edit/rename.h"
#include "ui/records/armed.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/screen/button_faces.h"
#include "ui/screen/captions.h"
#include "ui/screen/display_message.h"
#include "ui/screen/layout_strip.h"
#include "ui/screen/shaded.h"

namespace zv {

namespace {

/// What a press can mean.
enum class PressMeaning {
    nothing,
    assign,
    announcerJingle,
    loop,
    sequence,
    autoRepeat,
    touch,
    playStop,
    noStop,
    colour,
    effects,
    relocate,
    cut,
    copy,
    paste,
    rename,
    remove,
    removeWithFile,
    play,
};

/// The announcer's key waits for a jingle.
bool announcerAsks() {
    const Control& key = frmMain().announcer.b_tmAnJin;
    return Armed(key) && (key.caption() == Ln("mb_tmAnJin") || key.caption() == "d");
}

PressMeaning playModeOption(const JingleRecord& j, PressMeaning option) {
    return j.Seq != 0 ? PressMeaning::nothing : option;
}

/// What a press with modifier keys held means; `nothing` when none fits.
PressMeaning withModifiers(int index) {
    const bool locked = HasPlaylistMark(index, 'K');
    if (CtrlDown && !ShiftDown && !AltDown) {
        if (locked) {
            return PressMeaning::nothing;
        }
        return MoveSrcJ == -1 ? PressMeaning::cut : PressMeaning::paste;
    }
    if (CtrlDown && ShiftDown && !AltDown) {
        // A button that a playlist holds may be copied from, never pasted over.
        if (MoveSrcJ == -1) {
            return PressMeaning::copy;
        }
        return locked ? PressMeaning::nothing : PressMeaning::paste;
    }
    if (ShiftDown && !CtrlDown && !AltDown) {
        return PressMeaning::rename;
    }
    if (AltDown && !CtrlDown && !ShiftDown) {
        return PressMeaning::remove;
    }
    if (CtrlDown && AltDown && !ShiftDown) {
        return PressMeaning::removeWithFile;
    }
    return PressMeaning::nothing;
}

void captionToClipboard(int index) { setClipboard(btCaption(Jingle(index).Path)); }

/// The decision order. Changes nothing.
PressMeaning meaningOf(int index) {
    const JingleRecord& j = Jingle(index);
    const MainWindow& w = frmMain();
    const bool filled = !j.Path.empty();
    const bool noModifier = !CtrlDown && !ShiftDown && !AltDown;
    const PressMeaning plain = filled && !j.MissingFile ? PressMeaning::play : PressMeaning::nothing;
    if (onlyPlays()) {
        return plain;
    }
    if (Armed(w.palettes.ckAssign)) {
        return PressMeaning::assign;
    }
    if (filled) {
        if (announcerAsks()) {
            return PressMeaning::announcerJingle;
        }
        if (LoopToggleStep == 1) {
            return PressMeaning::loop;
        }
        if (LoopToggleStep == 2) {
            return PressMeaning::sequence;
        }
        if (Armed(w.options.ckAutoRepI)) {
            return playModeOption(j, PressMeaning::autoRepeat);
        }
        if (Armed(w.options.ckTouchI)) {
            return playModeOption(j, PressMeaning::touch);
        }
        if (Armed(w.options.ckPlayStopI)) {
            return playModeOption(j, PressMeaning::playStop);
        }
        if (Armed(w.options.ckNoStopI)) {
            return playModeOption(j, PressMeaning::noStop);
        }
        if (Armed(w.options.ckColorI)) {
            return PressMeaning::colour;
        }
        const JingleButton* b = Button(index);
        // What sounds keeps its face while the option is armed; it may be edited all the same.
        if (Armed(w.options.ckFXI) && b != nullptr && !j.MissingFile &&
            (j.Playing || b->b_Jingle.backColor == Shaded.fx)) {
            return PressMeaning::effects;
        }
    }
    if (ToggleTouch == 1 && noModifier) {
        return plain;
    }
    if (folderSettings.OpenReloc == 1 && j.MissingFile && noModifier) {
        return PressMeaning::relocate;
    }
    if (!noModifier) {
        return withModifiers(index);
    }
    return plain;
}

/// Says why a press does nothing. An empty button means nothing and says nothing.
void sayWhyNot(int index) {
    const JingleRecord& j = Jingle(index);
    if (j.Path.empty()) {
        return;
    }
    const OptionsTab& t = frmMain().options;
    const auto& modes = {&t.ckAutoRepI, &t.ckTouchI, &t.ckPlayStopI, &t.ckNoStopI};
    const bool noModifier = !CtrlDown && !ShiftDown && !AltDown;
    if (j.Seq != 0 &&
        std::any_of(modes.begin(), modes.end(), [](const Control* key) { return Armed(*key); })) {
        ShowDisplayMessage(Ln("mRefSequence"));
    } else if (!noModifier && HasPlaylistMark(index, 'K')) {
        ShowDisplayMessage(Ln("mRefLocked"));
    } else {
        SayWhyBroken(index);
    }
}

/// Removes the jingle after a question, unless a playlist holds it.
void askAndRemove(int index, bool withFile) {
    if (HasPlaylistMark(index, 'K')) {
        sayWhyNot(index);
    } else {
        DelJing(index, withFile);
    }
}

}  // namespace

void btClic(int index) {
    guarded("modClick.btClic", [&] {
        switch (meaningOf(index)) {
            case PressMeaning::play:
                clPlay(index, -1);
                SayWhyBroken(index);
                break;
            case PressMeaning::nothing:
                sayWhyNot(index);
                break;
            case PressMeaning::assign:
                clAssign(index);
                break;
            case PressMeaning::announcerJingle:
                clTmAn(index);
                break;
            case PressMeaning::loop:
                SelJ = {index};
                clLoopSet(index);
                break;
            case PressMeaning::sequence:
                SelJ = {index};
                clSeqSet(index);
                break;
            case PressMeaning::autoRepeat:
                SelJ = {index};
                clAutoRepSet(index);
                break;
            case PressMeaning::touch:
                SelJ = {index};
                clTouchSet(index);
                break;
            case PressMeaning::playStop:
                SelJ = {index};
                clPlayStopSet(index);
                break;
            case PressMeaning::noStop:
                SelJ = {index};
                clNoStopSet(index);
                break;
            case PressMeaning::colour:
                preclColorSet(index);
                break;
            case PressMeaning::effects:
                clFXSet(index);
                break;
            case PressMeaning::relocate:
                Jingle(index).Unplayable ? sayWhyNot(index) : clReloc(index);
                break;
            case PressMeaning::cut:
                captionToClipboard(index);
                clMove(index, "cut");
                break;
            case PressMeaning::copy:
                captionToClipboard(index);
                clMove(index, "copy");
                break;
            case PressMeaning::paste:
                clMove(index, "paste");
                break;
            case PressMeaning::rename:
                clRename(index);
                break;
            case PressMeaning::remove:
                askAndRemove(index, false);
                break;
            case PressMeaning::removeWithFile:
                askAndRemove(index, true);
                break;
        }
    });
}

void ReleaseJingle(int index) {
    const JingleRecord& j = Jingle(index);
    if (j.Seq == 0 && (j.PlayMod == PlayMode::touch || (ToggleTouch == 1 && j.PlayMod == PlayMode::global))) {
        clTouchStop(index);
    }
}

void b_Jingle_MouseDown(int index, const MouseEvent& event) {
    guarded(".b_Jingle_MouseDown", [&] {
        if (event.button != MouseButton::left || Jingle(index).MissingFile) {
            return;
        }
        Jingle(index).Pressed = 1;
        if (!SelectorsOn) {
            SlotPressed(index);
        }
        btClic(index);
    });
}

void b_Jingle_MouseUp(int index, const MouseEvent& event) {
    guarded(".b_Jingle_MouseUp", [&] {
        JingleRecord& j = Jingle(index);
        LastCtrl = "b_Jingle";
        j.Pressed = 0;
        if (event.button == MouseButton::right) {
            OpenJingleMenu(index);
            return;
        }
        if (!SelectorsOn) {
            MIDIOutFixedJingle(index, false);
            SlotReleased(index);
        }
        if (j.MissingFile) {
            btClic(index);
            return;
        }
        ReleaseJingle(index);
    });
}

void b_Jingle_KeyDown(int index, KeyEvent& event) {
    guarded(".b_Jingle_KeyDown", [&] {
        const bool oneModifier =
            event.shift == kShiftMask || event.shift == kCtrlMask || event.shift == kAltMask;
        if (oneModifier || keySettings.InhibSpBar != 0 || event.repeat || event.key == Key::tab) {
            return;
        }
        if (ToggleTouch == 0 ? event.key == Key::space : !Jingle(index).Playing) {
            event.consumed = true;
            btClic(index);
        }
    });
}

void PlayJing(int index) {
    guarded("modClick.PlayJing", [&] {
        if (keySettings.InhibSpBar != 0) {
            return;
        }
        if (ToggleTouch == 0 || !Jingle(index).Playing) {
            btClic(index);
        }
    });
}

void btStop_MouseDown(const MouseEvent& event) {
    guarded(".btStop_MouseDown", [&] {
        if (event.button == MouseButton::left) {
            LampOfKey(LampKey::stop, true);
            evStop();
        }
    });
}

void btStop_MouseUp(const MouseEvent& event) {
    guarded(".btStop_MouseUp", [&] {
        if (event.button == MouseButton::left) {
            LampOfKey(LampKey::stop, false);
        }
    });
}

void DeleteObj() {
    guarded("frmMain.DeleteObj", [] {
        if (LastCtrl.find("b_Jingle") != std::string::npos) {
            if (LastPlayedJ >= 0 && HasPlaylistMark(LastPlayedJ, 'K')) {
                ShowDisplayMessage(Ln("mRefLocked"));
            } else if (LastPlayedJ >= 0) {
                DelJing(LastPlayedJ, false);
            }
        } else if (ActiveTab == static_cast<int>(MainTab::palettes)) {
            lstpaldel();
        }
    });
}

}  // namespace zv
