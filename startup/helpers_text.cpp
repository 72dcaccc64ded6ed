// Of startup/helpers.h: texts, numbers and colours.
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "startup/errors.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/text_codec.h"

namespace zv {
namespace {

constexpr std::size_t kLongestFileName = 258;       // characters
constexpr std::size_t kLongestFileNameBytes = 255;  // what file systems here hold
constexpr int kErrorReplacement = 2069;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::string replaced(std::string_view text, std::string_view what, std::string_view with) {
    std::string out;
    for (std::size_t from = 0;;) {
        const std::size_t at = text.find(what, from);
        out.append(text.substr(from, at == std::string_view::npos ? at : at - from));
        if (at == std::string_view::npos) return out;
        out.append(with);
        from = at + what.size();
    }
}

/// "<br>" in any case of its letters.
std::string breaks(std::string_view text, std::string_view with) {
    std::string out = replaced(text, "<br>", with);
    return out.find("<BR>") == std::string::npos ? out : replaced(out, "<BR>", with);
}

bool validInFileName(char c, bool shortName) {
    const auto u = static_cast<unsigned char>(c);
    if (u < 32 || u == 127) return false;
    if (std::string_view("\"*/:<>?\\|").find(c) != std::string_view::npos) return false;
    return !shortName || std::string_view(" +,;=[]").find(c) == std::string_view::npos;
}

bool isReserved(std::string_view base) {
    static constexpr std::array kNames{"con", "prn", "aux", "nul"};
    const std::string lower = LowerCase(base);
    if (std::find(kNames.begin(), kNames.end(), lower) != kNames.end()) return true;
    return lower.size() == 4 && (lower.starts_with("com") || lower.starts_with("lpt")) && lower[3] >= '1' &&
           lower[3] <= '9';
}

void dropTrailing(std::string& name) {
    while (!name.empty() && (name.back() == ' ' || name.back() == '.')) name.pop_back();
}

/// Cuts `name` to so many bytes, at a character, its extension kept.
void cutBytes(std::string& name, std::size_t longest) {
    if (name.size() <= longest) return;
    const std::size_t point = name.rfind('.');
    std::string extension =
        point == std::string::npos || name.size() - point > 20 ? std::string() : name.substr(point);
    std::size_t keep = longest - extension.size();
    while (keep > 0 && (static_cast<unsigned char>(name[keep]) & 0xC0) == 0x80) --keep;
    name = name.substr(0, keep) + extension;
}

}  // namespace

std::string Ampersand(std::string_view text) { return replaced(text, "&", "&&"); }
std::string br2chr13(std::string_view text) { return breaks(text, "\r\n"); }
std::string br2space(std::string_view text) { return breaks(text, " "); }

std::string ReturnNumbers(std::string_view text) {
    std::string out;
    std::copy_if(text.begin(), text.end(), std::back_inserter(out), isDigit);
    return out;
}

std::string ReturnNonNumbers(std::string_view text) {
    std::string out;
    std::copy_if(text.begin(), text.end(), std::back_inserter(out), [](char c) { return !isDigit(c); });
    return out;
}

std::string NoAccents(std::string_view text) {
    // The plain letters of U+00C0 to U+00FF; a point where the character stays.
    static constexpr std::string_view kPlain =
        "AAAAAA.CEEEEIIII.NOOOOO.OUUUU...aaaaaa.ceeeeiiii.nooooo.ouuuu..y";
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        const unsigned next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0U;
        if (c == 0xC3 && next >= 0x80 && next <= 0xBF && kPlain[next - 0x80] != '.') {
            out += kPlain[next - 0x80];
            ++i;
        } else {
            out += text[i];
        }
    }
    return out;
}

std::string SansAccents(std::string_view text) { return NoAccents(text); }

std::string Trim(std::string_view text) {
    const auto blank = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.empty() && blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && blank(text.back())) text.remove_suffix(1);
    return std::string(text);
}

std::string CannotBeEmpty(std::string_view text, std::string_view def) {
    return std::string(Trim(text).empty() ? def : text);
}

std::string LowerCase(std::string_view text) {
    std::string out(text);
    foldCase(out);
    return out;
}

bool SameText(std::string_view a, std::string_view b) { return sameFolded(a, b); }

std::vector<std::string> Split(std::string_view text, std::string_view separator) {
    std::vector<std::string> out;
    for (;;) {
        const std::size_t at = separator.empty() ? std::string_view::npos : text.find(separator);
        out.emplace_back(text.substr(0, at));
        if (at == std::string_view::npos) return out;
        text.remove_prefix(at + separator.size());
    }
}

void QuickSort(std::vector<std::string>& texts, std::size_t low, std::size_t high) {
    if (texts.empty()) return;
    if (high == 0 || high >= texts.size()) high = texts.size() - 1;
    if (low >= high) return;
    std::vector<std::pair<std::string, std::string>> keyed;
    for (std::size_t i = low; i <= high; ++i)
        keyed.emplace_back(LowerCase(NoAccents(texts[i])), std::move(texts[i]));
    std::sort(keyed.begin(), keyed.end());
    for (std::size_t i = low; i <= high; ++i) texts[i] = std::move(keyed[i - low].second);
}

std::string BytesToUnits(double size, int decimals) {
    std::vector<std::string> units = Split(Ln("SizeUnits"), ",");
    if (units.size() < 5) units = {"bytes", "KB", "MB", "GB", "TB"};
    constexpr double kStep = 1024.0;
    std::size_t unit = 0;
    while (unit + 1 < 5 && std::fabs(size) >= kStep) {
        size /= kStep;
        ++unit;
    }
    char number[64];
    std::snprintf(number, sizeof number, "%.*f", std::clamp(decimals, 0, 15), size);
    return std::string(number) + " " + Trim(units[unit]);
}

std::string ValidFileName(std::string_view text, std::string_view replacement, bool shortName) {
    const auto allowed = [&](char c) { return validInFileName(c, shortName); };
    if (!std::all_of(replacement.begin(), replacement.end(), allowed)) {
        throw ProgramError(kErrorReplacement, "ReplacementChar is not valid.");
    }
    std::string name;
    for (const char c : replaced(Trim(text), "\"", "''")) {
        if (allowed(c)) {
            name += c;
        } else {
            name += replacement;
        }
    }
    dropTrailing(name);
    std::size_t point = name.rfind('.');
    if (point != std::string::npos) {
        std::size_t blanks = 0;
        while (point + 1 + blanks < name.size() && name[point + 1 + blanks] == ' ') ++blanks;
        name.erase(point + 1, blanks);
    }
    if (shortName && point != std::string::npos) {
        name = std::string(firstCharacters(name.substr(0, point), 8)) + "." +
               std::string(firstCharacters(name.substr(point + 1), 3));
    } else {
        name = std::string(firstCharacters(name, shortName ? 8 : kLongestFileName));
    }
    if (isReserved(name.substr(0, name.find('.')))) name.insert(0, "_");
    cutBytes(name, kLongestFileNameBytes);
    dropTrailing(name);
    return name;
}

int GetMultipleOf(int n, int m) {
    if (m == 0) return n;
    const int rest = n % m;
    return rest < 0 ? n - rest - std::abs(m) : n - rest;
}

std::optional<double> ToNumber(std::string_view text) {
    std::string number = Trim(text);
    std::replace(number.begin(), number.end(), ',', '.');
    if (number.starts_with("&H") || number.starts_with("&h")) {
        std::uint32_t bits = 0;
        const char* end = number.data() + number.size();
        const auto [at, error] = std::from_chars(number.data() + 2, end, bits, 16);
        if (error != std::errc() || at != end) return std::nullopt;
        return static_cast<double>(static_cast<std::int32_t>(bits));
    }
    if (number.starts_with('+')) number.erase(0, 1);
    const std::size_t first = number.starts_with('-') ? 1 : 0;
    if (first >= number.size() || (!isDigit(number[first]) && number[first] != '.')) return std::nullopt;
    double value = 0;
    const char* end = number.data() + number.size();
    const auto [at, error] = std::from_chars(number.data(), end, value);
    if (error != std::errc() || at != end || !std::isfinite(value)) return std::nullopt;
    return value;
}

double Val(std::string_view text) {
    std::string number;
    for (const char c : text) {
        if (c != ' ' && c != '\t') number += c;
    }
    if (number.starts_with('+')) number.erase(0, 1);
    double value = 0;
    const std::size_t first = number.starts_with('-') ? 1 : 0;
    if (first >= number.size() || (!isDigit(number[first]) && number[first] != '.')) return 0;
    std::from_chars(number.data(), number.data() + number.size(), value);
    return value;
}

std::string NumberText(double value) {
    constexpr double kExact = 1e15;
    char text[64];
    if (!std::isfinite(value)) return "0";
    const bool whole = std::fabs(value) < kExact && value == std::trunc(value);
    const auto end = whole ? std::to_chars(text, text + sizeof text, static_cast<long long>(value))
                           : std::to_chars(text, text + sizeof text, value);
    return {text, end.ptr};
}

int KeepDigit(int keyAscii) {
    constexpr int kBackspace = 8;
    return (keyAscii >= '0' && keyAscii <= '9') || keyAscii == kBackspace ? keyAscii : 0;
}

int KeepNumeric(int keyAscii) {
    const bool sign = keyAscii == '-' || keyAscii == '+' || keyAscii == '.' || keyAscii == ',';
    return sign ? keyAscii : KeepDigit(keyAscii);
}

// ---- colours
// -----------------------------------------------------------------------------------------------

std::string Hex2Digits(int n) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const int v = std::clamp(n, 0, 255);
    return {kDigits[static_cast<std::size_t>(v >> 4)], kDigits[static_cast<std::size_t>(v & 15)]};
}

RGBParts LongToRGB(std::int32_t colour) { return {colour & 255, (colour >> 8) & 255, (colour >> 16) & 255}; }

std::string ColorToHex(std::int32_t colour) {
    const RGBParts parts = LongToRGB(colour);
    return Hex2Digits(parts.red) + Hex2Digits(parts.green) + Hex2Digits(parts.blue);
}

std::int32_t HexToRGB(std::string_view text) {
    constexpr std::size_t kDigits = 6;
    std::uint32_t bits = 0;
    const auto [at, error] = std::from_chars(text.data(), text.data() + text.size(), bits, 16);
    if (text.size() != kDigits || error != std::errc() || at != text.data() + text.size()) return 0;
    return static_cast<std::int32_t>(((bits & 0xFFU) << 16) | (bits & 0xFF00U) | ((bits >> 16) & 0xFFU));
}

}  // namespace zv
