/// The commands that change what a jingle button holds: assigning, moving, copying, renaming, relocating,
/// deleting, several buttons at once, and the context menu. A command that its guard refuses says nothing.
/// [control]
#pragma once

#include <string>

namespace zv {

extern std::string MoveMode;           ///< "cut" or "copy"
extern std::string MoveSourcePalette;  ///< palette that MoveSrcJ was taken from
extern bool SelHasPlaylist;

/// Assigns ClipPath, or a file that the user chooses.
void clAssign(int index);
/// `mode`: "cut", "copy" or "paste".
void clMove(int index, const std::string& mode);
/// Renames the file on disk.
void clRename(int index);
/// Looks for a lost file below a folder that the user names.
void clReloc(int index);
/// Opens the jingle editor; says nothing while there is none.
void clFXSet(int index);
/// Removes a button's jingle after a question, with the file on disk when `withFile`.
void DelJing(int index, bool withFile);

/// Frees a button's sound, empties its record and its look. Marks nothing as changed.
void ClearButton(int index);

void ShowSelectors();
void HideSelectors();
/// The tick of a box that travels with a move is forgotten.
void ForgetMoveTick();
/// Ticks every box that is shown.
void CheckAllSelectors();
/// Captions of the ticked buttons on the clipboard.
void CopyAllJings();

/// SelJ from the ticked boxes when Ctrl is held, else the button alone. False: two or more boxes are ticked.
bool BuildSelJ(int index);
/// Clears the buttons of SelJ after one question.
void ClearSelection();
/// The menu of a button, and that of several.
void OpenJingleMenu(int index);
void ckJingleMenu();

}  // namespace zv
