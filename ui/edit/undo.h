/// Ctrl+Z and Ctrl+Y: the last 50 edits of buttons within the palette that is open. A step is what the slots held before
/// the edit and behind it, with the sound file that it renamed or deleted. What sounds goes on sounding. [control]
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "ui/edit/lost_files.h"

namespace zv {

inline constexpr std::size_t kUndoSteps = 50;

/// An edit, from construction to destruction; one inside of it is part of it. Nothing is kept of one that changed no slot.
/// `text`: key of what the display says of it, with "%1" for the jingle: "unClear".
///
///     UndoStep step("unClear");
///     ClearButton(index);
class UndoStep {
  public:
    explicit UndoStep(const char* text);
    ~UndoStep();
    UndoStep(const UndoStep&) = delete;
    UndoStep& operator=(const UndoStep&) = delete;
};

/// The jingle editor: what the slot is other than when it was opened is one step. Other edits may come in between; what
/// the editor has changed until then is a step of its own.
void OpenEditorStep(int index);
/// Nothing when none is open.
void CloseEditorStep();

/// The step under way is about to rename the sound file of path `from` to that of path `to`.
void NoteRename(const std::string& from, const std::string& to);
/// The step under way has changed paths in palettes that are not open.
void NotePaths(std::vector<PathChange> changes);
/// The step under way is about to put a sound file, which is still there, into the history.
void NoteDeletedFile(const std::string& path);

void Undo();
void Redo();
/// What Undo and Redo would say, "clear News Sting"; empty when there is nothing.
std::string UndoText();
std::string RedoText();
/// Forgets all steps: the palette that they belong to is left.
void ForgetUndo();

}  // namespace zv
