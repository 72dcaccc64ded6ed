// The INI store at its largest: a palette file of 500 palettes with 60 jingles each.
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "benchmarks/measure.h"
#include "startup/impulse.h"

namespace zv::bench {
namespace {

namespace fs = std::filesystem;

constexpr int kPalettes = 500, kJingles = 60, kRuns = 15;

std::string paletteName(int palette) { return "Palette " + std::to_string(palette); }

std::vector<cImpulse::Line> linesOf(int palette) {
    std::vector<cImpulse::Line> lines;
    for (int j = 0; j < kJingles; ++j) {
        const std::string n = std::to_string(j);
        lines.emplace_back("Path_" + n,
                           "Samples\\Set " + std::to_string(palette) + "\\jingle number " + n + ".wav");
        lines.emplace_back("BtnCol_" + n, "80C0FF");
        lines.emplace_back("Volume_" + n, "85");
        if (j % 4 != 0) continue;  // some have more than that
        lines.emplace_back("FadeOut_" + n, "1500");
        lines.emplace_back("FXV_" + n, "0,0,0,0,-2,-3,0,300,0,44100,0");
    }
    return lines;
}

void store() {
    const fs::path file = fs::temp_directory_path() / ("zentrova-bench-" + std::to_string(getpid()) + ".ini");
    {
        std::ofstream out(file);
        for (int p = 0; p < kPalettes; ++p) {
            out << '[' << paletteName(p) << "]\r\n";
            for (const auto& [key, value] : linesOf(p)) out << key << '=' << value << "\r\n";
        }
    }
    const auto timed = [](auto&& work) {
        const double before = wallSeconds();
        work();
        return (wallSeconds() - before) * 1000;
    };
    // The program's own store lives as long as the program: its first look at the file costs more.
    cImpulse palettes;
    palettes.SetIniPath(file.string());
    tell("ini-open-first", timed([&] { palettes.GetSectionLines(paletteName(kPalettes / 2)); }), "ms");
    std::vector<double> opens, changed, saves, lists;
    for (int run = 0; run < kRuns; ++run) {
        const std::string name = paletteName(run * 31 % kPalettes);
        std::size_t lines = 0;
        opens.push_back(timed([&] { lines = palettes.GetSectionLines(name).size(); }));
        if (lines != linesOf(0).size()) throw std::runtime_error("the palette did not come back whole");
        lists.push_back(timed([&] { palettes.ListSections(); }));
        saves.push_back(timed([&] { palettes.PutSection(name, linesOf(run)); }));
        std::ofstream(file, std::ios::app) << "; by someone else\r\n";
        changed.push_back(timed([&] { palettes.GetSectionLines(name); }));
    }
    atMost("ini-open-palette", median(opens), "ms", 5);
    tell("ini-open-changed", median(changed), "ms");
    atMost("ini-save-palette", median(saves), "ms", 50);
    atMost("ini-list-sections", median(lists), "ms", 50);
    std::error_code ignored;
    fs::remove(file, ignored);
}

const Known knows("ini", store);

}  // namespace
}  // namespace zv::bench
