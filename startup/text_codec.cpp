#include "startup/text_codec.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace zv {
namespace {

/// Windows-1252 from 0x80 to 0x9F; the open places are the control characters of their number.
constexpr std::array<char16_t, 32> kUpper{0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                          0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                          0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                          0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

unsigned char byteAt(std::string_view text, std::size_t i) { return static_cast<unsigned char>(text[i]); }

/// Length of the valid sequence at `i`, 0 when there is none.
std::size_t sequenceLength(std::string_view s, std::size_t i) {
    const unsigned char c = byteAt(s, i);
    if (c < 0x80) return 1;
    std::size_t length = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (c >= 0xC2 && c <= 0xDF) {
        length = 2;
    } else if (c >= 0xE0 && c <= 0xEF) {
        length = 3;
        if (c == 0xE0) low = 0xA0;   // overlong below
        if (c == 0xED) high = 0x9F;  // surrogates above
    } else if (c >= 0xF0 && c <= 0xF4) {
        length = 4;
        if (c == 0xF0) low = 0x90;
        if (c == 0xF4) high = 0x8F;
    } else {
        return 0;
    }
    if (s.size() - i < length) return 0;
    if (byteAt(s, i + 1) < low || byteAt(s, i + 1) > high) return 0;
    for (std::size_t k = 2; k < length; ++k) {
        if ((byteAt(s, i + k) & 0xC0) != 0x80) return 0;
    }
    return length;
}

/// First byte at or after `i` that is not ASCII.
std::size_t skipAscii(std::string_view s, std::size_t i) {
    constexpr std::uint64_t kHighBits = 0x8080808080808080U;
    while (i + 8 <= s.size()) {
        std::uint64_t eight = 0;
        std::memcpy(&eight, s.data() + i, 8);
        if ((eight & kHighBits) != 0) break;
        i += 8;
    }
    while (i < s.size() && byteAt(s, i) < 0x80) ++i;
    return i;
}

char32_t codePoint(std::string_view s, std::size_t i, std::size_t length) {
    const unsigned char c = byteAt(s, i);
    if (length == 1) return c;
    char32_t point = c & (0xFFU >> (length + 1));
    for (std::size_t k = 1; k < length; ++k) point = (point << 6) | (byteAt(s, i + k) & 0x3FU);
    return point;
}

void appendUtf8(std::string& out, char32_t point) {
    const auto tail = [&](int shift) { out += static_cast<char>(0x80 | ((point >> shift) & 0x3F)); };
    if (point < 0x80) {
        out += static_cast<char>(point);
    } else if (point < 0x800) {
        out += static_cast<char>(0xC0 | (point >> 6));
        tail(0);
    } else if (point < 0x10000) {
        out += static_cast<char>(0xE0 | (point >> 12));
        tail(6), tail(0);
    } else {
        out += static_cast<char>(0xF0 | (point >> 18));
        tail(12), tail(6), tail(0);
    }
}

char32_t characterOf1252(unsigned char byte) {
    return byte >= 0x80 && byte <= 0x9F ? static_cast<char32_t>(kUpper[byte - 0x80U]) : byte;
}

/// The byte of a character in Windows-1252, 0 when it has none (and is not NUL).
unsigned char byteIn1252(char32_t point) {
    if (point < 0x80 || (point >= 0xA0 && point <= 0xFF)) return static_cast<unsigned char>(point);
    const auto found = std::find(kUpper.begin(), kUpper.end(), static_cast<char16_t>(point));
    if (point > 0xFFFF || found == kUpper.end()) return 0;
    return static_cast<unsigned char>(0x80 + (found - kUpper.begin()));
}

/// Lower-case form of the two-byte Latin letters that Windows-1252 knows too.
void lowerPair(unsigned char& first, unsigned char& second) {
    if (first == 0xC3 && second >= 0x80 && second <= 0x9E && second != 0x97) {
        second = static_cast<unsigned char>(second + 0x20);
    } else if (first == 0xC5 && (second == 0x92 || second == 0xA0 || second == 0xBD)) {
        ++second;
    } else if (first == 0xC5 && second == 0xB8) {
        first = 0xC3;
        second = 0xBF;
    }
}

/// Calls `take` with each byte of the folded form; stops when it returns false.
template <class Take>
void eachFolded(std::string_view s, Take take) {
    for (std::size_t i = 0; i < s.size(); ++i) {
        unsigned char c = byteAt(s, i);
        if (c < 0x80) {
            if (!take(c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c + 0x20) : c)) return;
        } else if ((c == 0xC3 || c == 0xC5) && i + 1 < s.size()) {
            unsigned char second = byteAt(s, ++i);
            lowerPair(c, second);
            if (!take(c) || !take(second)) return;
        } else if (!take(c)) {
            return;
        }
    }
}

}  // namespace

bool isAscii(std::string_view bytes) { return skipAscii(bytes, 0) == bytes.size(); }

bool validUtf8(std::string_view bytes) {
    std::size_t i = skipAscii(bytes, 0);
    while (i < bytes.size()) {
        const std::size_t length = sequenceLength(bytes, i);
        if (length == 0) return false;
        i = skipAscii(bytes, i + length);
    }
    return true;
}

Encoding encodingOf(std::string_view bytes) {
    return validUtf8(bytes) ? Encoding::utf8 : Encoding::windows1252;
}

namespace {

constexpr std::string_view kLittleMark = "\xFF\xFE", kBigMark = "\xFE\xFF";

/// UTF-16 with its mark as UTF-8. A half without its other half becomes the replacement character.
std::string fromMarked16(std::string_view bytes) {
    constexpr char32_t replacement = 0xFFFD;
    const std::size_t low = bytes.starts_with(kLittleMark) ? 0 : 1;
    const auto unit = [&](std::size_t i) {
        return i + 1 < bytes.size() ? byteAt(bytes, i + low) | char32_t{byteAt(bytes, i + 1 - low)} << 8 : 0;
    };
    std::string out;
    for (std::size_t i = kLittleMark.size(); i + 1 < bytes.size(); i += 2) {
        char32_t point = unit(i);
        if (point >= 0xD800 && point < 0xDC00 && unit(i + 2) >= 0xDC00 && unit(i + 2) < 0xE000) {
            point = 0x10000 + ((point - 0xD800) << 10) + (unit(i + 2) - 0xDC00);
            i += 2;
        }
        appendUtf8(out, point >= 0xD800 && point < 0xE000 ? replacement : point);
    }
    return out;
}

}  // namespace

bool isMarkedUtf16(std::string_view bytes) {
    return bytes.starts_with(kLittleMark) || bytes.starts_with(kBigMark);
}

std::string textOf(std::string_view bytes) {
    if (isMarkedUtf16(bytes)) return fromMarked16(bytes);
    if (validUtf8(bytes)) return std::string(bytes);
    std::string out;
    for (std::size_t from = 0; from < bytes.size();) {
        const std::size_t end = std::min(bytes.find('\n', from), bytes.size() - 1) + 1;
        const std::string_view line = bytes.substr(from, end - from);
        out += toUtf8(line, encodingOf(line));
        from += line.size();
    }
    return out;
}

std::string toUtf8(std::string_view bytes, Encoding encoding) {
    if (encoding == Encoding::utf8 || isAscii(bytes)) return std::string(bytes);
    std::string out;
    out.reserve(bytes.size() + bytes.size() / 8);
    for (const char c : bytes) appendUtf8(out, characterOf1252(static_cast<unsigned char>(c)));
    return out;
}

bool fromUtf8(std::string_view text, Encoding encoding, std::string& bytes) {
    if (isAscii(text)) {
        bytes.assign(text);
        return true;
    }
    std::string valid = sanitized(text);
    if (encoding == Encoding::utf8) {
        bytes = std::move(valid);
        return true;
    }
    bool all = true;
    std::string out;
    for (std::size_t i = 0; i < valid.size();) {
        const std::size_t length = sequenceLength(valid, i);
        const char32_t point = codePoint(valid, i, length);
        const unsigned char byte = byteIn1252(point);
        if (byte == 0 && point != 0) all = false;
        out += byte == 0 && point != 0 ? '?' : static_cast<char>(byte);
        i += length;
    }
    bytes = std::move(out);
    return all;
}

std::string sanitized(std::string_view text) {
    if (validUtf8(text)) return std::string(text);
    std::string out;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = sequenceLength(text, i);
        if (length == 0) {
            appendUtf8(out, characterOf1252(byteAt(text, i)));
            ++i;
        } else {
            out.append(text.substr(i, length));
            i += length;
        }
    }
    return out;
}

void foldCase(std::string& text) {
    std::string out;
    out.reserve(text.size());
    eachFolded(text, [&](unsigned char c) {
        out += static_cast<char>(c);
        return true;
    });
    text = std::move(out);
}

bool sameFolded(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;  // folding keeps the length
    if (a == b) return true;
    std::string left(a);
    std::string right(b);
    foldCase(left);
    foldCase(right);
    return left == right;
}

std::size_t foldedHash(std::string_view name) {
    std::uint64_t hash = 0xCBF29CE484222325U;
    eachFolded(name, [&](unsigned char c) {
        hash = (hash ^ c) * 0x100000001B3U;
        return true;
    });
    return static_cast<std::size_t>(hash ^ (hash >> 29));
}

std::size_t characterCount(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string_view firstCharacters(std::string_view text, std::size_t count) {
    if (text.size() <= count) return text;
    std::size_t i = 0;
    for (std::size_t seen = 0; i < text.size(); ++i) {
        if ((byteAt(text, i) & 0xC0) != 0x80 && seen++ == count) break;
    }
    return text.substr(0, i);
}

}  // namespace zv
