#include "audio/stream_title.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

#include "startup/helpers.h"
#include "startup/text_codec.h"

namespace zv {

namespace {

constexpr std::string_view kKey = "streamtitle='";
constexpr std::size_t kLongest = 200;  // characters

std::size_t placeOfKey(std::string_view told) {
    const auto found = std::search(
        told.begin(), told.end(), kKey.begin(), kKey.end(),
        [](char is, char wanted) { return std::tolower(static_cast<unsigned char>(is)) == wanted; });
    return found == told.end() ? std::string_view::npos : static_cast<std::size_t>(found - told.begin());
}

/// Whether a field may begin here, or the text is over: letters and an equals sign, or nothing but padding.
bool endsField(std::string_view rest) {
    std::size_t letters = 0;
    while (letters < rest.size() && std::isalpha(static_cast<unsigned char>(rest[letters])) != 0) ++letters;
    if (letters > 0) return letters < rest.size() && rest[letters] == '=';
    return rest.find_first_not_of(std::string_view("\0 \r\n", 4)) == std::string_view::npos;
}

}  // namespace

std::string StreamTitle(std::string_view told) {
    const std::size_t key = placeOfKey(told);
    if (key == std::string_view::npos) return {};
    const std::string_view value = told.substr(key + kKey.size());
    std::size_t end = value.find("';");
    while (end != std::string_view::npos && !endsField(value.substr(end + 2)))
        end = value.find("';", end + 1);
    if (end == std::string_view::npos) end = value.rfind('\'');
    std::string title = sanitized(value.substr(0, end));
    std::replace_if(
        title.begin(), title.end(), [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; },
        ' ');
    return Trim(firstCharacters(Trim(title), kLongest));
}

}  // namespace zv
