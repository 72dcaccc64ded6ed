/// Playlists: a button that is bound to one, the windows that make them, and the lock on the jingles that stand in
/// one. The menu leads here only while PlaylistsEnabled is on. [control]
#pragma once

#include <string>

namespace zv {

/// What the button's menu calls the command: create or load, add to, edit.
std::string PlaylistMenuText(int index);
/// Chooses a playlist for an empty button, or one that the button's jingle joins; a bound button's is edited.
void clPlaylist(int index);
void EditPlaylist(int index);
/// The playlists that hold the button's jingle.
void clLockedBy(int index);
/// The mark of a button that is not bound: locked, or none.
void PLicon(int index);
/// The look of a button that a playlist was bound to.
void ShowBound(int index);

/// Fills the windows' handlers.
void WirePlaylists();

}  // namespace zv
