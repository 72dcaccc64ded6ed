#include "ui/edit/jingle_menu_table.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace zv {

namespace {

/// A cell of the table.
enum class Shown : std::uint8_t {
    no,
    yes,
    unplayable,  ///< the file is there and cannot be played
    lost,        ///< the file is not there
    carrying,    ///< something was cut or copied
};
using enum Shown;

struct MenuRow {
    std::string_view name;
    std::array<Shown, 4> shown;  ///< by ButtonState
};

// In the order of the menu. "-" parts what stands before it from what stands behind.
constexpr std::array kRows = std::to_array<MenuRow>({
    {"mnuAss", {yes, yes, yes, no}},
    {"mnuClr", {no, yes, yes, no}},
    {"-", {yes, yes, yes, yes}},
    {"mnuCopy", {no, no, yes, no}},
    {"mnuCut", {no, no, yes, no}},
    {"mnuPaste", {carrying, carrying, carrying, no}},
    {"mnuRename", {no, no, yes, no}},
    {"mnuReloc", {no, lost, no, no}},
    {"mnuspc2", {no, no, yes, no}},
    {"mnuLockedBy", {no, no, no, no}},
    {"mnuCol", {no, no, yes, no}},
    {"mnuLoop", {no, no, yes, no}},
    {"mnuSeq", {no, no, yes, no}},
    {"mnuAutoRep", {no, no, yes, no}},
    {"mnuTouch", {no, no, yes, no}},
    {"mnuPlayStop", {no, no, yes, no}},
    {"mnuNoStop", {no, no, yes, no}},
    {"mnuTa", {no, no, yes, yes}},
    {"mnuFX", {no, no, yes, yes}},
    {"mnuPlaylist", {yes, yes, yes, yes}},
    {"mnuMIDI", {yes, yes, yes, yes}},
    {"-", {yes, yes, yes, yes}},
    {"mnuJPath", {no, unplayable, yes, yes}},
    {"mnuASDir", {yes, yes, yes, yes}},
});

/// Hidden while a playlist is ticked.
constexpr std::array<std::string_view, 14> kNotForPlaylists{
    "mnuLoop", "mnuSeq",  "mnuCol", "mnuAutoRep", "mnuTouch",  "mnuPlayStop", "mnuNoStop",
    "mnuAss",  "mnuCopy", "mnuCut", "mnuPaste",   "mnuRename", "mnuReloc",    "mnuspc2"};
constexpr std::array<std::string_view, 4> kPlayModes{"mnuAutoRep", "mnuTouch", "mnuPlayStop", "mnuNoStop"};
constexpr std::array<std::string_view, 5> kNotWhileLocked{"mnuLoop", "mnuSeq", "mnuAss", "mnuCut",
                                                          "mnuPaste"};

struct Item {
    MenuEntry entry;
    bool visible = false;
};
using Items = std::vector<Item>;

bool cell(Shown shown, const MenuFacts& f) {
    switch (shown) {
        case no:
            return false;
        case yes:
            return true;
        case unplayable:
            return f.unplayable;
        case lost:
            return !f.unplayable;
        case carrying:
            return f.carrying;
    }
    return false;
}

template <class Change>
void each(Items& items, const auto& names, Change change) {
    for (Item& item : items) {
        if (std::find(std::begin(names), std::end(names), item.entry.name) != std::end(names)) {
            change(item);
        }
    }
}

constexpr auto kHide = [](Item& item) { item.visible = false; };
constexpr auto kShow = [](Item& item) { item.visible = true; };
constexpr auto kDisable = [](Item& item) { item.entry.enabled = false; };

void tick(Items& items, const MenuFacts& f) {
    const auto set = [&](std::string_view name, bool on) {
        each(items, std::array{name}, [&](Item& item) { item.entry.ticked = on; });
    };
    set("mnuFX", f.effects);
    set("mnuLoop", f.loop);
    set("mnuSeq", f.seq);
    set("mnuMIDI", f.midiAssigned);
    for (std::size_t i = 0; i < kPlayModes.size(); ++i) {
        set(kPlayModes[i], static_cast<std::size_t>(f.playMode) == i + 1);
    }
}

const char* playlistCaption(SlotKind kind) {
    switch (kind) {
        case SlotKind::nothing:
            return "mmnuPlaylistNew";
        case SlotKind::stream:
            return "mmnuPlaylistAdd";
        case SlotKind::playlist:
            break;
    }
    return "mmnuPlaylistEdit";
}

/// The rules behind the table, in their order.
void applyRules(Items& items, const MenuFacts& f) {
    using Names = std::vector<std::string_view>;
    if (f.seq) {
        each(items, kPlayModes, kDisable);
    }
    if (f.locked || f.kind == SlotKind::playlist) {
        each(items, Names{"mnuCol", "mnuspc2", "mnuLockedBy"}, kShow);
        each(items, kNotWhileLocked, kDisable);
        if (f.locked) {
            each(items, Names{"mnuClr"}, kDisable);
        } else {
            each(items, Names{"mnuLockedBy"}, kHide);
        }
    }
    each(items, Names{"mnuPlaylist"}, [&](Item& item) {
        item.entry.key = playlistCaption(f.kind);
        item.visible = f.playlistsEnabled && f.state != ButtonState::missing && !f.loop && !f.seq;
    });
    if (f.kind == SlotKind::playlist) {
        each(items, Names{"mnuClr"}, kShow);
    }
    each(items, Names{"mnuASDir"}, [&](Item& item) { item.visible = f.sampleFolder; });
    each(items, Names{"mnuMIDI"}, [&](Item& item) { item.visible = f.midiOffered; });
    if (f.boxes) {
        each(items, Names{"mnuLockedBy", "mnuPlaylist", "mnuMIDI"}, kHide);
        if (f.playlistTicked) {
            each(items, kNotForPlaylists, kHide);
        }
    }
}

bool isLine(const MenuEntry& entry) { return entry.name == "-" || entry.name == "mnuspc2"; }

/// Without what is hidden, and without lines that part nothing.
std::vector<MenuEntry> seen(const Items& items) {
    std::vector<MenuEntry> entries;
    for (const Item& item : items) {
        const bool idle = isLine(item.entry) && (entries.empty() || isLine(entries.back()));
        if (item.visible && !idle) {
            entries.push_back(item.entry);
        }
    }
    while (!entries.empty() && isLine(entries.back())) {
        entries.pop_back();
    }
    return entries;
}

}  // namespace

std::vector<MenuEntry> JingleMenuEntries(const MenuFacts& facts) {
    Items items;
    for (const MenuRow& row : kRows) {
        const std::string name(row.name);
        items.push_back({{.name = name, .key = "m" + name},
                         cell(row.shown[static_cast<std::size_t>(facts.state)], facts)});
    }
    tick(items, facts);
    applyRules(items, facts);
    return seen(items);
}

std::vector<MenuEntry> SelectionMenuEntries(bool playlistTicked) {
    std::vector<MenuEntry> entries;
    for (const char* name : {"mnuClr", "mnuspc2", "mnuCol", "mnuLoop", "mnuSeq", "mnuAutoRep", "mnuTouch",
                             "mnuPlayStop", "mnuNoStop"}) {
        const std::string text(name);
        if (!playlistTicked || text == "mnuClr" || text == "mnuspc2" || text == "mnuCol") {
            entries.push_back({.name = text, .key = "m" + text});
        }
    }
    return entries;
}

}  // namespace zv
