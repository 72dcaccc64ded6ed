// A library of 2,000 palettes with 50 jingles each, about 20 MB: the program's start, and what it does with
// it.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "audio/open_palette.h"
#include "audio/streams.h"
#include "benchmarks/measure.h"
#include "benchmarks/program.h"
#include "model/history.h"
#include "model/jingle.h"
#include "model/palette_files.h"
#include "model/upcalls.h"
#include "platform/desktop.h"
#include "ui/edit/palette_list.h"
#include "ui/edit/search_index.h"

namespace zv::bench {
namespace {

constexpr int kPalettes = 2000, kSounds = 50, kStarts = 3, kRuns = 15;

std::string paletteName(int palette) { return "Palette " + std::to_string(palette); }

/// A program folder with `palettes` of them in its file.
void writeLibrary(const Home& home, int palettes) {
    home.file("zv.ini")
        << "[Settings]\r\nJinglesRows=8\r\nJinglesCols=12\r\nConfirmExit=0\r\nSealed=0\r\nPaletteIndex="
        << paletteName(0) << "\r\n";
    home.file("show.txt") << "at 0 end\n";
    home.file("longer.txt") << "at 4000 end\n";
    auto file = home.file("palette.ini");
    for (int p = 0; p < palettes; ++p) {
        file << '[' << paletteName(p) << "]\r\n";
        for (int j = 0; j < kSounds; ++j) {
            file << "Path_" << j << "=Samples\\A folder of the archive of the year " << p
                 << "\\A long name as they have them, number " << j << ".wav\r\nBTNCol_" << j
                 << "=80C0FF\r\nVolm_" << j << "=85\r\nFadeOut_" << j << "=1500\r\nFXV_" << j
                 << "=0,0,0,0,-2,-3,0,300,0,44100,0\r\n";
        }
    }
}

/// Seconds of one start and end of the whole program.
double startOn(const Home& home) {
    const double before = wallSeconds();
    performAside(home, "show.txt");
    return wallSeconds() - before;
}

struct Times {
    double refresh = 0, names = 0, open = 0, save = 0;          ///< ms
    double searchList = 0, searchPalettes = 0, searchHits = 0;  ///< ms
    double history = 0;                                         ///< ms, the longest
};

/// The program at work on the library; in a process of its own, as it starts once only.
void work(const Home& home) {
    const auto timed = [](auto&& what) {
        const double before = wallSeconds();
        what();
        return (wallSeconds() - before) * 1000;
    };
    std::vector<double> refreshed, named, opened, saved, listed, found, hit;
    perform(home, "longer.txt", [&]() -> std::string {
        const int run = static_cast<int>(opened.size());
        if (run == kRuns) return {};
        const std::string palette = paletteName(run * 131 % kPalettes);
        // What is done before the sounds; then all of it, painted slot by slot, the sounds not being there.
        named.push_back(timed([&] {
            for (int slot = 0; slot < kPaletteSlots; ++slot) openNames(slot, palette, false);
        }));
        opened.push_back(timed([&] { OpenFile(palette); }));
        if (J[kSounds - 1].Path.find("number 49") == std::string::npos) return "the palette did not come";
        saved.push_back(timed([&] {
            if (!CloseFile(palette)) std::abort();
        }));
        refreshed.push_back(timed([] {
            lstPalRefresh();
            processEvents();  // the window shows it
        }));
        listed.push_back(timed(ListAllJing));  // the palette was just saved
        std::size_t palettes = 0;
        found.push_back(timed([&] { palettes = PalettesWith("number 4").size(); }));
        if (palettes != kPalettes) return "the search did not find all palettes";
        hit.push_back(timed([&] { HitsIn(palette, "number"); }));
        return {};
    });
    if (opened.size() < kRuns) throw std::runtime_error("the show was too short");
    // A full history: each copy drops an old one.
    std::vector<double> kept;
    std::vector<cImpulse::Line> lines = LinesOfRecords(false);
    for (int run = 0; run < kHistoryEntries + kRuns; ++run) {
        lines.front().second = std::to_string(run);
        kept.push_back(timed([&] { KeepSection(HistoryReason::unsaved, paletteName(run), lines); }));
    }
    home.file("results") << median(refreshed) << ' ' << median(named) << ' ' << median(opened) << ' '
                         << median(saved) << ' ' << listed.front() << ' ' << median(found) << ' '
                         << median(hit) << ' ' << *std::max_element(kept.end() - kRuns, kept.end());
}

void library() {
    const Home empty("empty"), one("one"), large("large");
    writeLibrary(empty, 0);
    writeLibrary(one, 1);
    writeLibrary(large, kPalettes);
    tell("library-size", static_cast<double>(std::filesystem::file_size(large.path("palette.ini"))) / 1e6,
         "MB");
    startOn(empty);
    startOn(one);
    tell("library-first-start", startOn(large), "s");  // it copies the file for the backups
    std::vector<double> without, small, big;
    for (int run = 0; run < kStarts; ++run) {
        without.push_back(startOn(empty));
        small.push_back(startOn(one));
        big.push_back(startOn(large));
    }
    tell("library-start-empty", median(without), "s");
    tell("library-start-one", median(small), "s");
    // The palette that is shown is the same: what is more is the file's.
    atMost("library-start-longer", median(big) - median(small), "s", 1);

    const bool done = inProcessOfItsOwn([&] { work(large); });
    Times times;
    if (!done ||
        !(std::ifstream(large.path("results")) >> times.refresh >> times.names >> times.open >> times.save >>
          times.searchList >> times.searchPalettes >> times.searchHits >> times.history))
        throw std::runtime_error("the program at work on the library failed");
    atMost("library-list-refresh", times.refresh, "ms", 150);
    atMost("library-open-names", times.names, "ms", 10);
    tell("library-open-painted", times.open, "ms");
    atMost("library-save-palette", times.save, "ms", 100);
    tell("library-search-list", times.searchList, "ms");
    atMost("library-search-palettes", times.searchPalettes, "ms", 50);
    atMost("library-search-hits", times.searchHits, "ms", 50);
    atMost("library-history-copy", times.history, "ms", 20);
}

const Known knows("library", library);

}  // namespace
}  // namespace zv::bench
