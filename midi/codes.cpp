#include "midi/codes.h"

#include <algorithm>
#include <charconv>

#include "startup/errors.h"

namespace zv {
namespace {

constexpr int kHexBase = 16;
constexpr std::size_t kByteDigits = 2;

/// The number that the text begins with, 0 without one.
int hexValue(std::string_view text) {
    int value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value, kHexBase);
    return value;
}

}  // namespace

std::string HexByte(int value) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    return {kDigits[value >> 4 & 15], kDigits[value & 15]};
}

std::string FullCode(std::uint32_t message) {
    return HexByte(static_cast<int>(message & 0xFF)) + HexByte(static_cast<int>(message >> 8 & 0xFF)) +
           HexByte(static_cast<int>(message >> 16 & 0xFF));
}

std::array<std::string, 3> MIDIDecomp(std::string_view text) {
    if (text.size() != kFullCode) return {};
    return {std::string(text.substr(0, 2)), std::string(text.substr(2, 2)), std::string(text.substr(4, 2))};
}

int DataValue(std::string_view text) {
    return text.size() == kFullCode ? hexValue(text.substr(kShortCode)) : 0;
}

std::string MIDIHex(int isData, std::string_view text) {
    if (text.empty()) return {};
    if (text.size() > kByteDigits) text.remove_prefix(text.size() - kByteDigits);
    const int value = std::max(0, hexValue(text));
    return HexByte(isData == 0 ? std::max(value, kLeastStatus) : std::min(value, kLargestData));
}

std::uint32_t PackCode(std::string_view text) {
    std::uint32_t message = 0;
    for (std::size_t byte = 0; byte < 3; ++byte) {
        std::uint8_t value = 0;
        const char* const first = text.data() + byte * kByteDigits;
        const auto [end, error] = std::from_chars(first, first + kByteDigits, value, kHexBase);
        if (error != std::errc{} || end != first + kByteDigits)
            throw ProgramError(kErrorMismatch, "\"" + std::string(text) + "\" is no MIDI message");
        if (byte == 1 && value > kLargestData)
            throw ProgramError(kErrorOverflow, "\"" + std::string(text) + "\": data 1 above 7F");
        message |= std::uint32_t{value} << (8 * byte);
    }
    return message;
}

}  // namespace zv
