/// Level and behaviour of the edited jingle: volume, the highest volume that does not clip, loudness, and what the
/// ducking and the automix do with it. [control]
#pragma once

namespace zv {

/// Handlers of the controls; once.
void WireLevel();
/// What the record says, in the controls.
void ShowLevel();
/// A jingle was opened: its file is measured.
void OpenLevel();
/// What is measured is given up.
void CloseLevel();
/// The part that plays may have changed: once it rests it is measured anew.
void FollowPart();
/// Volume of the record and the channel.
void SetLevel(int percent);

}  // namespace zv
