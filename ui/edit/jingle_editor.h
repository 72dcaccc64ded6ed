/// The jingle editor: opens frmFX for a jingle, lets it be heard, closes it. What is changed is heard at once. [control]
#pragma once

namespace zv {

/// Opens the editor; nothing for an empty or missing slot.
void clFXSet(int index);
/// Closes it: the jingle is as a press expects it, and shows its new duration. Nothing while none is open.
void OKfx();
/// Resets what stands on the page that is shown.
void resetfx();
/// A press of ckPlay: starts, or stops without a click.
void Play();
void PlayFromStart_Click();
void PlayFromLoopIn_Click();
void TestLoopOut_Click();
/// Makes record and sound what they were when the window opened.
void UndoAll();

}  // namespace zv
