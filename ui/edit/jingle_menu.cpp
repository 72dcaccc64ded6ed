#include "ui/edit/jingle_menu.h"

#include <algorithm>
#include <functional>
#include <map>
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
#include "startup/settings/folders_settings.h"
#include "ui/edit/announcer_tab.h"
#include "ui/edit/assign.h"
#include "ui/edit/colour_picker.h"
#include "ui/edit/jingle_editor.h"
#include "ui/edit/jingle_menu_table.h"
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

void showFile() { showInFolder(GetFullPath(Jingle(MenuJ).Path)); }

/// What an item does with MenuJ.
std::function<void()> actionOf(const std::string& name) {
    static const std::map<std::string, std::function<void()>> actions{
        {"mnuAss", [] { clAssign(MenuJ); }},
        {"mnuClr", [] { ClearSelection(); }},
        {"mnuCopy", [] { copyOrCut("copy"); }},
        {"mnuCut", [] { copyOrCut("cut"); }},
        {"mnuPaste", [] { clMove(MenuJ, "paste"); }},
        {"mnuRename", [] { clRename(MenuJ); }},
        {"mnuReloc", [] { clReloc(MenuJ); }},
        {"mnuCol", colour},
        {"mnuLoop", [] { clLoopSet(MenuJ); }},
        {"mnuSeq", [] { clSeqSet(MenuJ); }},
        {"mnuAutoRep", [] { clAutoRepSet(MenuJ); }},
        {"mnuTouch", [] { clTouchSet(MenuJ); }},
        {"mnuPlayStop", [] { clPlayStopSet(MenuJ); }},
        {"mnuNoStop", [] { clNoStopSet(MenuJ); }},
        {"mnuFX", editEffects},
        {"mnuMIDI", [] { clMIDI("b_Jingle", MenuJ); }},
        {"mnuTa", [] { PlayAfterAnnouncement(MenuJ); }},
        {"mnuLockedBy", [] { clLockedBy(MenuJ); }},
        {"mnuPlaylist", [] { clPlaylist(MenuJ); }},
        {"mnuJPath", showFile},
        {"mnuASDir", [] { openDocument(folderSettings.SampleDir); }},
    };
    const auto found = actions.find(name);
    return found == actions.end() ? std::function<void()>() : found->second;
}

std::vector<MenuItem> itemsOf(const std::vector<MenuEntry>& entries) {
    std::vector<MenuItem> items;
    for (const MenuEntry& entry : entries) {
        const bool line = entry.name == "-" || entry.name == "mnuspc2";
        if (line) {
            items.push_back({entry.name, "-", true, false, {}});
        } else if (auto action = actionOf(entry.name)) {
            items.push_back({entry.name, Ln(entry.key), entry.enabled, entry.ticked, std::move(action)});
        }
    }
    return items;
}

ButtonState stateOf(const JingleRecord& j) {
    if (j.Path.empty() && !j.Playing) {
        return ButtonState::empty;
    }
    if (j.MissingFile) {
        return ButtonState::missing;
    }
    return j.Playing ? ButtonState::playing : ButtonState::filled;
}

MenuFacts factsOf(int index) {
    const JingleRecord& j = Jingle(index);
    const JingleButton* b = Button(index);
    return {.state = stateOf(j),
            .unplayable = j.Unplayable,
            .playMode = j.PlayMod,
            .loop = j.Loop != 0,
            .seq = j.Seq != 0,
            .effects = b != nullptr && b->fx_Jingle.visible,
            .kind = j.Kind,
            .locked = HasPlaylistMark(index, 'K'),
            .carrying = MoveSrcJ >= 0,
            .sampleFolder = FolderExists(folderSettings.SampleDir),
            .midiOffered = MidiLearnOffered(),
            .midiAssigned = HasMIDIAssignment(index),
            .playlistsEnabled = PlaylistsEnabled,
            .boxes = SelectorsShown,
            .playlistTicked = HasPlaylistMark(index, 'P')};
}

}  // namespace

void OpenJingleMenu(int index) {
    guarded("frmMain.OpenJingleMenu", [&] {
        if (!BuildSelJ(index)) {
            ckJingleMenu();
            return;
        }
        MenuJ = index;
        popupMenu(frmMain().window, itemsOf(JingleMenuEntries(factsOf(index))));
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
        if (!SelJ.empty()) {
            MenuJ = SelJ.front();
            std::vector<MenuItem> items = itemsOf(SelectionMenuEntries(playlist));
            if (!playlist) {
                items.push_back({"mnuspc3", "-", true, false, {}});
                items.push_back({"mnuLoudness", LoudnessItem(), true, false, [] { BringToLoudness(SelJ); }});
            }
            popupMenu(frmMain().window, items);
        }
    });
}

}  // namespace zv
