// The INI text: tables of readings and changes. The characters behind it.
#include <gtest/gtest.h>

#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "startup/ini_text.h"

namespace zv {
namespace {

/// "/" and "|" stand for the line ends of the two kinds.
std::string lines(std::string text) {
    for (std::size_t at = 0; (at = text.find_first_of("/|", at)) != std::string::npos; ++at)
        text.replace(at, 1, text[at] == '/' ? "\n" : "\r\n");
    return text;
}

TEST(IniText, Reads) {
    const std::string longest(1023, 'x');
    const struct {
        std::string text, section, key;
        std::optional<std::string> value;
    } table[] = {
        {"[Sect]|Key=v|", "SECT", "kEY", "v"},
        {"[\xC3\x89t\xC3\xA9]/Cl\xC3\xA9=v/", "\xC3\xA9T\xC3\x89", "cl\xC3\x89", "v"},
        {"[\xC9t\xE9]/Cl\xE9=\x80\xE9/", "\xC3\xA9T\xC3\x89", "CL\xC3\x89", "\xE2\x82\xAC\xC3\xA9"},
        {"[S]/k=v/", " S ", "k ", "v"},
        {"  [ S ]  /\t k \t=\t v w \t/", "S", "k", "v w"},
        {"[S]/k=\" v \"/", "S", "k", " v "},
        {"[S]/k=' v '/", "S", "k", " v "},
        {"[S]/k=\"v'/", "S", "k", "\"v'"},
        {"[S]/k=\"/", "S", "k", "\""},
        {"[S]/k=a=b/", "S", "k", "a=b"},
        {"[S]/k/;k=v/k=1/K=2/[s]/k=3/j=3/", "S", "k", "1"},
        {"[S]/k=1/[s]/j=3/", "S", "j", std::nullopt},
        {"k=v/[S]/", "", "k", std::nullopt},
        {"[S]/k=v/[T/j=w", "S", "j", "w"},
        {"[S]/k=' v '/", "S", "k", " v "},
        {"[S [a]]/k=v/", "S [a]", "k", "v"},
        {"\xEF\xBB\xBF[S]/k=v/", "S", "k", "v"},
        {"[S]/k=" + longest + "/", "S", "k", longest},
        {"[S]/k=" + longest + "y/", "S", "k", longest},
        {"[S]/k=\xC3\xA9" + longest, "S", "k", "\xC3\xA9" + longest.substr(1)},  // characters, not bytes
        {"[S]/k=\xE9/[\xC3\xA9]/j=\xC3\xA9/k=\x80/", "\xC3\xA9", "k", "\xE2\x82\xAC"},
        {"[\xE8]/k=\xE9/[\xC3\xA9]/j=\xC3\xA9/k=\x80/", "\xC3\x89", "j", "\xC3\xA9"},
        {std::string("[S]/k=v\0w/", 10), "S", "k", "v"},
    };
    for (const auto& row : table) {
        IniText text(lines(row.text));
        EXPECT_EQ(text.value(row.section, row.key), row.value) << row.text;
        EXPECT_EQ(text.bytes(), lines(row.text));
    }
}

TEST(IniText, ListsWhatCanBeAskedFor) {
    IniText text("[]\n[\x01]\nk=1\n[S]\n=v\n\x02=1\nk=2\nK=3\n[s]\nj=1\n");
    EXPECT_EQ(text.sectionNames(), std::vector<std::string>{"S"});
    EXPECT_EQ(text.lines("S"), (std::vector<IniText::Line>{{"k", "2"}}));
}

/// Performs "put S k v", "erase S", "replace S k=v;k=v" or "merge S ..." (blanks in values: "_"); whether it changed.
bool change(IniText& text, const std::string& call) {
    std::vector<std::string> words(1);
    for (const char c : call) {
        if (c == ' ')
            words.emplace_back();
        else
            words.back() += c == '_' ? ' ' : c;
    }
    if (words[0] == "put") return text.put(words[1], words[2], lines(words[3]));
    if (words[0] == "erase") return text.eraseSection(words[1]);
    std::vector<IniText::Line> all;
    std::istringstream parts(words[2]);
    for (std::string part; std::getline(parts, part, ';');)
        all.emplace_back(part.substr(0, part.find('=')), part.substr(part.find('=') + 1));
    return words[0] == "replace" ? text.replaceSection(words[1], all) : text.mergeSection(words[1], all);
}

TEST(IniText, ChangesOnlyWhatIsMeant) {
    const struct {
        const char *what, *before, *call, *after;  ///< `after` null: as before
    } table[] = {
        {"a new file", "", "put S k v", "[S]|k=v|"},
        {"the file's line ends", "[A]/x=1/", "put S k v", "[A]/x=1/[S]/k=v/"},
        {"no last line end", "[A]/x=1", "put A y 2", "[A]/x=1/y=2/"},
        {"a header without one", "[A]", "put A y 2", "[A]|y=2|"},
        {"its place and blanks", "[S]|; c| k = old |z=1|", "put S K new", "[S]|; c| k = new |z=1|"},
        {"quotes go", "[S]/k=\"old\"/", "put S k new", "[S]/k=new/"},
        {"behind the last key", "[S]/a=1//; of T/[T]/b=2/", "put S c 3", "[S]/a=1/c=3//; of T/[T]/b=2/"},
        {"all of the name", "[S]/a=1/b=2/A=3/", "put S a ", "[S]/b=2/"},
        {"malformed lines", "]/x/=/[S/[S]/=v/!?/k=1/", "put S k 2", "]/x/=/[S/[S]/=v/!?/k=2/"},
        {"a section goes whole", "; top/[S]/k=1/; c//[T]/a=1/", "erase S", "; top/[T]/a=1/"},
        {"the first of a name", "[S]/k=1/[T]/a=1/[s]/k=2/", "erase s", "[T]/a=1/[s]/k=2/"},
        {"no second line", "[S]/", "put S k a|[T]", "[S]/k=a  [T]/"},
        {"blanks do not grow", "[S]/k=  a/", "put S k _b", "[S]/k= b/"},
        {"a key that reads as a header", "[S]/a=1/", "put S [k] v", nullptr},
        {"as a comment", "[S]/a=1/", "put S ;k v", nullptr},
        {"with an equals sign", "[S]/a=1/", "put S a=b v", nullptr},
        {"no section's name", "[S]/a=1/", "put _ k v", nullptr},
        {"Windows-1252 stays", "[S]/k=\xE9/", "put S j \xE2\x82\xAC\xC3\xA8", "[S]/k=\xE9/j=\x80\xE8/"},
        {"no place in it", "[S]/k=\xE9/", "put S j \xE6\x97\xA5", "[S]/k=\xE9/j=\xE6\x97\xA5/"},
        {"nor for a line", "[S]/j=\xE8/\xE9 = \xE9/", "put S \xC3\x89 \xE6\x97\xA5",
         "[S]/j=\xE8/\xC3\xA9 = \xE6\x97\xA5/"},
        {"each its own", "[S]/\xE9=1/j=\xC3\xA9/", "put S \xC3\xA9 \xC3\xA8", "[S]/\xE9=\xE8/j=\xC3\xA9/"},
        {"new beside both", "[S]/k=\xE9/j=\xC3\xA9/", "put S l \xC3\xA8",
         "[S]/k=\xE9/j=\xC3\xA9/l=\xC3\xA8/"},
        {"stray bytes", "[S]/k=\xC3\xA9/", "put S j \xE9", "[S]/k=\xC3\xA9/j=\xC3\xA9/"},
        {"would read as UTF-8", "[S]/k=\xE9/", "put S j \xC3\x83\xC2\xA9", "[S]/k=\xE9/j=\xC3\x83\xC2\xA9/"},
        {"the mark in front", "\xEF\xBB\xBF[S]/k=1/", "put S k 2", "\xEF\xBB\xBF[S]/k=2/"},
        {"nothing but the mark", "\xEF\xBB\xBF", "put S k 2", "\xEF\xBB\xBF[S]|k=2|"},
        {"another of the name stays", "[A]|k=1|[B]|x=1|[a]|k=2|", "replace A k=3",
         "[A]|k=3|[B]|x=1|[a]|k=2|"},
        {"each line's encoding", "[S]/k=\xE9/j=\xC3\xA9/l=\xE8/",
         "replace S j=\xC3\xAA;k=\xC3\xA9;m=\xC3\xA9", "[S]/j=\xC3\xAA/k=\xE9/m=\xC3\xA9/"},
        {"comments go, blank lines stay", "[A]|x=1||[P]|; gone|old=1||[B]|y=2", "replace p K=a;V=;k=b",
         "[A]|x=1||[P]|K=a||[B]|y=2"},
        {"line ends of one sign", "[A]/x=1/[B]/y=2/", "replace A x=3", "[A]/x=3/[B]/y=2/"},
        {"nothing in it yet", "[P]||[B]|y=2|", "replace P K=a", "[P]|K=a||[B]|y=2|"},
        {"all there", "[P]|K=a||[B]|y=2", "replace P K=a", nullptr},
        {"all there but the last line end", "[P]|K=a||[B]|y=2", "replace B y=2", nullptr},
        {"without the last line end", "[P]|K=a||[B]|y=2", "replace B y=3", "[P]|K=a||[B]|y=3|"},
        {"a header that ends the file", "[P]", "replace P a=1", "[P]|a=1|"},
        {"a new section", "[P]/a=1", "replace Q a=1", "[P]/a=1/[Q]/a=1/"},
        {"nothing left", "[A]|x=1||[P]|K=a|", "replace A x=", "[P]|K=a|"},
        {"no name", "[A]|x=1|", "replace _ x=2", nullptr},
        {"merged", "[A]|x=1||[P]|K=a|", "merge A y=2;x=;z=3", "[A]|y=2|z=3||[P]|K=a|"},
        {"merged, new", "[A]/x=1", "merge B y=2;[z]=3", "[A]/x=1/[B]/y=2/"},
        {"merged, as it is", "[A]|x=1|", "merge A x=1;y=", nullptr},
        {"merged, no name", "[A]|x=1|", "merge _ x=2", nullptr},
    };
    for (const auto& row : table) {
        IniText text(lines(row.before));
        EXPECT_EQ(change(text, row.call), row.after != nullptr) << row.what;
        EXPECT_EQ(text.bytes(), lines(row.after == nullptr ? row.before : row.after)) << row.what;
        IniText again(text.bytes());  // what is kept beside the bytes is what they would give anew
        EXPECT_EQ(text.sectionNames(), again.sectionNames()) << row.what;
        for (const std::string& name : again.sectionNames())
            EXPECT_EQ(text.lines(name), again.lines(name)) << row.what;
    }
}

TEST(IniText, Utf16WithItsMarkBecomesUtf8WhenItIsChanged) {
    const std::u16string content =
        u"[S]\r\nk=\u00E9\uFFFF\U0001F3B5\xD83C\r\n";  // the last one without its other half
    for (const bool big : {false, true}) {
        std::string bytes = big ? "\xFE\xFF" : "\xFF\xFE";
        for (const char16_t unit : content) {
            const char halves[] = {static_cast<char>(unit), static_cast<char>(unit >> 8)};
            bytes += {halves[big ? 1 : 0], halves[big ? 0 : 1]};
        }
        IniText text(bytes);
        EXPECT_EQ(text.value("S", "k"), "\xC3\xA9\xEF\xBF\xBF\xF0\x9F\x8E\xB5\xEF\xBF\xBD");
        EXPECT_TRUE(text.put("S", "j", "1"));
        EXPECT_EQ(text.bytes(), "[S]\r\nk=\xC3\xA9\xEF\xBF\xBF\xF0\x9F\x8E\xB5\xEF\xBF\xBD\r\nj=1\r\n");
    }
}

TEST(TextCodec, KnowsTheCharactersOfWindows1252) {
    std::string bytes, small;
    for (int c = 0x80; c <= 0xFF; ++c) bytes += static_cast<char>(c);
    const std::string text =
        "\u20AC\xC2\x81\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030\u0160\u2039\u0152\xC2\x8D\u017D\xC2"
        "\x8F"
        "\xC2\x90\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u02DC\u2122\u0161\u203A\u0153\xC2\x9D\u017E\u0178"
        "\u00A0¡¢£¤¥¦§¨©ª«¬\u00AD®¯°±²³´µ¶·¸¹º»¼½¾¿ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖ×ØÙÚÛÜÝÞßàáâãäåæçèéêëìíîïðñòóôõö÷øù"
        "úûüýþÿ";
    EXPECT_EQ(toUtf8(bytes, Encoding::windows1252), text);
    std::string back;
    EXPECT_TRUE(fromUtf8(text, Encoding::windows1252, back));
    EXPECT_EQ(back, bytes);
    for (const char* other : {"\u0100", "\u20AD", "\uFFFF", "\U000120AC", "\U0010FFFF"}) {
        EXPECT_FALSE(fromUtf8(other, Encoding::windows1252, back));
        EXPECT_EQ(back, "?") << other;
        EXPECT_TRUE(fromUtf8(other, Encoding::utf8, back) && back == other);
    }
    small = "AZaz@[`{ÀÖ×ØÞßàÿŠŒŽŸšœžĀ日";
    foldCase(small);
    EXPECT_EQ(small, "azaz@[`{àö×øþßàÿšœžÿšœžĀ日");
    for (const char* bad :
         {"\x80", "\xC1\x80", "\xC3", "\xC3(", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xE2\x82", "\xE2\x82(",
          "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "12345678\xFF", "1234567\xC3"})
        EXPECT_FALSE(validUtf8(bad)) << bad;
    for (const char* good :
         {"", "\u0080", "\u07FF", "\u0800", "\uD7FF", "\uE000", "\uFFFF", "\U00010000", "\U0010FFFF"})
        EXPECT_TRUE(validUtf8(good) && validUtf8(std::string("12345678") + good)) << good;
    EXPECT_EQ(sanitized("a\x80\xC3\xA9\xFF"), "a€éÿ");
    EXPECT_EQ(textOf("\xC3\xA9\n\xE9\n\xC3\xA9\n\x80"), "é\né\né\n€");
    EXPECT_EQ(characterCount("aé日𝄞"), 4U);
    for (const auto& [count, first] :
         {std::pair(0, ""), {1, "a"}, {2, "aé"}, {3, "aé日"}, {4, "aé日𝄞"}, {9, "aé日𝄞"}})
        EXPECT_EQ(firstCharacters("aé日𝄞", static_cast<std::size_t>(count)), first);
}

}  // namespace
}  // namespace zv
