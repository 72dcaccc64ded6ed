/// What undo changes in files: names and deletions of sound files, sections of palettes that are not open. [control]
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "model/pending_removals.h"
#include "startup/impulse.h"

namespace zv {

/// The text of `key` with `what` in the place of "%1".
std::string FilledText(std::string_view key, const std::string& what);

/// The section that a removal will change, as it is now.
struct FormerSection {
    Removal removal;
    std::vector<cImpulse::Line> lines;
};
FormerSection SectionBefore(const Removal& removal);
/// A save has carried the removal out: the jingle comes back. Other changes of the section since then stay, and a slot
/// that holds another jingle by now keeps it.
void BringSectionBack(const FormerSection& former);

/// A sound file's two names, and where the palettes spell the old one differently or hold the new one already.
struct FileRename {
    struct Spelling {
        bool hot = false;
        std::string section, key, path;
    };
    std::string from, to;
    std::vector<Spelling> spellings;
};
/// Before the rename.
FileRename RenameBefore(const std::string& from, const std::string& to);
/// The file has its old name again: what was spelled otherwise is so again.
void BringSpellingsBack(const FileRename& renamed);

/// Out of the history, and into it; `path` as the history names it. Each returns why the file could not be
/// moved, empty when it was.
std::string FileBack(const std::string& path);
std::string FileAway(const std::string& path);
/// Buttons that miss their file try again.
void OpenMissing();
/// Palette and hot jingles stand in their files as they are in the records.
bool RecordsAreSaved();

}  // namespace zv
