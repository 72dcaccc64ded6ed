/// The text of one INI file in memory, found and changed in place: what is not touched keeps its bytes,
/// malformed lines included. Names compare without regard to case; the first of several equal keys or
/// sections counts.
///
/// Names and values come and go as UTF-8. Each line of the bytes keeps the encoding it was found in, unless a
/// text is written to it that Windows-1252 cannot hold: that line then becomes UTF-8. New lines are UTF-8 but
/// where all others are Windows-1252. Marked UTF-16 is read, and becomes UTF-8. Line ends are those that the
/// text has (its first line says which), CR LF in an empty one. [control]
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "startup/text_codec.h"

namespace zv {

class IniText {
  public:
    using Line = std::pair<std::string, std::string>;

    static constexpr std::size_t kLongestValue = 1023;  ///< characters; the rest is cut on reading

    IniText() = default;
    explicit IniText(std::string bytes) { assign(std::move(bytes)); }
    void assign(std::string bytes);
    const std::string& bytes() const { return bytes_; }

    /// The value of a key, without blanks around it and matching quotes; nothing when it is missing.
    std::optional<std::string> value(std::string_view section, std::string_view key);
    /// All lines of a section that have a key and a value, in file order.
    std::vector<Line> lines(std::string_view section);
    /// The names of the sections in file order, each once.
    std::vector<std::string> sectionNames() const;

    // The changes return whether they changed a byte.
    /// Sets a key, at its place or behind the last line of its section, or takes it out when `value` is
    /// empty. A name that could not be found again (empty, or that would read as something else) changes
    /// nothing.
    bool put(std::string_view section, std::string_view key, std::string_view value);
    /// Takes out the first section of that name.
    bool eraseSection(std::string_view section);
    /// The section holds exactly `lines` afterwards, but for those with an empty value. A second section of that
    /// name, which nothing reads, is left alone; with no line to hold all of them go.
    bool replaceSection(std::string_view section, const std::vector<Line>& lines);
    /// As put() for each line.
    bool mergeSection(std::string_view section, const std::vector<Line>& lines);
    /// What a value of `section` becomes; nothing, or an empty text, leaves it.
    using Become = std::function<std::optional<std::string>(const std::string& section, const Line& line)>;
    /// As put() for each line whose key begins with `stem`, in one pass over the text.
    bool rewriteValues(std::string_view stem, const Become& become);

  private:
    /// One line with a key, by offsets from the beginning of its section.
    struct Key {
        std::size_t hash;
        std::uint32_t begin, end;       ///< the line, its end included
        std::uint32_t name, nameEnd;    ///< without blanks
        std::uint32_t value, valueEnd;  ///< without blanks, quotes included
        Encoding encoding;
    };
    struct Section {
        std::size_t hash;
        std::size_t begin, body, end;  ///< header line, first line behind it, next header
        std::size_t name, nameEnd;
        Encoding encoding = Encoding::utf8;  ///< of the header
        bool indexed = false;
        std::uint32_t lastLineEnd = 0;      ///< end of the last line that is no blank and no comment
        std::vector<Key> keys;              ///< in file order
        std::vector<std::uint32_t> byHash;  ///< into keys, sorted by hash, then order
    };

    std::string_view view(std::size_t begin, std::size_t end) const {
        return std::string_view(bytes_).substr(begin, end - begin);
    }
    /// Encoding of a line; that of new lines for one that is the same in both.
    Encoding lineEncoding(std::string_view line) const;
    static std::string lineBytes(std::string_view text, Encoding encoding);
    bool isNamed(const Section& section, std::string_view name) const;
    bool isNamed(const Section& section, const Key& key, std::string_view name) const;
    std::string valueOf(const Section& section, const Key& key) const;
    void findSections();
    void index(Section& section);
    Section* find(std::string_view name);
    const Section* find(std::string_view name) const;
    const Key* find(Section& section, std::string_view key);
    /// The line of `key` with another value; nothing when it has that one already.
    std::optional<std::string> lineWith(const Section& section, const Key& key, std::string_view value) const;
    void splice(std::size_t begin, std::size_t end, std::string_view with);
    void closeLastLine();
    void appendHeader(std::string_view name);
    bool putPlain(std::string_view section, std::string_view key, std::string_view value);

    std::string bytes_;
    Encoding newLines_ = Encoding::utf8;
    std::string lineEnd_ = "\r\n";
    std::vector<Section> sections_;
    std::vector<std::uint32_t> sectionsByHash_;
};

/// What some editors put in front of UTF-8.
inline constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

/// Blanks at both ends go.
std::string_view trimmedBlanks(std::string_view text);

}  // namespace zv
