/// Emptying buttons. [control]
#pragma once

namespace zv {

/// Frees a button's sound, empties its record and its look. Marks nothing as changed.
void ClearButton(int index);
/// Removes a button's jingle after a question, with the file on disk when `withFile`.
void DelJing(int index, bool withFile);
/// Clears the buttons of SelJ after one question.
void ClearSelection();

}  // namespace zv
