/// The names of all jingles in all palettes, and what a text finds among them, without opening a palette.
/// [control]
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zv {

/// Accented letters become plain ones; what has none stays.
std::string PlainLetters(std::string_view text);

/// Reads the names anew where the palette file has changed since.
void ListAllJing();
/// Palettes that hold a jingle with `text` in its name, in file order; accents and case do not count. None for
/// an empty text.
std::vector<std::string> PalettesWith(std::string_view text);

struct SearchHit {
    int slot = 0;
    std::string caption;
    bool operator==(const SearchHit&) const = default;
};
/// The slots of a palette whose name holds the text and whose file is there.
std::vector<SearchHit> HitsIn(const std::string& palette, std::string_view text);

}  // namespace zv
