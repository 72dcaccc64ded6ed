/// Playlists on the web that name a stream: m3u, pls and xspf, and those of a stream in segments (HLS). Standard C++
/// only; nothing here fails. [any]
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zv {

inline constexpr std::size_t kLongestPlaylist = 65'536;  ///< bytes that are looked at
inline constexpr int kPlaylistDepth = 3;                 ///< a playlist may name another one, so often

struct WebPlaylist {
    bool segmented = false;              ///< the playlist is the stream itself
    std::vector<std::string> addresses;  ///< http and https, each once, in their order
};

/// Whether a text that begins like this is a playlist.
bool LooksLikePlaylist(std::string_view head);
/// The addresses that `text` names, those that are relative made whole by `base`, the address it came from.
WebPlaylist ReadWebPlaylist(std::string_view text, std::string_view base);

}  // namespace zv
