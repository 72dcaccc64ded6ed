/// The two encodings of the program's files, UTF-8 and Windows-1252, and letters without regard to case in
/// both. Text in memory is UTF-8. Standard C++ only; nothing here fails. [any]
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zv {

enum class Encoding : unsigned char { utf8, windows1252 };

/// True for text that is UTF-8 throughout (no overlong forms, no surrogates).
bool validUtf8(std::string_view bytes);
bool isAscii(std::string_view bytes);
/// The encoding that a file's bytes are in: UTF-8 if they are valid, else Windows-1252.
Encoding encodingOf(std::string_view bytes);

/// Bytes of a file as UTF-8. Every byte has its character, the five that Windows-1252 leaves open included.
std::string toUtf8(std::string_view bytes, Encoding encoding);
/// UTF-8 as bytes of a file; false when a character has no byte in that encoding ("?" stands for it).
bool fromUtf8(std::string_view text, Encoding encoding, std::string& bytes);
/// `text` itself when it is valid, else with its stray bytes read as Windows-1252.
std::string sanitized(std::string_view text);

/// The next byte's or bytes' lower-case form for ASCII and the Latin letters of the encoding, in place.
void foldCase(std::string& bytes, Encoding encoding);
/// Equal without regard to case.
bool sameFolded(std::string_view a, std::string_view b, Encoding encoding);
/// A number that is the same for all names that are equal without regard to case.
std::size_t foldedHash(std::string_view name, Encoding encoding);

/// Characters of UTF-8 text, and its first `count` characters.
std::size_t characterCount(std::string_view text);
std::string_view firstCharacters(std::string_view text, std::size_t count);

}  // namespace zv
