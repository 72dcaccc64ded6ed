// What a stranger's server says of a stream: playlists and titles.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "audio/stream_title.h"
#include "platform/common/vorbis_comment.h"
#include "platform/common/web_playlist.h"
#include "platform/desktop.h"
#include "startup/text_codec.h"

// The language would ask the desktop; no text of it is looked at here.
bool zv::systemIsFrench() { return false; }

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::string title = zv::StreamTitle(bytes);
    if (!zv::validUtf8(title) || zv::characterCount(title) > 200) std::abort();
    for (const char c : title)
        if (static_cast<unsigned char>(c) < ' ') std::abort();
    const zv::WebPlaylist list = zv::ReadWebPlaylist(bytes, "http://radio.example/a/list.m3u?x=1");
    for (const std::string& address : list.addresses)
        if (address.size() < 7 || (address[0] | 0x20) != 'h') std::abort();
    const zv::SongName song = zv::ReadVorbisComment(bytes);
    if (song.artist.size() + song.title.size() > size) std::abort();
    return 0;
}
