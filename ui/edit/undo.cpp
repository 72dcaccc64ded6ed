#include "ui/edit/undo.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "audio/bring_slot.h"
#include "audio/sounding.h"
#include "audio/streams.h"
#include "model/held_palette.h"
#include "model/jingle.h"
#include "model/pending_removals.h"
#include "model/rename_sound.h"
#include "model/state.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "ui/edit/carried.h"
#include "ui/edit/undo_files.h"
#include "ui/edit/unsaved.h"
#include "ui/records/armed.h"
#include "ui/records/jingle_buttons.h"
#include "ui/screen/captions.h"
#include "ui/screen/display_message.h"

namespace zv {

namespace {

using Contents = std::array<std::optional<PersistedJingle>, kJingles>;

struct SlotChange {
    int slot = 0;
    PersistedJingle before, after;
};

struct Step {
    const char* text = "";
    std::string jingle;  ///< caption of the jingle, or how many
    std::vector<SlotChange> slots;
    std::vector<Removal> removalsBefore, removalsAfter;
    std::vector<FormerSection> sections;  ///< of palettes that lose a jingle, before they do
    std::optional<FileRename> renamed;
    std::vector<PathChange> paths;  ///< of palettes that are not open
    std::string deleted;            ///< path
};

/// The edit that is under way.
struct Under {
    int depth = 0;
    Contents contents;
    Step step;
};
Under under;

struct EditorStep {
    int index = -1;
    std::optional<PersistedJingle> before;
};
EditorStep editor;

std::vector<Step> done, undone;  ///< the last one is next

Contents contentsNow() {
    Contents all;
    for (int i = 0; i < kJingles; ++i) {
        all[static_cast<std::size_t>(i)] = SlotContent(i);
    }
    return all;
}

std::string jingleOf(const std::vector<SlotChange>& slots) {
    std::set<std::string> before, after, moved;
    for (const SlotChange& slot : slots) {
        if (!slot.before.Path.empty()) {
            before.insert(btCaption(slot.before.Path));
        }
        if (!slot.after.Path.empty()) {
            after.insert(btCaption(slot.after.Path));
        }
    }
    std::set_intersection(before.begin(), before.end(), after.begin(), after.end(),
                          std::inserter(moved, moved.end()));
    for (const std::set<std::string>* names : {&moved, &after, &before}) {
        if (names->size() == 1 && (names == &moved || slots.size() == 1)) {
            return *names->begin();
        }
    }
    return FilledText("unSeveral", std::to_string(slots.size()));
}

void push(Step step) {
    step.jingle = jingleOf(step.slots);
    undone.clear();
    done.push_back(std::move(step));
    if (done.size() > kUndoSteps) {
        done.erase(done.begin());
    }
}

/// What the editor has changed so far becomes a step.
void cutEditorStep() {
    std::optional<PersistedJingle> now = SlotContent(editor.index);
    if (now && editor.before) {
        now->Seq = editor.before->Seq;  // is put aside while the editor is open
        if (*now != *editor.before) {
            Step step;
            step.text = "unEditor";
            step.slots.push_back({editor.index, *editor.before, *now});
            push(std::move(step));
        }
    }
    editor.before = std::move(now);
}

void begin(const char* text) {
    if (under.depth++ > 0) {
        return;
    }
    if (editor.index >= 0) {
        cutEditorStep();
    }
    under.contents = contentsNow();
    under.step = Step();
    under.step.text = text;
    under.step.removalsBefore = PendingRemovals();
}

void end() {
    if (--under.depth > 0) {
        return;
    }
    Step& step = under.step;
    for (int i = 0; i < kJingles; ++i) {
        const auto& before = under.contents[static_cast<std::size_t>(i)];
        const auto after = SlotContent(i);
        if (before && after && *before != *after) {
            step.slots.push_back({i, *before, *after});
        }
    }
    if (editor.index >= 0) {
        editor.before = SlotContent(editor.index);
    }
    if (step.slots.empty() && step.paths.empty()) {
        return;
    }
    step.removalsAfter = PendingRemovals();
    for (const Removal& removal : step.removalsAfter) {
        if (std::count(step.removalsBefore.begin(), step.removalsBefore.end(), removal) == 0) {
            step.sections.push_back(SectionBefore(removal));
        }
    }
    push(std::move(step));
}

/// Jingles that were cut out of other palettes: pending again, not pending, or back where a save has taken them out.
void bringRemovals(const Step& step, bool back) {
    const auto& from = back ? step.removalsAfter : step.removalsBefore;
    const auto& to = back ? step.removalsBefore : step.removalsAfter;
    const auto has = [](const std::vector<Removal>& list, const Removal& one) {
        return std::count(list.begin(), list.end(), one) > 0;
    };
    for (const Removal& removal : from) {
        if (has(to, removal)) {
            continue;
        }
        if (has(PendingRemovals(), removal)) {
            DropRemoval(removal.section, removal.slot);
        } else if (back) {
            for (const FormerSection& section : step.sections) {
                if (section.removal == removal) {
                    BringSectionBack(section);
                }
            }
        }
    }
    for (const Removal& removal : to) {
        if (!has(from, removal)) {
            AddRemoval(removal);
        }
    }
}

/// The file gets its other name; empty when that is done, else the reason.
std::string bringName(const Step& step, bool back) {
    if (!step.renamed) {
        return {};
    }
    const FileRename& renamed = *step.renamed;
    const std::string& from = back ? renamed.to : renamed.from;
    const std::string& to = back ? renamed.from : renamed.to;
    if (FileExists(GetFullPath(to)) && !SameText(from, to)) {
        return Ln("mRFFileExists");
    }
    for (const SlotChange& change : step.slots) {
        if (!Sounds(change.slot)) {
            FreeJingle(change.slot);
        }
    }
    const std::string why = RenameSound(from, to);
    if (!why.empty()) {
        for (const SlotChange& change : step.slots) {
            openStreams(change.slot);
        }
        return why;
    }
    MovedFileRenamed(GetFullPath(from), to);
    if (back) {
        BringSpellingsBack(renamed);
    }
    for (const SlotChange& change : step.slots) {
        if (Sounds(change.slot)) {
            Jingle(change.slot).Path = (back ? change.before : change.after).Path;  // its file stays open
        }
    }
    return {};
}

void bring(const Step& step, bool back) {
    for (const SlotChange& change : step.slots) {
        PersistedJingle content = back ? change.before : change.after;
        const std::optional<PersistedJingle> now = SlotContent(change.slot);
        if (!now) {
            continue;  // still sounds from an earlier palette
        }
        // A save may have imported the file since: an edit that had nothing to do with it leaves it there.
        if (change.before.Path == change.after.Path) {
            content.Path = now->Path;
        }
        BringSlot(change.slot, content);
        if (JingleButton* b = Button(change.slot)) {
            b->ckJingSel.visible = SelectorsShown && !content.Path.empty();
        }
    }
}

/// The palette counts as changed unless the file holds all of it.
void markChanges() {
    if (RecordsAreSaved()) {
        PalToSave = false;
        ErrDisp("hide");
    } else {
        MarkPalToSave();
    }
}

void take(std::vector<Step>& from, std::vector<Step>& to, bool back) {
    if (PaletteLoading() || under.depth > 0 || RenameJ != -1) {
        return;
    }
    if (from.empty()) {
        ShowDisplayMessage(Ln(back ? "unNothing" : "unNothingRedo"));
        return;
    }
    // What was cut or copied may be about to change.
    MoveSrcJ = -1;
    ClipPath.clear();
    Step& step = from.back();
    if (const std::string why = bringName(step, back); !why.empty()) {
        ErrDisp("no", 1, why);
        ShowDisplayMessage(why);
        return;
    }
    std::string failed;
    if (!step.deleted.empty()) {
        failed = back ? FileBack(step.deleted) : FileAway(step.deleted);
    }
    bring(step, back);
    BringPaths(step.paths, back);
    bringRemovals(step, back);
    if (!step.deleted.empty() && back) {
        OpenMissing();
    }
    markChanges();
    if (!failed.empty()) {
        ErrDisp("no", 1, failed);
    }
    ShowDisplayMessage(Ln(back ? "unUndone" : "unRedone") + " " + FilledText(step.text, step.jingle));
    to.push_back(std::move(step));
    from.pop_back();
}

}  // namespace

UndoStep::UndoStep(const char* text) {
    guarded("modUndo.Begin", [&] { begin(text); });
}

UndoStep::~UndoStep() { guarded("modUndo.End", end); }

void OpenEditorStep(int index) {
    editor.index = index;
    editor.before = SlotContent(index);
}

void CloseEditorStep() {
    if (editor.index >= 0) {
        cutEditorStep();
    }
    editor = EditorStep();
}

void NoteRename(const std::string& from, const std::string& to) {
    under.step.renamed = RenameBefore(from, to);
}

void NotePaths(std::vector<PathChange> changes) { under.step.paths = std::move(changes); }

void NoteDeletedFile(const std::string& path) { under.step.deleted = GetRelPath(path); }

void Undo() {
    guarded("modUndo.Undo", [] { take(done, undone, true); });
}

void Redo() {
    guarded("modUndo.Redo", [] { take(undone, done, false); });
}

std::string UndoText() {
    return done.empty() ? std::string() : FilledText(done.back().text, done.back().jingle);
}
std::string RedoText() {
    return undone.empty() ? std::string() : FilledText(undone.back().text, undone.back().jingle);
}

void ForgetUndo() {
    done.clear();
    undone.clear();
}

}  // namespace zv
