/// What the keys of the learn windows do, on MIDILearn. [control]
#pragma once

#include <string>
#include <string_view>

namespace zv {

/// Prepares the window for a control: its name ("b_Jingle", "btUp", "lstPal", "Vol", ...) and, for a jingle, its
/// index. False when there is no such control. From then on messages come here instead of being played.
bool OpenLearn(const std::string& ctrl, int index);
/// Stores what was learnt and set. The name of the control that the codes belonged to before, empty when it was
/// none or the same.
std::string LearnOK();
/// The window closes: messages are played again.
void LearnCancel();
/// Empties the codes and what came in.
void LearnClear();
/// Takes entry `row` of the messages that came in as the fader's code.
void LearnPickFader(int row);

/// Text of a box while it is typed: upper-case hexadecimal digits, the last two of them.
std::string TypedHex(std::string_view text);
/// Sets box `box` of row `row`, 0 the status, to what a message may hold there.
void SetLearnBox(int row, int box, std::string_view text);
/// Empties output row `row`.
void imgDelete(int row);
/// All rows are taken out and kept, or put back, in another window too.
void btClearOut();
/// True when btClearOut would put back.
bool LearnHasClipboard();
/// Copies box `box` of the first row to the other rows.
void lblCpyval(int box);
/// Writes box `box` of each row into the messages that all jingles have.
void lblCpyAll(int box);
/// Takes the rows of the jingle before.
void btCpyPrev();
/// Sends row `row` while the key is held, then what the control shows at present.
void btTestDown(int row);
void btTestUp();

}  // namespace zv
