/// MIDI messages as text: six upper-case hexadecimal digits, or the first four as a short code. [control]
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace zv {

inline constexpr std::size_t kFullCode = 6, kShortCode = 4;  ///< characters
inline constexpr int kLargestData = 127;
inline constexpr int kLeastStatus = 128;

/// Two upper-case hexadecimal digits.
std::string HexByte(int value);
/// A short message as six digits: the low byte is the status, data 1 and data 2 lie above it.
std::string FullCode(std::uint32_t message);
/// Status, data 1 and data 2 of a text of six characters, two digits each; three empty texts for any other.
std::array<std::string, 3> MIDIDecomp(std::string_view text);
/// Data 2 of a text of six digits.
int DataValue(std::string_view text);
/// What a user typed into one box of a message, as two digits; `isData` 0 is the status box. Only the last two
/// characters count. A status below 128 becomes 80, data above 127 becomes 7F; empty stays empty.
std::string MIDIHex(int isData, std::string_view text);
/// The short message of a text of six characters. Throws ProgramError when it holds no such message: data 1 of
/// 128 and more overflows.
std::uint32_t PackCode(std::string_view text);

}  // namespace zv
