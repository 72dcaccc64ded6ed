#include "ui/edit/playlists.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <utility>
#include <vector>

#include "audio/sounding.h"
#include "audio/streams.h"
#include "model/jingle.h"
#include "model/playlists.h"
#include "model/state.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/display_settings.h"
#include "startup/settings/palette_list_settings.h"
#include "startup/settings/palette_settings.h"
#include "startup/stores.h"
#include "ui/edit/remove.h"
#include "ui/edit/search.h"
#include "ui/edit/undo.h"
#include "ui/edit/unsaved.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/screen/button_faces.h"
#include "ui/screen/captions.h"
#include "ui/screen/display_message.h"
#include "ui/windows/playlist_windows.h"

namespace zv {

namespace {

constexpr int kNone = 999;  // of lblJID and lblJIDLocked
constexpr int kBlinks = 6;
constexpr const char* kBound = "P";
constexpr const char* kLocked = "K";
constexpr const char* kBeforeCaption = " (";
constexpr const char* kBeforePalette = " > ";

// The button that the windows were opened for: its index, what it held, and the locked one.
int lblJID = kNone, lblJIDLocked = kNone;
SlotKind lblJIDplaylist = SlotKind::nothing;
std::string section;  // of the playlist that is edited, empty for a new one
int blinksLeft = 0;

/// "12 (News Sting > Morning)".
std::string lineOf(const PlaylistItem& item) {
    const bool hot = item.palette == kHotSection;
    const std::string path =
        (hot ? HotStore : PaletteStore).GetValue("Path_" + std::to_string(item.slot), 0, item.palette);
    return std::to_string(item.slot) + kBeforeCaption + btCaption(path) + kBeforePalette + item.palette + ")";
}

PlaylistItem itemOfLine(const std::string& line) {
    const std::string before = kBeforePalette;
    const std::size_t palette = line.rfind(before);
    PlaylistItem item{std::atoi(line.c_str()), {}};
    if (palette != std::string::npos) {
        item.palette = line.substr(palette + before.size());
        if (!item.palette.empty()) item.palette.pop_back();  // the bracket
    }
    return item;
}

PlaylistItem itemOfButton(int index) { return ItemOf(index, paletteSettings.PaletteIndex); }

void setMark(int index, const char* mark) {
    JingleButton* b = Button(index);
    if (b == nullptr) return;
    b->picPlaylist.visible = mark != nullptr;
    if (mark != nullptr) b->lblPlaylist.caption = std::string(mark);
}

void addLine(const std::string& line) {
    std::vector<std::string> lines = frmPlaylist().lstPlaylist.items;
    lines.push_back(line);
    frmPlaylist().lstPlaylist.items = std::move(lines);
}

void selectLast() {
    Control& list = frmPlaylist().lstPlaylist;
    list.listIndex = static_cast<int>(list.items().size()) - 1;
}

/// Selects the line of the locked jingle.
void HighlightItems() {
    Control& list = frmPlaylist().lstPlaylist;
    const PlaylistItem wanted = itemOfButton(lblJIDLocked);
    const std::vector<std::string>& lines = list.items;
    const auto found =
        std::ranges::find_if(lines, [&](const std::string& line) { return itemOfLine(line) == wanted; });
    list.listIndex = found == lines.end() ? -1 : static_cast<int>(found - lines.begin());
}

void openEditor(const Playlist& playlist, const std::string& title) {
    PlaylistWindow& w = frmPlaylist();
    frmPlaylistSelector().form.close();
    section = playlist.section;
    w.form.window.caption = title;
    w.txtPL.caption = playlist.name;
    w.ckAutoMix.value = playlist.automix ? 1 : 0;
    w.lstPlaylist.items = {};
    w.lstPlaylist.listIndex = -1;
    for (const PlaylistItem& item : playlist.items) addLine(lineOf(item));
    w.form.open(&w.txtPL);
}

/// The jingle that is to join a playlist, as its last line.
void joinJingle() {
    if (lblJID == kNone || lblJIDplaylist != SlotKind::stream) return;
    addLine(lineOf(itemOfButton(lblJID)));
    selectLast();
}

std::string titleNow() { return lblJID == kNone ? Ln("mmnuLockedBy") : PlaylistMenuText(lblJID); }

/// The names and sections of the playlists; those that hold `item` when one is given.
void lstPLRefresh(const PlaylistItem* item) {
    PlaylistSelector& s = frmPlaylistSelector();
    std::vector<std::string> names, sections;
    for (const Playlist& playlist : AllPlaylists()) {
        if (item != nullptr && std::ranges::find(playlist.items, *item) == playlist.items.end()) continue;
        names.push_back(playlist.name);
        sections.push_back(playlist.section);
    }
    s.lstPL.items = std::move(names);
    s.lstPLRef.items = std::move(sections);
    s.lstPL.listIndex = -1;
}

void openSelector(const PlaylistItem* item) {
    PlaylistSelector& s = frmPlaylistSelector();
    s.lstPL.backColor = frmMain().palettes.lstPal.backColor();
    s.lstPL.foreColor = frmMain().palettes.lstPal.foreColor();
    lstPLRefresh(item);
    s.btNew.enabled = item == nullptr;
    s.btOpen.enabled = false;
    s.form.open(&s.lstPL);
}

void lstPL_Click() {
    PlaylistSelector& s = frmPlaylistSelector();
    const int row = s.lstPL.listIndex;
    if (row < 0 || static_cast<std::size_t>(row) >= s.lstPLRef.items().size()) return;
    const Playlist playlist = ReadPlaylist(s.lstPLRef.items()[static_cast<std::size_t>(row)]);
    openEditor(playlist, titleNow());
    if (lblJIDLocked != kNone)
        HighlightItems();
    else
        joinJingle();
}

void btNew_Click() { openEditor({}, titleNow()); }

void blinkName() {
    blinksLeft = kBlinks;
    frmPlaylist().TimerBlink.restart();
    setFocus(frmPlaylist().txtPL);
}

void blinkTick() {
    PlaylistWindow& w = frmPlaylist();
    if (--blinksLeft <= 0) {
        w.TimerBlink.stop();
        w.txtPL.backColor = kNoColour;
        w.txtPL.foreColor = kNoColour;
        return;
    }
    const bool lit = blinksLeft % 2 != 0;
    w.txtPL.backColor = lit ? paletteListSettings.PalColor : displaySettings.DispBackCol;
    w.txtPL.foreColor = lit ? displaySettings.DispBackCol : paletteListSettings.PalColor;
}

void bind(int index, const Playlist& playlist) {
    if (Sounds(index)) {
        ShowDisplayMessage(Ln("mRefPlaying"));
        return;
    }
    const UndoStep step("unPlaylist");
    const std::string colour = Jingle(index).BTNCol;
    BindSlot(index, playlist.section, colour);
    MarkPalToSave();
}

void unbind(int index) {
    const UndoStep step("unPlaylist");
    ClearButton(index);
    setMark(index, nullptr);
    MarkPalToSave();
}

void btOK_Click() {
    PlaylistWindow& w = frmPlaylist();
    if (Trim(w.txtPL.caption()).empty()) {
        blinkName();
        return;
    }
    Playlist playlist;
    playlist.section = section;
    playlist.name = w.txtPL.caption;
    playlist.automix = w.ckAutoMix.value == 1;
    for (const std::string& line : w.lstPlaylist.items()) playlist.items.push_back(itemOfLine(line));
    if (!KeepPlaylist(playlist)) {
        messageBox(LnBox("plTooLong"), "Zentrova", BoxKind::warning, BoxButtons::ok);
        return;
    }
    w.form.close();
    LoadLockedFiles();
    const int index = lblJID;
    const SlotKind kind = lblJIDplaylist;
    for (const int i : LiveJingles()) PLicon(i);
    if (index == kNone) return;
    // A jingle that joined stays a jingle: the playlist holds it by its button.
    const bool joined = kind == SlotKind::stream &&
                        std::ranges::find(playlist.items, itemOfButton(index)) != playlist.items.end();
    if (joined) return;
    if (!playlist.items.empty())
        bind(index, playlist);
    else if (kind == SlotKind::playlist)
        unbind(index);
}

/// What the search has found joins the list.
void addFound(int slot, const std::string& palette) {
    addLine(lineOf({slot, palette}));
    selectLast();
    setFocus(frmPlaylist().lstPlaylist);
}

void btRemove_Click() {
    Control& list = frmPlaylist().lstPlaylist;
    std::vector<std::string> lines = list.items;
    const int row = list.listIndex;
    if (row < 0 || static_cast<std::size_t>(row) >= lines.size()) return;
    lines.erase(lines.begin() + row);
    list.items = lines;
    list.listIndex = std::min(row, static_cast<int>(lines.size()) - 1);
}

}  // namespace

std::string PlaylistMenuText(int index) {
    switch (Jingle(index).Kind) {
        case SlotKind::stream:
            return Ln("mmnuPlaylistAdd");
        case SlotKind::playlist:
            return Ln("mmnuPlaylistEdit");
        case SlotKind::nothing:
            break;
    }
    return Ln("mmnuPlaylistNew");
}

void clPlaylist(int index) {
    guarded("modClick.clPlaylist", [&] {
        if (index < 0 || index >= kJingles || Jingle(index).PlayingOtherPal) return;
        lblJIDplaylist = Jingle(index).Kind;
        lblJID = index;
        lblJIDLocked = kNone;
        if (lblJIDplaylist == SlotKind::playlist)
            EditPlaylist(index);
        else
            openSelector(nullptr);
    });
}

void EditPlaylist(int index) {
    guarded("modClick.EditPlaylist", [&] {
        if (HasPlaylistMark(index, *kLocked)) {
            clLockedBy(index);
            return;
        }
        lblJID = index;
        lblJIDplaylist = Jingle(index).Kind;
        openEditor(ReadPlaylist(Jingle(index).Playlist), PlaylistMenuText(index));
    });
}

void clLockedBy(int index) {
    guarded("modClick.clLockedBy", [&] {
        lblJID = kNone;
        lblJIDplaylist = SlotKind::nothing;
        lblJIDLocked = index;
        const PlaylistItem item = itemOfButton(index);
        openSelector(&item);
    });
}

void PLicon(int index) {
    if (Jingle(index).Kind == SlotKind::playlist) return;
    const bool locked = PlaylistsEnabled && IsLocked(itemOfButton(index));
    setMark(index, locked ? kLocked : nullptr);
}

void ShowBound(int index) {
    JingleRecord& j = Jingle(index);
    setMark(index, kBound);
    if (JingleButton* b = Button(index)) {
        b->b_Jingle.caption = Ampersand(ReadPlaylist(j.Playlist).name);
        b->b_Jingle.toolTip = std::string();
        HideMarks(index);
    }
    ShowState(index, false);
    const auto [back, fore] = RestColours(index);
    PaintButton(index, back, fore);
}

void WirePlaylists() {
    PlaylistSelector& s = frmPlaylistSelector();
    PlaylistWindow& w = frmPlaylist();
    const auto on = [](const char* procedure, void (*body)()) {
        return [procedure, body] { guarded(procedure, body); };
    };
    // The keyboard's way through the list chooses nothing yet.
    s.lstPL.onMouseUp = [](const MouseEvent& e) {
        if (e.button == MouseButton::left) guarded("frmPlaylistSelector.lstPL_Click", lstPL_Click);
    };
    s.lstPL.onChange = [] {
        frmPlaylistSelector().btOpen.enabled = frmPlaylistSelector().lstPL.listIndex() >= 0;
    };
    s.btOpen.onClick = on("frmPlaylistSelector.btOpen_Click", lstPL_Click);
    s.btNew.onClick = on("frmPlaylistSelector.btNew_Click", btNew_Click);
    s.btCancel.onClick = on("frmPlaylistSelector.btCancel_Click", [] { frmPlaylistSelector().form.close(); });
    w.btAdd.onClick = on("frmPlaylist.btAdd_Click", [] { SearchForPlaylist(addFound); });
    w.btRemove.onClick = on("frmPlaylist.btRemove_Click", btRemove_Click);
    w.btOK.onClick = on("frmPlaylist.btOK_Click", btOK_Click);
    w.btCancel.onClick = on("frmPlaylist.btCancel_Click", [] { frmPlaylist().form.close(); });
    w.form.onClosed = [] {
        if (ForPlaylist) CloseSearchBox();  // there is no list any more that a jingle could join
    };
    w.TimerBlink.handler = on("frmPlaylist.TimerBlink_Timer", blinkTick);
}

}  // namespace zv
