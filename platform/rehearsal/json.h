/// The little of JSON that the state file needs.
#pragma once

#include <string>
#include <string_view>

namespace zv {

/// The text in quotes, escaped.
inline std::string jsonText(std::string_view text) {
    static constexpr char kHex[] = "0123456789abcdef";
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            out += "\\u00";
            out += kHex[static_cast<unsigned char>(c) >> 4];
            out += kHex[c & 15];
        } else {
            out += c;
        }
    }
    return out + '"';
}

}  // namespace zv
