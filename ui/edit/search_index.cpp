#include "ui/edit/search_index.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "model/jingle.h"
#include "platform/paths.h"
#include "startup/helpers.h"
#include "startup/settings/labels_settings.h"
#include "startup/stores.h"
#include "ui/screen/captions.h"

namespace zv {

namespace {

struct Row {
    std::uint32_t palette;
    std::string name;  ///< as it is compared
};

/// The table of palettes and names.
struct AllJinglesTable {
    std::vector<std::string> palettes;
    std::vector<Row> rows;
    // What the names were made from.
    std::filesystem::file_time_type written;
    std::uintmax_t size = 0;
    int format = -1, underscores = -1;
    std::string separator;
};

AllJinglesTable AllJingles;

constexpr std::string_view kPathStem = "path_";

constexpr std::array<std::pair<std::string_view, char>, 14> kAccented{{{"ÀÁÂÃÄÅ", 'A'},
                                                                       {"àáâãäå", 'a'},
                                                                       {"ÒÓÔÕÖØ", 'O'},
                                                                       {"òóôõöø", 'o'},
                                                                       {"ÈÉÊË", 'E'},
                                                                       {"èéêë", 'e'},
                                                                       {"ÌÍÎÏ", 'I'},
                                                                       {"ìíîï", 'i'},
                                                                       {"ÙÚÛÜ", 'U'},
                                                                       {"ùúûü", 'u'},
                                                                       {"ÿ", 'y'},
                                                                       {"Ñ", 'N'},
                                                                       {"ñ", 'n'},
                                                                       {"Ç", 'C'}}};
constexpr std::string_view kSmallCedilla = "ç";
constexpr unsigned char kLeadByte = 0xC3;  // of every letter above, which has two bytes

/// The plain letter of the second byte of an accented one; 0 without one.
char plainOf(char second) {
    static const auto letters = [] {
        std::array<char, 256> table{};
        for (const auto& [group, plain] : kAccented)
            for (std::size_t i = 1; i < group.size(); i += 2)
                table[static_cast<unsigned char>(group[i])] = plain;
        table[static_cast<unsigned char>(kSmallCedilla[1])] = 'c';
        return table;
    }();
    return letters[static_cast<unsigned char>(second)];
}

/// How names and texts are compared.
std::string comparable(std::string_view text) { return LowerCase(PlainLetters(text)); }

bool upToDate() {
    std::error_code error;
    const auto file = nativePath(PalFile);
    const auto written = std::filesystem::last_write_time(file, error);
    const auto size = error ? 0 : std::filesystem::file_size(file, error);
    AllJinglesTable& all = AllJingles;
    const bool same = !error && all.written == written && all.size == size &&
                      all.format == labelSettings.JLabelFormat && all.underscores == labelSettings.JU2Sp &&
                      all.separator == labelSettings.JLabelSeparator;
    all.written = written;
    all.size = size;
    all.format = labelSettings.JLabelFormat;
    all.underscores = labelSettings.JU2Sp;
    all.separator = labelSettings.JLabelSeparator;
    return same;
}

}  // namespace

std::string PlainLetters(std::string_view text) {
    std::string plain;
    plain.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool two = static_cast<unsigned char>(text[i]) == kLeadByte && i + 1 < text.size();
        const char letter = two ? plainOf(text[i + 1]) : '\0';
        plain += letter == '\0' ? text[i] : letter;
        if (letter != '\0') ++i;
    }
    return plain;
}

void ListAllJing() {
    if (upToDate()) return;
    AllJingles.palettes.clear();
    AllJingles.rows.clear();
    PaletteStore.ListSections();
    for (int section = 0; section < PaletteStore.SectionCount(); ++section) {
        const auto palette = static_cast<std::uint32_t>(AllJingles.palettes.size());
        AllJingles.palettes.push_back(PaletteStore.SectionName(section));
        for (const auto& [key, path] : PaletteStore.GetSectionLines(AllJingles.palettes.back())) {
            if (path.empty() || key.size() <= kPathStem.size() ||
                LowerCase(key.substr(0, kPathStem.size())) != kPathStem)
                continue;
            const auto slot = ToNumber(key.substr(kPathStem.size()));
            if (!slot || *slot < 0 || *slot >= kPaletteSlots) continue;
            AllJingles.rows.push_back({palette, comparable(btCaption(path))});
        }
    }
}

std::vector<std::string> PalettesWith(std::string_view text) {
    std::vector<std::string> found;
    if (text.empty()) return found;
    const std::string wanted = comparable(text);
    constexpr auto kNone = static_cast<std::uint32_t>(-1);
    std::uint32_t last = kNone;
    for (const Row& row : AllJingles.rows) {
        if (row.palette == last || row.name.find(wanted) == std::string::npos) continue;
        last = row.palette;
        found.push_back(AllJingles.palettes[row.palette]);
    }
    return found;
}

std::vector<SearchHit> HitsIn(const std::string& palette, std::string_view text) {
    std::vector<SearchHit> hits;
    const std::string wanted = comparable(text);
    for (int slot = 0; slot < kPaletteSlots; ++slot) {
        const std::string path = PaletteStore.GetValue("Path_" + std::to_string(slot), 0, palette);
        if (path.empty()) continue;
        const std::string caption = btCaption(path);
        if (comparable(caption).find(wanted) == std::string::npos || !FileExists(GetFullPath(path))) continue;
        hits.push_back({slot, caption});
    }
    return hits;
}

}  // namespace zv
