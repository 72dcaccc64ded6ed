/// The playhead of frmFX: its digits and SlidePos. It is where the jingle sounds; in silence it stays where the sound
/// ended, or where it was put. [control]
#pragma once

namespace zv {

/// Handlers; once.
void WirePlayhead();
/// Back to the beginning, for a jingle that was just opened.
void ResetPlayhead();
/// Seconds from the beginning of the file.
double Playhead();
/// Goes there, within the file; a jingle that sounds goes on from there.
void PlacePlayhead(double seconds);
void ShowPlayhead();

}  // namespace zv
