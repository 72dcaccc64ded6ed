#include "model/palette_files.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "model/held_palette.h"
#include "model/history.h"
#include "model/palette_lines.h"
#include "model/pending_removals.h"
#include "model/state.h"
#include "model/upcalls.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/palette_settings.h"
#include "startup/stores.h"
#include "startup/upcalls.h"

namespace zv {

ModelUpcalls modelUpcalls;

namespace {

/// Tells which files could not be imported. Called after the save, whose own messages would hide it.
void sayLockedFiles() {
    const auto locked = TakeLockedFiles();
    if (locked.empty()) return;
    std::string names;
    for (const std::string& name : locked) names += (names.empty() ? " " : ", ") + name;
    const bool many = locked.size() > 1;
    ErrDisp("no", 0,
            Ln(many ? "mMslockedFiles1" : "mMslockedFile1") + names + ". " +
                Ln(many ? "mMslockedFiles2" : "mMslockedFile2"));
}

bool sayWhetherWritten(bool written, const std::string& file) {
    if (!written) ErrDisp("no", 1, Ln("mSaveFailed") + " " + file);
    return written;
}

std::vector<cImpulse::Line> storedPalette(const std::string& name) {
    return PaletteStore.GetSectionLines(name);
}
std::vector<cImpulse::Line> storedHotJingles() { return HotStore.GetSectionLines(kHotSection); }

std::vector<cImpulse::Line> paletteLines(Purpose purpose) {
    auto lines = SlotLines(0, kPaletteSlots - 1, storedPalette(HeldPalette()), purpose);
    if (lines.empty()) lines.emplace_back(kEmptyPaletteKey, "Yes");
    return lines;
}

std::vector<cImpulse::Line> hotLines(Purpose purpose) {
    return SlotLines(kPaletteSlots, kJingles - 1, storedHotJingles(), purpose);
}

/// The sound files that `lines` name, without their folders: an import changes these.
std::multiset<std::string> filesOf(const std::vector<cImpulse::Line>& lines) {
    std::multiset<std::string> files;
    for (const auto& [key, value] : lines)
        if (key.starts_with("Path_")) files.insert(LowerCase(GetFileName(value)));
    return files;
}

/// Files of `from` that `to` has less often.
std::multiset<std::string> without(const std::multiset<std::string>& from,
                                   const std::multiset<std::string>& to) {
    std::multiset<std::string> rest;
    std::set_difference(from.begin(), from.end(), to.begin(), to.end(), std::inserter(rest, rest.end()));
    return rest;
}

bool share(const std::multiset<std::string>& a, const std::multiset<std::string>& b) {
    return std::any_of(a.begin(), a.end(), [&](const std::string& file) { return b.contains(file); });
}

/// A jingle that goes from the palette to the hot jingles must stand there before it leaves its section.
bool hotJinglesFirst(const std::vector<cImpulse::Line>& palette, const std::vector<cImpulse::Line>& hot) {
    const auto paletteBefore = filesOf(storedPalette(HeldPalette()));
    const auto hotBefore = filesOf(storedHotJingles());
    return share(without(paletteBefore, filesOf(palette)), without(filesOf(hot), hotBefore));
}

/// Jingles of this palette that were cut while another one was open stand elsewhere now.
void emptyMovedSlots(const std::string& name) {
    for (const Removal& removal : std::vector<Removal>(PendingRemovals())) {
        if (!SameText(removal.section, name) || removal.slot < 0 || removal.slot >= kPaletteSlots) continue;
        const JingleRecord& jingle = Jingle(removal.slot);
        if (!jingle.Playing && SameText(GetRelPath(jingle.Path), GetRelPath(removal.path)))
            callUp(modelUpcalls.slotMoved, removal.slot);
    }
}

bool workOffRemovals() {
    bool removed = true;
    for (const Removal& removal : std::vector<Removal>(PendingRemovals())) {
        if (SameText(removal.section, HeldPalette()) || RemJing(removal.section, removal.slot, removal.path))
            DropRemoval(removal.section, removal.slot);
        else
            removed = false;
    }
    return removed;
}

/// A copy of what the section holds, when the save takes files out of it or puts another palette in its place.
void keepFormerSection(const std::string& name, const std::vector<cImpulse::Line>& lines) {
    const auto former = storedPalette(name);
    const bool another = !SameText(name, HeldPalette());
    if (another ? !former.empty() : !without(filesOf(former), filesOf(lines)).empty())
        KeepSection(another ? HistoryReason::replaced : HistoryReason::saved, name, former);
}

/// Slots 96 to 119 into the section "HotJingles", as part of every save of a palette.
bool CloseFileHotJingles(const std::vector<cImpulse::Line>& lines) {
    const auto former = storedHotJingles();
    if (!without(filesOf(former), filesOf(lines)).empty())
        KeepSection(HistoryReason::saved, kHotSection, former, true);
    return sayWhetherWritten(HotStore.PutSection(kHotSection, lines, true), HotFile);
}

bool writePalette(const std::string& name, const std::vector<cImpulse::Line>& lines) {
    // Only the open palette can be renamed. Its old section goes in the same rewrite.
    const std::string old = SaveMode == "rename" ? HeldPalette() : std::string();
    keepFormerSection(name, lines);
    if (!old.empty() && !SameText(old, name)) keepFormerSection(old, lines);
    // The section is replaced where its old one has to go; otherwise the keys are written over what is there.
    const bool replace = SaveMode == "save" || SameText(old, name);
    const bool written = old.empty() ? PaletteStore.PutSection(name, lines, replace)
                                     : PaletteStore.MoveSection(old, name, lines, replace);
    return sayWhetherWritten(written, PalFile);
}

}  // namespace

bool CloseFile(const std::string& name) {
    bool written = false;
    guarded("modMain.CloseFile", [&] {
        if (name.empty() || PaletteLoading()) return;
        // A save of the palette that is being left does not turn the choice of the next one back.
        const bool chosenAhead =
            !paletteSettings.PaletteIndex.empty() && !SameText(paletteSettings.PaletteIndex, HeldPalette());
        const std::string shown = chosenAhead ? paletteSettings.PaletteIndex : name;
        ErrDisp("save");
        emptyMovedSlots(SaveMode == "rename" ? HeldPalette() : name);
        const auto lines = paletteLines(Purpose::save);
        const auto hot = hotLines(Purpose::save);
        const bool hotFirst = hotJinglesFirst(lines, hot);
        if (hotFirst && !CloseFileHotJingles(hot)) return;
        if (!writePalette(name, lines)) return;
        if (SaveMode == "rename") RenameInRemovals(HeldPalette(), name);
        callUp(modelUpcalls.paletteNamed, HeldPalette(), name);
        HoldPalette(name);
        guarded("modMain.CloseFile", [&] {
            callUp(modelUpcalls.paletteListChanged, shown);
            callUp(modelUpcalls.showPaletteName, shown);
        });
        written = hotFirst || CloseFileHotJingles(hot);
        // What was cut elsewhere leaves its palette once its new place is on disk.
        written = written && workOffRemovals();
        if (written) ErrDisp("hide");
        SaveMode.clear();
    });
    guarded("modMain.CloseFile", sayLockedFiles);
    return written;
}

void KeepUnsavedPalette() {
    guarded("modMain.KeepUnsavedPalette", [] {
        const auto stored = storedPalette(HeldPalette());
        const auto lines = LinesOfRecords(false);
        const bool stillEmpty = stored.empty() && lines.front().first == kEmptyPaletteKey;
        if (lines != stored && !stillEmpty) KeepSection(HistoryReason::unsaved, HeldPalette(), lines);
    });
}

void KeepUnsavedHotJingles() {
    guarded("modMain.KeepUnsavedHotJingles", [] {
        const auto lines = LinesOfRecords(true);
        if (lines != storedHotJingles()) KeepSection(HistoryReason::unsaved, kHotSection, lines, true);
    });
}

std::vector<cImpulse::Line> LinesOfRecords(bool hot) {
    auto lines = hot ? hotLines(Purpose::look) : paletteLines(Purpose::look);
    std::erase_if(lines, [](const cImpulse::Line& line) { return line.second.empty(); });
    return lines;
}

void DeletePalette(const std::string& name) {
    guarded("modMain.DeletePalette", [&] {
        // Several sections of that name are one palette: none of them comes to light when the first is gone.
        for (std::size_t before = 0; PaletteStore.Bytes().size() != before;) {
            before = PaletteStore.Bytes().size();
            KeepSection(HistoryReason::deleted, name, storedPalette(name));
            PaletteStore.DeleteSection(name);
        }
    });
}

bool PalFileTest() { return PaletteStore.Bytes().find('[') != std::string_view::npos; }

}  // namespace zv
