#include "platform/common/web_playlist.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

namespace zv {

namespace {

constexpr std::size_t kMostAddresses = 20, kLongestAddress = 2048;
constexpr std::size_t npos = std::string_view::npos;

char lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

bool beginsWith(std::string_view text, std::string_view lowerCase) {
    return text.size() >= lowerCase.size() &&
           std::equal(lowerCase.begin(), lowerCase.end(), text.begin(),
                      [](char wanted, char is) { return wanted == lower(is); });
}

std::size_t find(std::string_view text, std::string_view lowerCase, std::size_t from = 0) {
    if (from > text.size()) return npos;
    const auto found =
        std::search(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(), lowerCase.begin(),
                    lowerCase.end(), [](char is, char wanted) { return lower(is) == wanted; });
    return found == text.end() ? npos : static_cast<std::size_t>(found - text.begin());
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks(" \t\r\n\0", 5);
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string_view withoutMark(std::string_view text) {
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    return trimmed(text);
}

bool isWeb(std::string_view address) {
    return beginsWith(address, "http://") || beginsWith(address, "https://");
}

/// `reference` as it is meant in a text that came from `base`.
std::string whole(std::string_view reference, std::string_view base) {
    if (reference.find("://") != npos || !isWeb(base)) return std::string(reference);
    const std::size_t host = base.find("://") + 3;
    if (reference.starts_with("//")) return std::string(base.substr(0, host - 2)).append(reference);
    const std::size_t path = base.find('/', host);
    if (reference.starts_with('/')) return std::string(base.substr(0, path)).append(reference);
    const std::string_view plain = base.substr(0, base.find_first_of("?#", host));
    const std::size_t folder = plain.rfind('/');
    return folder < host ? std::string(plain) + "/" + std::string(reference)
                         : std::string(plain.substr(0, folder + 1)).append(reference);
}

std::string unescaped(std::string_view text) {
    static constexpr std::array<std::pair<std::string_view, char>, 5> entities{
        {{"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}}};
    std::string plain;
    while (!text.empty()) {
        const auto entity = std::find_if(entities.begin(), entities.end(),
                                         [&](const auto& known) { return text.starts_with(known.first); });
        plain += entity == entities.end() ? text.front() : entity->second;
        text.remove_prefix(entity == entities.end() ? 1 : entity->first.size());
    }
    return plain;
}

void add(WebPlaylist& list, std::string_view reference, std::string_view base) {
    const std::string address = whole(trimmed(reference), base);
    if (!isWeb(address) || address.size() > kLongestAddress || list.addresses.size() >= kMostAddresses)
        return;
    if (std::find(list.addresses.begin(), list.addresses.end(), address) == list.addresses.end())
        list.addresses.push_back(address);
}

template <class Take>
void eachLine(std::string_view text, Take take) {
    while (!text.empty()) {
        const std::size_t end = text.find_first_of("\r\n");
        if (const std::string_view line = trimmed(text.substr(0, end)); !line.empty()) take(line);
        text.remove_prefix(end == npos ? text.size() : end + 1);
    }
}

void readXspf(WebPlaylist& list, std::string_view text, std::string_view base) {
    constexpr std::string_view open = "<location>", close = "</location>";
    for (std::size_t at = find(text, open); at != npos; at = find(text, open, at)) {
        at += open.size();
        const std::size_t end = find(text, close, at);
        if (end == npos) return;
        add(list, unescaped(text.substr(at, end - at)), base);
        at = end;
    }
}

}  // namespace

bool LooksLikePlaylist(std::string_view head) {
    const std::string_view text = withoutMark(head);
    return beginsWith(text, "#extm3u") || beginsWith(text, "[playlist]") || beginsWith(text, "<?xml") ||
           beginsWith(text, "<playlist") || isWeb(text);
}

WebPlaylist ReadWebPlaylist(std::string_view bytes, std::string_view base) {
    WebPlaylist list;
    const std::string_view text = withoutMark(bytes.substr(0, kLongestPlaylist));
    if (beginsWith(text, "<")) {
        if (find(text, "<playlist") != npos) readXspf(list, text, base);
    } else if (beginsWith(text, "[playlist]")) {
        eachLine(text, [&](std::string_view line) {
            const std::size_t equals = line.find('=');
            if (equals != npos && beginsWith(line, "file")) add(list, line.substr(equals + 1), base);
        });
    } else if (LooksLikePlaylist(text)) {
        eachLine(text, [&](std::string_view line) {
            if (beginsWith(line, "#ext-x-")) list.segmented = true;
            if (!line.starts_with('#')) add(list, line, base);
        });
    }
    return list;
}

}  // namespace zv
