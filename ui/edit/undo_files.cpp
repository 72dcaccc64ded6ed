#include "ui/edit/undo_files.h"

#include <algorithm>
#include <set>

#include "audio/streams.h"
#include "model/held_palette.h"
#include "model/history.h"
#include "model/jingle.h"
#include "model/palette_files.h"
#include "model/palette_lines.h"
#include "model/rename_sound.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/stores.h"

namespace zv {

namespace {

using Lines = std::vector<cImpulse::Line>;

constexpr const char* kPathStem = "Path_";

/// Keys and values of the paths but for that of `slot`.
std::set<cImpulse::Line> otherPaths(const Lines& lines, int slot) {
    std::set<cImpulse::Line> paths;
    for (const cImpulse::Line& line : lines) {
        if (line.first.starts_with(kPathStem) && line.first != kPathStem + std::to_string(slot)) {
            paths.insert(line);
        }
    }
    return paths;
}

cImpulse& storeOf(bool hot) {
    cImpulse& store = hot ? HotStore : PaletteStore;
    store.SetIniPath(hot ? HotFile : PalFile);
    return store;
}

}  // namespace

std::string FilledText(std::string_view key, const std::string& what) {
    std::string text = Ln(key);
    if (const auto at = text.find("%1"); at != std::string::npos) {
        text.replace(at, 2, what);
    }
    return text;
}

FormerSection SectionBefore(const Removal& removal) {
    return {removal, storeOf(false).GetSectionLines(removal.section)};
}

void BringSectionBack(const FormerSection& former) {
    cImpulse& store = storeOf(false);
    const int slot = former.removal.slot;
    const std::string& section = former.removal.section;
    const Lines now = store.GetSectionLines(section);
    if (now.empty()) {
        return;
    }
    if (otherPaths(now, slot) == otherPaths(former.lines, slot)) {
        store.PutSection(section, former.lines, true);
        return;
    }
    const std::string ending = "_" + std::to_string(slot);
    const auto own = [&](const cImpulse::Line& line) { return line.first.ends_with(ending); };
    if (std::none_of(now.begin(), now.end(), own)) {
        Lines lines = now;
        std::erase_if(lines, [](const cImpulse::Line& line) { return line.first == kEmptyPaletteKey; });
        std::copy_if(former.lines.begin(), former.lines.end(), std::back_inserter(lines), own);
        store.PutSection(section, lines, true);
    }
}

FileRename RenameBefore(const std::string& from, const std::string& to) {
    FileRename renamed{from, to, {}};
    const std::string full = GetFullPath(from), fullTo = GetFullPath(to);
    for (const bool hot : {false, true}) {
        cImpulse& store = storeOf(hot);
        store.ListSections();
        for (int i = 0; i < store.SectionCount(); ++i) {
            const std::string section = store.SectionName(i);
            for (const auto& [key, path] : store.GetSectionLines(section)) {
                const bool otherwise = path != from && IsFileOf(path, full);
                if (key.starts_with(kPathStem) && (otherwise || IsFileOf(path, fullTo))) {
                    renamed.spellings.push_back({hot, section, key, path});
                }
            }
        }
    }
    return renamed;
}

void BringSpellingsBack(const FileRename& renamed) {
    for (const FileRename::Spelling& spelling : renamed.spellings) {
        cImpulse& store = storeOf(spelling.hot);
        if (store.GetValue(spelling.key, 0, spelling.section) == renamed.from) {
            store.PutValue(spelling.key, spelling.path, spelling.section);
        }
    }
}

std::string FileBack(const std::string& path) {
    if (FileExists(GetFullPath(path))) {
        return {};  // it could not be deleted, or another one stands there by now
    }
    const auto entries = HistoryEntries();
    const auto entry = std::find_if(entries.begin(), entries.end(), [&](const HistoryEntry& one) {
        return one.isFile() && one.reason == HistoryReason::deleted && one.name == path;
    });
    const bool there = entry != entries.end() && BringFileBack(*entry);
    return there ? std::string() : Ln("hsFailed") + ": " + path;
}

std::string FileAway(const std::string& path) {
    const std::string full = GetFullPath(path);
    const bool stays = FileExists(full) && !KeepDeletedFile(full);
    return stays ? Ln("unFileStays") + " " + path : std::string();
}

void OpenMissing() {
    for (int i = 0; i < kJingles; ++i) {
        if (Jingle(i).MissingFile) {
            openStreams(i);
        }
    }
}

bool RecordsAreSaved() {
    return LinesOfRecords(false) == storeOf(false).GetSectionLines(HeldPalette()) &&
           LinesOfRecords(true) == storeOf(true).GetSectionLines(kHotSection);
}

}  // namespace zv
