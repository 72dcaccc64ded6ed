/// playlist.ini: named lists of jingles of any palettes, a section each, and the jingles that they lock. Read and
/// written only while PlaylistsEnabled is on. [control]
#pragma once

#include <string>
#include <vector>

namespace zv {

/// A jingle by its slot in its palette. A hot jingle stands in kHotSection, its slot counts from 0.
struct PlaylistItem {
    int slot = 0;
    std::string palette;
    bool operator==(const PlaylistItem&) const = default;
};

struct Playlist {
    std::string
        section;  ///< six digits and capital letters, by which a palette's slot names it; empty: a new one
    std::string name;
    std::vector<PlaylistItem> items;
    bool automix = false;  ///< kept for later use
};

/// All that the file holds, in its order.
std::vector<Playlist> AllPlaylists();
/// The one of that section; without a name when there is none.
Playlist ReadPlaylist(const std::string& section);
/// Writes it; a new one is given its section. The section of one without items goes. False when the file could not
/// be written, or when the items take more than a value of the file holds.
bool KeepPlaylist(Playlist& playlist);

/// The item that button `index` is in the palette `palette`.
PlaylistItem ItemOf(int index, const std::string& palette);
/// "12>Morning" for each jingle that stands in a playlist; built by LoadLockedFiles.
extern std::vector<std::string> LockedFiles;
void LoadLockedFiles();
bool IsLocked(const PlaylistItem& item);

}  // namespace zv
