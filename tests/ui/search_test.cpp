// Finding a jingle: names without accents and case, the palettes and hits.

#include <random>

#include "tests/ui/window_test.h"
#include "ui/edit/search_index.h"

namespace zv::test {
namespace {

class SearchTest : public WindowTest {
  protected:
    SearchTest() {
        write("News Sting.wav", "");
        write("Été à Gênes.wav", "");
        put("Morning",
            {{0, "News Sting.wav"}, {5, "Été à Gênes.wav"}, {7, "gone_news.wav"}, {9, "News Sting.wav"}});
        put("Noon", {{1, "Été à Gênes.wav"}});
        put("Night", {});
    }

    void put(const std::string& palette, const std::vector<std::pair<int, std::string>>& files) {
        std::vector<cImpulse::Line> lines{{"Author", "x"}};
        for (const auto& [slot, file] : files) lines.emplace_back("Path_" + std::to_string(slot), file);
        PaletteStore.PutSection(palette, lines);
    }
};

TEST_F(SearchTest, NothingIsInEverySlotAndWhatIsNoNameIsFoundNowhere) {
    ListAllJing();
    for (const char* text : {"gone n", "", ".wav", "Path"}) {
        std::vector<int> slots;
        for (const SearchHit& hit : HitsIn("Morning", text)) slots.push_back(hit.slot);
        EXPECT_EQ(slots, *text != 0 ? std::vector<int>{} : std::vector<int>({0, 5, 9})) << text;
        EXPECT_EQ(PalettesWith(text).empty(), *text != 'g') << text;
    }
    EXPECT_EQ(PlainLetters("Ça, señor Ø, Straße, łódź, 日本"), "Ca, senor O, Straße, łodź, 日本");
}

TEST_F(SearchTest, FindsWhatAPlainLoopFinds) {
    // Letters of the four languages, and as what they count.
    const std::vector<std::pair<std::string, std::string>> letters{
        {"a", "a"}, {"à", "a"}, {"Á", "a"}, {"ç", "c"}, {"É", "e"}, {"ê", "e"}, {"Î", "i"},
        {"N", "n"}, {"ñ", "n"}, {"Ö", "o"}, {"ß", "ß"}, {"Ú", "u"}, {"ù", "u"}, {"ÿ", "y"},
        {"Œ", "œ"}, {"æ", "æ"}, {"¡", "¡"}, {" ", " "}, {"1", "1"}, {"'", "'"}, {"[", "["}};
    std::mt19937 chance(3);
    const auto word = [&](int length) {
        std::pair<std::string, std::string> out;
        for (int n = 0; n < length; ++n) {
            const auto& [letter, plain] = letters[chance() % letters.size()];
            out.first += letter, out.second += plain;
        }
        return out;
    };
    std::vector<std::pair<std::string, std::string>> names;  // and how they are compared
    for (int i = 0; i < 400; ++i) {
        const auto [name, plain] = word(6);
        names.emplace_back("x" + name + "x", "x" + plain + "x");
        if (i % 2 == 0) write(names.back().first + ".wav", "");  // the others are gone
    }
    std::vector<std::tuple<std::string, int, std::size_t>> all;  // palette, slot, name
    for (int p = 0; p < 60; ++p) {
        const std::string palette = "P" + std::to_string(100 + p);
        std::vector<std::pair<int, std::string>> files;
        for (int slot = 0; slot < 96; slot += chance() % 10 == 0 ? 2 : 1) {
            all.emplace_back(palette, slot, chance() % names.size());
            files.emplace_back(slot, names[std::get<2>(all.back())].first + ".wav");
        }
        put(palette, files);
    }
    ListAllJing();
    for (int i = 0; i < 200; ++i) {
        const auto [text, plain] = word(1 + i % 3);
        std::vector<std::string> palettes;
        std::vector<int> slots;  // of P130
        for (const auto& [palette, slot, name] : all) {
            if (names[name].second.find(plain) == std::string::npos) continue;
            if (palettes.empty() || palettes.back() != palette) palettes.push_back(palette);
            if (palette == "P130" && name % 2 == 0) slots.push_back(slot);
        }
        std::vector<std::string> found = PalettesWith(text);
        std::erase_if(found, [](const std::string& palette) { return palette[0] != 'P'; });
        EXPECT_EQ(found, palettes) << text;
        std::vector<int> hits;
        for (const SearchHit& hit : HitsIn("P130", text)) hits.push_back(hit.slot);
        EXPECT_EQ(hits, slots) << text;
    }
}

}  // namespace
}  // namespace zv::test
