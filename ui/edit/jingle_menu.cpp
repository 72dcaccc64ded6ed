#include "ui/edit/jingle_menu.h"

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "midi/assignments.h"
#include "model/colours.h"
#include "model/jingle.h"
#include "model/state.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings.h"
#include "ui/edit/announcer_tab.h"
#include "ui/edit/assign.h"
#include "ui/edit/colour_picker.h"
#include "ui/edit/jingle_editor.h"
#include "ui/edit/level_many.h"
#include "ui/edit/move.h"
#include "ui/edit/options.h"
#include "ui/edit/playlists.h"
#include "ui/edit/relocate.h"
#include "ui/edit/remove.h"
#include "ui/edit/rename.h"
#include "ui/edit/selection.h"
#include "ui/records/armed.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/screen/button_faces.h"
#include "ui/screen/captions.h"
#include "ui/screen/shaded.h"
#include "ui/windows/midi_learn.h"

namespace zv {

namespace {

/// The columns of the menu's table of visibility.
enum class ButtonState { empty, missing, filled, playing };

ButtonState stateOf(const JingleRecord& j) {
    if (j.Path.empty()) {
        return ButtonState::empty;
    }
    if (j.MissingFile) {
        return ButtonState::missing;
    }
    return j.Playing ? ButtonState::playing : ButtonState::filled;
}

struct MenuBuilder {
    std::vector<MenuItem> items;
    void add(const char* name, bool shown, std::function<void()> chosen, bool enabled = true,
             bool ticked = false) {
        if (shown) {
            const std::string key = "m" + std::string(name);
            const std::string text = Ln(key);
            items.push_back({name, text.empty() ? name : text, enabled, ticked, std::move(chosen)});
        }
    }
    void line() {
        if (!items.empty() && items.back().caption != "-") {
            items.push_back({"mnuspc2", "-", true, false, {}});
        }
    }
    void open() {
        while (!items.empty() && items.back().caption == "-") {
            items.pop_back();
        }
        popupMenu(frmMain().window, items);
    }
};

void copyOrCut(const char* mode) {
    setClipboard(btCaption(Jingle(MenuJ).Path));
    clMove(MenuJ, mode);
}

void editEffects() {
    if (!Jingle(MenuJ).Path.empty()) {
        SelectorsOn = true;
        PaintButton(MenuJ, Shaded.fx, GetForeColor(Shaded.fx, "jingle"));
        clFXSet(MenuJ);
    }
}

void colour() {
    SelectorsOn = true;
    OptionCode = "co";
    clColorSet(MenuJ);
}

}  // namespace

void OpenJingleMenu(int index) {
    guarded("frmMain.OpenJingleMenu", [&] {
        if (!BuildSelJ(index)) {
            ckJingleMenu();
            return;
        }
        const JingleRecord& j = Jingle(index);
        const ButtonState state = stateOf(j);
        const JingleButton* b = Button(index);
        const bool filled = state == ButtonState::filled;
        const bool playing = state == ButtonState::playing;
        const bool missing = state == ButtonState::missing;
        const bool noSeq = j.Seq == 0;
        const bool locked = HasPlaylistMark(index, 'K') || j.Kind == SlotKind::playlist;
        MenuJ = index;
        SelHasPlaylist = SelectorsShown &&
                         std::any_of(SelJ.begin(), SelJ.end(), [](int i) { return HasPlaylistMark(i, 'P'); });
        const bool single = !SelHasPlaylist;

        MenuBuilder menu;
        menu.add(
            "mnuAss", !playing && single, [] { clAssign(MenuJ); }, !locked);
        menu.add(
            "mnuClr", filled || missing || j.Kind == SlotKind::playlist, [] { ClearSelection(); },
            !HasPlaylistMark(index, 'K'));
        menu.line();
        menu.add("mnuCopy", filled && single, [] { copyOrCut("copy"); });
        menu.add(
            "mnuCut", filled && single, [] { copyOrCut("cut"); }, !locked);
        menu.add(
            "mnuPaste", !playing && MoveSrcJ >= 0 && single, [] { clMove(MenuJ, "paste"); }, !locked);
        menu.add("mnuRename", filled && single, [] { clRename(MenuJ); });
        menu.add("mnuReloc", missing && !j.Unplayable && single, [] { clReloc(MenuJ); });
        menu.line();
        menu.add("mnuCol", (filled || locked) && single, colour);
        menu.add(
            "mnuLoop", filled && single, [] { clLoopSet(MenuJ); }, !locked, j.Loop != 0);
        menu.add(
            "mnuSeq", filled && single, [] { clSeqSet(MenuJ); }, !locked, j.Seq != 0);
        menu.add(
            "mnuAutoRep", filled && single, [] { clAutoRepSet(MenuJ); }, noSeq,
            j.PlayMod == PlayMode::autoRepeat);
        menu.add(
            "mnuTouch", filled && single, [] { clTouchSet(MenuJ); }, noSeq, j.PlayMod == PlayMode::touch);
        menu.add(
            "mnuPlayStop", filled && single, [] { clPlayStopSet(MenuJ); }, noSeq,
            j.PlayMod == PlayMode::playStop);
        menu.add(
            "mnuNoStop", filled && single, [] { clNoStopSet(MenuJ); }, noSeq, j.PlayMod == PlayMode::noStop);
        menu.add("mnuTa", (filled || playing) && single, [] { PlayAfterAnnouncement(MenuJ); });
        menu.add("mnuFX", (filled || playing) && single, editEffects, true,
                 b != nullptr && b->fx_Jingle.visible);
        menu.add(
            "mnuMIDI", !SelectorsShown && MidiLearnOffered(), [] { clMIDI("b_Jingle", MenuJ); }, true,
            HasMIDIAssignment(index));
        menu.add("mnuLockedBy", locked && !SelectorsShown, [] { clLockedBy(MenuJ); });
        const bool listable = !j.MissingFile && j.Loop == 0 && noSeq && !SelectorsShown;
        if (PlaylistsEnabled && listable) {
            menu.items.push_back(
                {"mnuPlaylist", PlaylistMenuText(index), true, false, [] { clPlaylist(MenuJ); }});
        }
        menu.line();
        menu.add("mnuJPath", filled || playing || (missing && j.Unplayable),
                 [] { openDocument(GetPath(GetFullPath(Jingle(MenuJ).Path))); });
        menu.add("mnuASDir", FolderExists(settings.SampleDir), [] { openDocument(settings.SampleDir); });
        menu.open();
    });
}

void ckJingleMenu() {
    guarded("frmMain.ckJingleMenu", [] {
        SelJ.clear();
        bool playlist = false;
        for (const int i : LiveJingles()) {
            const JingleButton* b = Button(i);
            if (b != nullptr && b->ckJingSel.value == 1) {
                SelJ.push_back(i);
                playlist = playlist || Jingle(i).Kind == SlotKind::playlist;
            }
        }
        if (SelJ.empty()) {
            return;
        }
        MenuJ = SelJ.front();
        MenuBuilder menu;
        menu.add("mnuCol", true, colour);
        menu.add("mnuClr", true, [] { ClearSelection(); });
        menu.line();
        menu.add("mnuLoop", !playlist, [] { clLoopSet(MenuJ); });
        menu.add("mnuSeq", !playlist, [] { clSeqSet(MenuJ); });
        menu.add("mnuAutoRep", !playlist, [] { clAutoRepSet(MenuJ); });
        menu.add("mnuTouch", !playlist, [] { clTouchSet(MenuJ); });
        menu.add("mnuPlayStop", !playlist, [] { clPlayStopSet(MenuJ); });
        menu.add("mnuNoStop", !playlist, [] { clNoStopSet(MenuJ); });
        menu.line();
        menu.add("mnuLoudness", !playlist, [] { BringToLoudness(SelJ); });
        if (!playlist) menu.items.back().caption = LoudnessItem();
        menu.open();
    });
}

}  // namespace zv
