#include "ui/edit/history.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "audio/open_palette.h"
#include "audio/streams.h"
#include "model/actions.h"
#include "model/held_palette.h"
#include "model/history.h"
#include "model/jingle.h"
#include "model/palette_files.h"
#include "model/slot_keys.h"
#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/palette_settings.h"
#include "startup/stores.h"
#include "ui/edit/leave_palette.h"
#include "ui/edit/palette_list.h"
#include "ui/edit/undo.h"
#include "ui/edit/undo_files.h"
#include "ui/edit/unsaved.h"
#include "ui/records/main_window.h"
#include "ui/windows/history_window.h"
#include "ui/windows/midi_learn.h"

namespace zv {

namespace {

using Lines = std::vector<cImpulse::Line>;

std::vector<HistoryEntry> shown;  ///< rows of the list

std::string reasonText(HistoryReason reason) {
    const std::vector<std::string> texts = Split(Ln("hsReasons"), ",");
    const auto index = static_cast<std::size_t>(reason);
    return index < texts.size() ? texts[index] : std::string();
}

std::string rowText(const HistoryEntry& entry) {
    const std::string name = entry.isFile() ? GetFileName(entry.name) : entry.name;
    return entry.date + "   " + name + "   " + reasonText(entry.reason);
}

/// The same palette or the hot jingles as they are now: the records where they are open, else the file.
Lines present(const HistoryEntry& entry) {
    if (entry.hot || SameText(entry.name, HeldPalette())) {
        return LinesOfRecords(entry.hot);
    }
    return PaletteStore.GetSectionLines(entry.name);
}

std::multiset<std::string> titles(const Lines& lines) {
    std::multiset<std::string> out;
    for (const auto& [key, value] : lines) {
        if (key.starts_with("Path_")) {
            out.insert(GetFileName(value));
        }
    }
    return out;
}

std::string listed(const char* key, const std::multiset<std::string>& names) {
    constexpr std::size_t kMost = 8;
    if (names.empty()) {
        return {};
    }
    std::string text = Ln(key);
    std::size_t count = 0;
    for (const std::string& name : names) {
        text += (count == 0 ? " " : ", ") + name;
        if (++count == kMost && names.size() > kMost) {
            return text + ", ... (" + std::to_string(names.size()) + ")\r\n";
        }
    }
    return text + "\r\n";
}

std::multiset<std::string> less(const std::multiset<std::string>& from,
                                const std::multiset<std::string>& what) {
    std::multiset<std::string> out;
    std::set_difference(from.begin(), from.end(), what.begin(), what.end(), std::inserter(out, out.end()));
    return out;
}

/// Files of the jingles whose slot has other lines in `now`, though the file is in both.
std::multiset<std::string> changed(const Lines& then, const Lines& now) {
    std::multiset<std::string> out;
    const auto there = titles(now);
    for (const auto& [key, value] : then) {
        if (!key.starts_with("Path_") || !there.contains(GetFileName(value))) {
            continue;
        }
        const std::string ending = key.substr(key.find('_'));
        const auto slotOf = [&](const Lines& lines) {
            std::set<cImpulse::Line> own;
            std::copy_if(lines.begin(), lines.end(), std::inserter(own, own.end()),
                         [&](const cImpulse::Line& line) { return line.first.ends_with(ending); });
            return own;
        };
        if (slotOf(then) != slotOf(now)) {
            out.insert(GetFileName(value));
        }
    }
    return out;
}

std::string difference(const HistoryEntry& entry) {
    if (entry.isFile()) {
        return Ln(FileExists(GetFullPath(entry.name)) ? "hsFileThere" : "hsFileGone") + ": " + entry.name;
    }
    const Lines now = present(entry);
    const auto before = titles(entry.lines), after = titles(now);
    const std::string text = listed("hsMissing", less(before, after)) +
                             listed("hsAdded", less(after, before)) +
                             listed("hsChanged", changed(entry.lines, now));
    return text.empty() ? Ln("hsSame") : text;
}

const HistoryEntry* selected() {
    const int row = frmHistory().lstHistory.listIndex;
    return row >= 0 && row < static_cast<int>(shown.size()) ? &shown[static_cast<std::size_t>(row)] : nullptr;
}

void showDifference() {
    const HistoryEntry* entry = selected();
    frmHistory().lblDifference.caption = entry == nullptr ? std::string() : difference(*entry);
    frmHistory().btBack.enabled = entry != nullptr;
}

void fill() {
    HistoryWindow& w = frmHistory();
    shown = HistoryEntries();
    std::vector<std::string> rows;
    for (const HistoryEntry& entry : shown) {
        rows.push_back(rowText(entry));
    }
    w.lstHistory.items = rows;
    w.lstHistory.listIndex = rows.empty() ? -1 : 0;
    showDifference();
}

/// Opens the palette of that name; one that is not in the file any more begins empty, under its name.
void goTo(const std::string& name) {
    if (SameText(name, HeldPalette())) {
        return;
    }
    SelectPalette(name);
    paletteSettings.PaletteIndex = name;
    frmMain().display.txtDisPal.caption = name;
    OpenFile(name);
}

/// The records become those of the state, as edits that are not saved. What sounds keeps its record.
void bringLinesBack(const HistoryEntry& entry) {
    if (!entry.hot) {
        goTo(entry.name);
        KeepUnsavedPalette();
    }
    const UndoStep step("unHistory");
    const int first = entry.hot ? kPaletteSlots : 0;
    const int end = entry.hot ? kJingles : kPaletteSlots;
    for (int i = first; i < end; ++i) {
        if (!Jingle(i).Playing) {
            openNames(i, SlotKeys(entry.lines, i - first));
            openStreams(i);
        }
    }
    MarkPalToSave();
}

void bringBack() {
    const HistoryEntry* chosen = selected();
    if (chosen == nullptr) {
        return;
    }
    const HistoryEntry entry = *chosen;
    if (!entry.isFile()) {
        bringLinesBack(entry);
        frmHistory().form.close();
        return;
    }
    if (!BringFileBack(entry)) {
        ErrDisp("no", 1, Ln("hsFailed") + ": " + entry.name);
        return;
    }
    OpenMissing();
    fill();
}

}  // namespace

void ShowHistory() {
    guarded("frmHistory.Form_Load", [] {
        HistoryWindow& w = frmHistory();
        w.onChosen = showDifference;
        w.onBack = bringBack;
        fill();
        w.form.open(&w.lstHistory);
    });
}

void lstPalMenu() {
    guarded(".lstPal_Menu", [] {
        SelectPalette(
            paletteSettings.PaletteIndex);  // the right button takes the selection away beside the rows
        std::vector<MenuItem> items{
            {.name = "mnuEarlierStates", .caption = Ln("hsMenu"), .chosen = ShowHistory}};
        const auto offer = [&](const char* name, const char* key, const std::string& what, Action action) {
            if (!what.empty()) {
                items.push_back({.name = name, .caption = Ln(key) + ": " + what, .chosen = [action] {
                                     perform(action, 0, -1);
                                 }});
            }
        };
        offer("mnuUndo", "unMenuUndo", UndoText(), Action::undo);
        offer("mnuRedo", "unMenuRedo", RedoText(), Action::redo);
        if (MidiLearnOffered()) {
            items.push_back(
                {.name = "mnuMIDI", .caption = Ln("mmnuMIDI"), .chosen = [] { clMIDI("lstPal", -1); }});
        }
        popupMenu(frmMain().window, items);
    });
}

}  // namespace zv
