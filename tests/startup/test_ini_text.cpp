// The rules of the INI text: a table of readings, changes that keep every other byte, and random operations
// on random text against a model that is slow and simple.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <vector>

#include "startup/ini_text.h"

namespace zv {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

struct Reading {
    const char* what;
    std::string text;
    const char* section;
    const char* key;
    std::optional<std::string> value;
};

TEST(IniText, Reads) {
    const std::string longest(1023, 'x');
    const std::vector<Reading> table{
        {"plain", "[S]\r\nk=v\r\n", "S", "k", "v"},
        {"names in any case", "[Sect]\r\nKey=v\r\n", "SECT", "kEY", "v"},
        {"Latin letters in any case", "[\xC3\x89t\xC3\xA9]\nCl\xC3\xA9=v\n", "\xC3\xA9T\xC3\x89",
         "cl\xC3\x89", "v"},
        {"the same in Windows-1252", "[\xC9t\xE9]\nCl\xE9=\x80\xE9\n", "\xC3\xA9T\xC3\x89", "CL\xC3\x89",
         "\xE2\x82\xAC\xC3\xA9"},
        {"blanks around", "  [S]  \n\t k \t=\t v w \t\n", "S", "k", "v w"},
        {"blanks in the question", "[S]\nk=v\n", " S ", "k ", "v"},
        {"blanks inside the brackets", "[ S ]\nk=v\n", "S", "k", "v"},
        {"double quotes", "[S]\nk=\" v \"\n", "S", "k", " v "},
        {"single quotes", "[S]\nk=' v '\n", "S", "k", " v "},
        {"quotes that do not match", "[S]\nk=\"v'\n", "S", "k", "\"v'"},
        {"one quote", "[S]\nk=\"\n", "S", "k", "\""},
        {"an equals sign in the value", "[S]\nk=a=b\n", "S", "k", "a=b"},
        {"an empty value", "[S]\nk=\n", "S", "k", ""},
        {"no equals sign", "[S]\nk\n", "S", "k", std::nullopt},
        {"a comment", "[S]\n;k=v\n", "S", ";k", std::nullopt},
        {"the first of two keys", "[S]\nk=1\nK=2\n", "S", "k", "1"},
        {"the first of two sections", "[S]\nk=1\n[s]\nk=2\nj=3\n", "S", "k", "1"},
        {"not from the second section", "[S]\nk=1\n[s]\nj=3\n", "S", "j", std::nullopt},
        {"before any section", "k=v\n[S]\n", "", "k", std::nullopt},
        {"a bracket in the name", "[S [a]]\nk=v\n", "S [a]", "k", "v"},
        {"a header without its end", "[S]\nk=v\n[T\nj=w\n", "S", "j", "w"},
        {"a mark in front", "\xEF\xBB\xBF[S]\nk=v\n", "S", "k", "v"},
        {"no end of line", "[S]\nk=v", "S", "k", "v"},
        {"1023 characters", "[S]\nk=" + longest + "\n", "S", "k", longest},
        {"1500 characters", "[S]\nk=" + std::string(1500, 'x') + "\n", "S", "k", longest},
        {"characters, not bytes", "[S]\nk=\xC3\xA9" + std::string(1500, 'x'), "S", "k",
         "\xC3\xA9" + std::string(1022, 'x')},
        {"a line of its own encoding beside another", "[S]\nk=\xE9\n[\xC3\xA9]\nj=\xC3\xA9\nk=\x80\n",
         "\xC3\xA9", "k", "\xE2\x82\xAC"},
        {"UTF-8 beside stray bytes", "[\xE8]\nk=\xE9\n[\xC3\xA9]\nj=\xC3\xA9\nk=\x80\n", "\xC3\x89", "j",
         "\xC3\xA9"},
        {"a zero byte", std::string("[S]\nk=v\0w\n", 10), "S", "k", "v"},
    };
    for (const Reading& row : table) {
        IniText text(row.text);
        EXPECT_EQ(text.value(row.section, row.key), row.value) << row.what;
        EXPECT_EQ(text.bytes(), row.text) << row.what;
    }
}

struct Change {
    const char* what;
    std::string before;
    std::vector<std::string> call;  // put: section, key, value; erase: section
    std::string after;
};

TEST(IniText, ChangesOnlyWhatIsMeant) {
    const std::vector<Change> table{
        {"a new file", "", {"S", "k", "v"}, "[S]\r\nk=v\r\n"},
        {"the file's line ends", "[A]\nx=1\n", {"S", "k", "v"}, "[A]\nx=1\n[S]\nk=v\n"},
        {"a file without a last line end", "[A]\nx=1", {"A", "y", "2"}, "[A]\nx=1\ny=2\n"},
        {"a header without a line end", "[A]", {"A", "y", "2"}, "[A]\r\ny=2\r\n"},
        {"a key's place and blanks",
         "[S]\r\n; c\r\n k = old \r\nz=1\r\n",
         {"S", "K", "new"},
         "[S]\r\n; c\r\n k = new \r\nz=1\r\n"},
        {"quotes go with the value", "[S]\nk=\"old\"\n", {"S", "k", "new"}, "[S]\nk=new\n"},
        {"behind the section's last key",
         "[S]\na=1\n\n; of T\n[T]\nb=2\n",
         {"S", "c", "3"},
         "[S]\na=1\nc=3\n\n; of T\n[T]\nb=2\n"},
        {"an empty value takes the key out", "[S]\na=1\nb=2\nA=3\n", {"S", "a", ""}, "[S]\nb=2\n"},
        {"what is not there stays away", "[S]\na=1\n", {"S", "b", ""}, "[S]\na=1\n"},
        {"no second line in a value", "[S]\n", {"S", "k", "a\r\n[T]"}, "[S]\nk=a  [T]\n"},
        {"a value with blanks does not grow", "[S]\nk=  a\n", {"S", "k", " b"}, "[S]\nk= b\n"},
        {"a key that would read as something else", "[S]\na=1\n", {"S", "[k]", "v"}, "[S]\na=1\n"},
        {"a key with an equals sign", "[S]\na=1\n", {"S", "a=b", "v"}, "[S]\na=1\n"},
        {"a section without a name", "[S]\na=1\n", {" ", "k", "v"}, "[S]\na=1\n"},
        {"malformed lines stay",
         "]\nx\n=\n[S\n[S]\n=v\n??\nk=1\n",
         {"S", "k", "2"},
         "]\nx\n=\n[S\n[S]\n=v\n??\nk=2\n"},
        {"Windows-1252 stays so",
         "[S]\nk=\xE9\n",
         {"S", "j", "\xE2\x82\xAC\xC3\xA8"},
         "[S]\nk=\xE9\nj=\x80\xE8\n"},
        {"unless a text has no place in it",
         "[S]\nk=\xE9\n",
         {"S", "j", "\xE6\x97\xA5"},
         "[S]\nk=\xE9\nj=\xE6\x97\xA5\n"},
        {"a line that it has no place in",
         "[S]\nj=\xE8\n\xE9 = \xE9\n",
         {"S", "\xC3\x89", "\xE6\x97\xA5"},
         "[S]\nj=\xE8\n\xC3\xA9 = \xE6\x97\xA5\n"},
        {"each line keeps its encoding",
         "[S]\n\xE9=1\nj=\xC3\xA9\n",
         {"S", "\xC3\xA9", "\xC3\xA8"},
         "[S]\n\xE9=\xE8\nj=\xC3\xA9\n"},
        {"new lines beside both are UTF-8",
         "[S]\nk=\xE9\nj=\xC3\xA9\n",
         {"S", "l", "\xC3\xA8"},
         "[S]\nk=\xE9\nj=\xC3\xA9\nl=\xC3\xA8\n"},
        {"stray bytes never spoil UTF-8",
         "[S]\nk=\xC3\xA9\n",
         {"S", "j", "\xE9"},
         "[S]\nk=\xC3\xA9\nj=\xC3\xA9\n"},
        {"bytes that would read as UTF-8",
         "[S]\nk=\xE9\n",
         {"S", "j", "\xC3\x83\xC2\xA9"},
         "[S]\nk=\xE9\nj=\xC3\x83\xC2\xA9\n"},
        {"the mark in front stays", "\xEF\xBB\xBF[S]\nk=1\n", {"S", "k", "2"}, "\xEF\xBB\xBF[S]\nk=2\n"},
        {"a section goes whole", "; top\n[S]\nk=1\n; c\n\n[T]\na=1\n", {"S"}, "; top\n[T]\na=1\n"},
        {"the first of a name", "[S]\nk=1\n[T]\na=1\n[s]\nk=2\n", {"s"}, "[T]\na=1\n[s]\nk=2\n"},
    };
    for (const Change& row : table) {
        IniText text(row.before);
        const bool changed = row.call.size() == 1 ? text.eraseSection(row.call[0])
                                                  : text.put(row.call[0], row.call[1], row.call[2]);
        EXPECT_EQ(text.bytes(), row.after) << row.what;
        EXPECT_EQ(changed, row.before != row.after) << row.what;
    }
}

TEST(IniText, Utf16WithItsMarkBecomesUtf8WhenItIsChanged) {
    const std::u16string content = u"[S]\r\nk=\u00E9\U0001F3B5\r\n";
    for (const bool big : {false, true}) {
        std::string bytes = big ? "\xFE\xFF" : "\xFF\xFE";
        for (const char16_t unit : content) {
            const char halves[] = {static_cast<char>(unit), static_cast<char>(unit >> 8)};
            bytes += {halves[big ? 1 : 0], halves[big ? 0 : 1]};
        }
        IniText text(bytes);
        EXPECT_EQ(text.value("S", "k"), "\xC3\xA9\xF0\x9F\x8E\xB5");
        EXPECT_TRUE(text.put("S", "j", "1"));
        EXPECT_EQ(text.bytes(), "[S]\r\nk=\xC3\xA9\xF0\x9F\x8E\xB5\r\nj=1\r\n");
    }
}

TEST(IniText, ASecondSectionOfOneNameIsKept) {
    IniText text("[A]\r\nk=1\r\n[B]\r\nx=1\r\n[a]\r\nk=2\r\nonly=here\r\n");
    EXPECT_TRUE(text.replaceSection("A", {{"k", "3"}}));
    EXPECT_EQ(text.bytes(), "[A]\r\nk=3\r\n[B]\r\nx=1\r\n[a]\r\nk=2\r\nonly=here\r\n");
    EXPECT_EQ(text.value("A", "k"), "3");
    EXPECT_TRUE(text.eraseSection("A"));
    EXPECT_EQ(text.bytes(), "[B]\r\nx=1\r\n[a]\r\nk=2\r\nonly=here\r\n");  // it comes to light
    EXPECT_EQ(text.value("A", "k"), "2");
}

TEST(IniText, SectionsAtOnceKeepEachLinesEncoding) {
    IniText text("[S]\nk=\xE9\nj=\xC3\xA9\nl=\xE8\n");
    EXPECT_TRUE(text.replaceSection("S", {{"j", "\xC3\xAA"}, {"k", "\xC3\xA9"}, {"m", "\xC3\xA9"}}));
    EXPECT_EQ(text.bytes(), "[S]\nj=\xC3\xAA\nk=\xE9\nm=\xC3\xA9\n");
}

TEST(IniText, SectionsAtOnce) {
    IniText text("; top\r\n[A]\r\nx=1\r\n\r\n[P]\r\n; gone\r\nold=1\r\n\r\n[B]\r\ny=2");
    EXPECT_TRUE(text.replaceSection("p", {{"Path_0", "a.wav"}, {"Volm_0", ""}, {"path_0", "b.wav"}}));
    EXPECT_EQ(text.bytes(), "; top\r\n[A]\r\nx=1\r\n\r\n[P]\r\nPath_0=a.wav\r\n\r\n[B]\r\ny=2");
    EXPECT_FALSE(text.replaceSection("P", {{"Path_0", "a.wav"}}));  // nothing to write
    EXPECT_FALSE(text.replaceSection("B", {{"y", "2"}}));
    EXPECT_TRUE(text.mergeSection("B", {{"y", "3"}, {"z", "4"}}));
    EXPECT_TRUE(text.mergeSection("C", {{"q", "5"}}));
    EXPECT_TRUE(text.replaceSection("A", {}));
    EXPECT_EQ(text.bytes(), "; top\r\n[P]\r\nPath_0=a.wav\r\n\r\n[B]\r\ny=3\r\nz=4\r\n[C]\r\nq=5\r\n");
    EXPECT_THAT(text.sectionNames(), ElementsAre("P", "B", "C"));
    EXPECT_THAT(text.lines("B"), ElementsAre(Pair("y", "3"), Pair("z", "4")));
}

// ---- the model
// ---------------------------------------------------------------------------------------------

/// The same rules, line by line and without any index. ASCII names only.
class Model {
  public:
    explicit Model(const std::string& text) {
        std::string line;
        for (const char c : text) {
            line += c;
            if (c == '\n') {
                lines_.push_back(line);
                line.clear();
            }
        }
        if (!line.empty()) lines_.push_back(line);
        eol_ = lines_.empty() || lines_[0].find('\n') == std::string::npos || lines_[0].ends_with("\r\n")
                   ? "\r\n"
                   : "\n";
    }

    std::string text() const {
        std::string out;
        for (const std::string& line : lines_) out += line;
        return out;
    }

    std::optional<std::string> value(const std::string& section, const std::string& key) const {
        const auto [begin, end] = range(section);
        for (std::size_t i = begin; i < end; ++i) {
            const auto [k, v] = split(lines_[i]);
            if (!k || *k != lower(key)) continue;
            std::string out = v;
            if (out.size() >= 2 && out.front() == out.back() && (out[0] == '"' || out[0] == '\'')) {
                out = out.substr(1, out.size() - 2);
            }
            return out.substr(0, out.find('\0')).substr(0, 1023);
        }
        return std::nullopt;
    }

    void put(const std::string& section, const std::string& key, const std::string& value) {
        const auto [begin, end] = range(section);
        if (value.empty()) {
            for (std::size_t i = end; i-- > begin;) {
                if (split(lines_[i]).first == lower(key)) lines_.erase(lines_.begin() + static_cast<long>(i));
            }
            return;
        }
        std::size_t last = begin;
        for (std::size_t i = begin; i < end; ++i) {
            if (split(lines_[i]).first == lower(key)) {
                const std::size_t at = lines_[i].find('=') + 1;
                const std::string old = trim(lines_[i].substr(at));
                const std::string rest = lines_[i].substr(at);
                const std::size_t first = old.empty() ? 0 : rest.find(old);
                lines_[i] =
                    lines_[i].substr(0, at) + rest.substr(0, first) + value + rest.substr(first + old.size());
                return;
            }
            const std::string t = trim(lines_[i]);
            if (!t.empty() && t[0] != ';') last = i + 1;
        }
        const std::size_t at = begin > 0 ? last : lines_.size();
        if (at > 0 && lines_[at - 1].back() != '\n') lines_[at - 1] += eol_;
        const std::string line = key + "=" + value + eol_;
        if (begin > 0) {
            lines_.insert(lines_.begin() + static_cast<long>(last), line);
        } else {
            lines_.push_back("[" + section + "]" + eol_);
            lines_.push_back(line);
        }
    }

    void erase(const std::string& section) {
        const auto [begin, end] = range(section);
        if (begin == 0) return;
        lines_.erase(lines_.begin() + static_cast<long>(begin) - 1, lines_.begin() + static_cast<long>(end));
    }

  private:
    static bool blank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
    static std::string trim(std::string s) {
        while (!s.empty() && blank(s.back())) s.pop_back();
        while (!s.empty() && blank(s.front())) s.erase(0, 1);
        return s;
    }
    static std::string lower(std::string s) {
        for (char& c : s) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
        return s;
    }
    static std::optional<std::string> header(const std::string& line) {
        const std::string t = trim(line);
        const std::size_t close = t.rfind(']');
        if (t.empty() || t[0] != '[' || close == std::string::npos) return std::nullopt;
        return lower(trim(t.substr(1, close - 1)));
    }
    static std::pair<std::optional<std::string>, std::string> split(const std::string& line) {
        const std::string t = trim(line);
        const std::size_t equals = t.find('=');
        if (t.empty() || t[0] == ';' || equals == std::string::npos || equals == 0) return {std::nullopt, {}};
        return {lower(trim(t.substr(0, equals))), trim(t.substr(equals + 1))};
    }
    /// Lines of the first section of that name; begin 0 when there is none.
    std::pair<std::size_t, std::size_t> range(const std::string& section) const {
        std::size_t i = 0;
        while (i < lines_.size() && header(lines_[i]) != lower(trim(section))) ++i;
        if (i == lines_.size()) return {0, 0};
        std::size_t end = ++i;
        while (end < lines_.size() && !header(lines_[end])) ++end;
        return {i, end};
    }

    std::vector<std::string> lines_;
    std::string eol_;
};

template <class T>
const T& oneOf(const std::vector<T>& from, std::mt19937& random) {
    return from[random() % from.size()];
}

TEST(IniText, RandomOperationsAgreeWithTheModel) {
    const std::vector<std::string> pieces{"[",  "]", "[S]", "[a]", "[ B ]",   "=",  ";",
                                          "\"", "'", " ",   "\t",  "\n",      "\n", "\r\n",
                                          "a",  "b", "S",   "a=1", "b = x y", "A=", std::string(1, '\0'),
                                          "\v"};
    const std::vector<std::string> sections{"S", "s", "A", "b", "new"};
    const std::vector<std::string> keys{"a", "B", "ab", "S"};
    const std::vector<std::string> values{
        "", "", "1", "x y", "\"q\"", "=", "[S]", "a=b;c", std::string(1100, 'v')};
    std::mt19937 random(20260131);
    for (int round = 0; round < 4000; ++round) {
        std::string start;
        for (auto i = random() % 40; i > 0; --i) start += oneOf(pieces, random);
        IniText text(start);
        Model model(start);
        for (int step = 0; step < 8; ++step) {
            const std::string& section = oneOf(sections, random);
            const std::string& key = oneOf(keys, random);
            ASSERT_EQ(text.value(section, key), model.value(section, key)) << start;
            if (random() % 8 == 0) {
                text.eraseSection(section);
                model.erase(section);
            } else if (random() % 4 == 0) {
                const std::string& other = oneOf(keys, random);
                const std::string& first = oneOf(values, random);
                const std::string& second = oneOf(values, random);
                text.mergeSection(section, {{key, first}, {other, second}});
                model.put(section, key, first);
                model.put(section, other, second);
            } else {
                const std::string& value = oneOf(values, random);
                text.put(section, key, value);
                model.put(section, key, value);
            }
            ASSERT_EQ(text.bytes(), model.text()) << start;
            IniText again(text.bytes());  // what is kept beside the bytes is what they would give anew
            ASSERT_EQ(text.sectionNames(), again.sectionNames());
            ASSERT_EQ(text.lines(section), again.lines(section));
        }
    }
}

TEST(IniText, ValuesRewrittenAtOnceAreThoseOfManyPuts) {
    const std::vector<std::string> pieces{"[S]\n", "[s]\n", "[T]\r\n",   "a=1\n",   " ab = \"q\" \r\n",
                                          "A=2\n", "b=3\n", "a1=\xE9\n", "; a=4\n", "\n",
                                          "[\n",   "a2=",   "=",         "x"};
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        std::string start;
        for (auto i = random() % 20; i > 0; --i) start += oneOf(pieces, random);
        IniText once(start), each(start);
        const auto become = [&](const std::string& section, const IniText::Line& line) {
            return line.second == "1" ? std::nullopt : std::optional(line.second + " \u2126" + section);
        };
        bool changed = false;
        for (const std::string& section : each.sectionNames())
            for (const IniText::Line& line : each.lines(section))
                if (const auto value = become(section, line); value && line.first.starts_with("a"))
                    changed = each.put(section, line.first, *value) || changed;
        ASSERT_EQ(once.rewriteValues("a", become), changed) << start;
        ASSERT_EQ(once.bytes(), each.bytes()) << start;
        for (const std::string& section : each.sectionNames())
            ASSERT_EQ(once.lines(section), each.lines(section)) << start;
    }
}

TEST(IniText, RandomBytesDoNoHarm) {
    std::mt19937 random(7);
    for (int round = 0; round < 3000; ++round) {
        std::string start;
        for (auto i = random() % 200; i > 0; --i)
            start +=
                static_cast<char>(random() % 3 == 0 ? "[]=\n;"[random() % 5] : static_cast<char>(random()));
        IniText text(start);
        for (const std::string& name : text.sectionNames()) {
            for (const auto& [key, value] : text.lines(name)) {
                ASSERT_TRUE(validUtf8(name) && validUtf8(key) && validUtf8(value));
                ASSERT_EQ(text.value(name, key), value);
            }
        }
        const std::string value = random() % 2 == 0 ? "\xC3\xA9t\xC3\xA9" : "\xE6\x97\xA5";
        text.put("Palette \xC3\x89", "Path_1", value);
        ASSERT_EQ(text.value("palette \xC3\xA9", "path_1"), value);
        ASSERT_EQ(IniText(text.bytes()).value("palette \xC3\xA9", "path_1"), value);
        text.replaceSection("palette \xC3\xA9", {{"Path_2", value}});
        ASSERT_EQ(text.value("palette \xC3\xA9", "path_1"), std::nullopt);
        text.eraseSection("palette \xC3\xA9");
        ASSERT_FALSE(text.hasSection("palette \xC3\xA9"));
    }
}

}  // namespace
}  // namespace zv
