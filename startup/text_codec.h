/// The two encodings of the program's files, UTF-8 and Windows-1252, each line in one of them, and letters
/// without regard to case. UTF-16 is read where its mark is in front. Text in memory is UTF-8. Standard C++
/// only; nothing here fails. [any]
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zv {

enum class Encoding : unsigned char { utf8, windows1252 };

/// True for text that is UTF-8 throughout (no overlong forms, no surrogates).
bool validUtf8(std::string_view bytes);
bool isAscii(std::string_view bytes);
/// The encoding that a line's bytes are in: UTF-8 if they are valid, else Windows-1252.
Encoding encodingOf(std::string_view line);
/// True for bytes that begin with a mark of UTF-16, in either order of bytes.
bool isMarkedUtf16(std::string_view bytes);

/// Bytes of a whole file as UTF-8: each line by its own encoding, or all of it from marked UTF-16.
std::string textOf(std::string_view bytes);
/// Bytes of a line as UTF-8. Every byte has its character, the five that Windows-1252 leaves open included.
std::string toUtf8(std::string_view bytes, Encoding encoding);
/// UTF-8 as bytes of a file; false when a character has no byte in that encoding ("?" stands for it).
bool fromUtf8(std::string_view text, Encoding encoding, std::string& bytes);
/// `text` itself when it is valid, else with its stray bytes read as Windows-1252.
std::string sanitized(std::string_view text);

/// ASCII and the Latin letters of Windows-1252 in UTF-8 become lower case, in place.
void foldCase(std::string& text);
/// Equal without regard to case.
bool sameFolded(std::string_view a, std::string_view b);
/// A number that is the same for all names that are equal without regard to case.
std::size_t foldedHash(std::string_view name);

/// Characters of UTF-8 text, and its first `count` characters.
std::size_t characterCount(std::string_view text);
std::string_view firstCharacters(std::string_view text, std::size_t count);

}  // namespace zv
