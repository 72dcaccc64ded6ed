#include "platform/common/vorbis_comment.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace zv {

namespace {

std::optional<std::uint32_t> takeNumber(std::string_view& rest) {
    if (rest.size() < 4) return std::nullopt;
    std::uint32_t number = 0;
    for (std::size_t i = 4; i > 0; --i) number = number << 8 | static_cast<unsigned char>(rest[i - 1]);
    rest.remove_prefix(4);
    return number;
}

std::optional<std::string_view> takeText(std::string_view& rest) {
    const auto length = takeNumber(rest);
    if (!length || *length > rest.size()) return std::nullopt;
    const std::string_view text = rest.substr(0, *length);
    rest.remove_prefix(*length);
    return text;
}

/// The value of `field`, when its key is `key`.
std::optional<std::string_view> valueOf(std::string_view field, std::string_view key) {
    const bool is = field.size() > key.size() && field[key.size()] == '=' &&
                    std::equal(key.begin(), key.end(), field.begin(), [](char wanted, char c) {
                        return wanted == std::tolower(static_cast<unsigned char>(c));
                    });
    return is ? std::optional(field.substr(key.size() + 1)) : std::nullopt;
}

}  // namespace

SongName ReadVorbisComment(std::string_view block) {
    SongName song;
    if (!takeText(block)) return song;
    const std::uint32_t fields = takeNumber(block).value_or(0);
    for (std::uint32_t i = 0; i < fields; ++i) {
        const auto field = takeText(block);
        if (!field) break;
        if (const auto artist = valueOf(*field, "artist"); artist && song.artist.empty())
            song.artist = *artist;
        if (const auto title = valueOf(*field, "title"); title && song.title.empty()) song.title = *title;
    }
    return song;
}

}  // namespace zv
