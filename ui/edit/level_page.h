/// Level and behaviour of the edited jingle: volume, the highest volume that does not clip, loudness, and what the
/// ducking and the automix do with it. [control]
#pragma once

namespace zv {

/// Handlers of the controls; once.
void WireLevel();
/// What the record says, in the controls.
void ShowLevel();
/// Measures the file of the jingle that was opened.
void OpenLevel();
/// Gives up what is being measured.
void CloseLevel();
/// Called at each tick: measures the part that plays anew once it has changed and rests.
void FollowPart();
/// Volume of the record and the channel.
void SetLevel(int percent);

}  // namespace zv
