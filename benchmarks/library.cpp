// A library of 2,000 palettes with 50 jingles each, about 20 MB: the program's start, and what it does with
// it.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "audio/open_palette.h"
#include "audio/streams.h"
#include "benchmarks/measure.h"
#include "benchmarks/program.h"
#include "model/history.h"
#include "model/jingle.h"
#include "model/palette_files.h"
#include "model/state.h"
#include "model/upcalls.h"
#include "platform/clock.h"
#include "platform/desktop.h"
#include "platform/jobs.h"
#include "startup/stores.h"
#include "ui/edit/assign.h"
#include "ui/edit/lost_files.h"
#include "ui/edit/options.h"
#include "ui/edit/palette_list.h"
#include "ui/edit/search_index.h"
#include "ui/edit/undo.h"

namespace zv::bench {
namespace {

constexpr int kPalettes = 2000, kSounds = 50, kStarts = 3, kRuns = 15;
constexpr const char* kEmptyPalette = "Empty";

std::string paletteName(int palette) { return "Palette " + std::to_string(palette); }

/// A program folder with `palettes` of them in its file.
void writeLibrary(const Home& home, int palettes) {
    home.file("zv.ini")
        << "[Settings]\r\nJinglesRows=8\r\nJinglesCols=12\r\nConfirmExit=0\r\nSealed=0\r\nPaletteIndex="
        << paletteName(0) << "\r\n";
    home.file("show.txt") << "at 0 end\n";
    home.file("longer.txt") << "at 0 answer yes\nat 60000 end\n";
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
    file << '[' << kEmptyPalette << "]\r\nThis_palette_is_empty=Yes\r\n";
}

/// `count` sounds of a fifth of a second in a folder of their own, named as `name` says.
void writeSounds(const std::string& folder, int count, const std::function<std::string(int)>& name) {
    std::filesystem::create_directories(folder);
    std::string wav(
        "RIFF\xC4\x44\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x44\xAC\0\0\x88\x58\1\0\2\0\x10\0data\xA0\x44\0\0", 44);
    wav.resize(44 + 0x44A0);
    for (int i = 0; i < count; ++i) std::ofstream(folder + "/" + name(i), std::ios::binary) << wav;
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

double timed(const std::function<void()>& what) {
    const double before = wallSeconds();
    what();
    return (wallSeconds() - before) * 1000;
}

class Work final : public JobWork {
  public:
    bool cancelled() override { return false; }
    void progress(int, std::string) override {}
};

/// Edits in the open program; their times go into the file "edits".
std::string edit(const Home& home) {
    OpenFile(kEmptyPalette);
    const double filled = timed([&] {
        const UndoStep step("unFill");
        for (int i = 0; i < kPaletteSlots; ++i)
            PutFile(i, home.path("fill/Jingle " + std::to_string(i) + ".wav"));
        processEvents();  // the window shows them
    });
    sleepMs(500);  // of the virtual clock: the last one is open
    if (J[kPaletteSlots - 1].hPlay == 0) return "the palette was not filled";
    std::vector<double> one;
    for (int run = 0; run < kRuns; ++run) {
        SelJ = {run};
        clTouchSet(run);
        one.push_back(timed(Undo));
    }
    const double whole = timed(Undo);
    if (!J[0].Path.empty()) return "the filling was not taken back";
    // All that the library has is lost, and found at once.
    LostSearch search{
        .path = "Samples\\A folder of the archive of the year 7\\A long name as they have them, number 7.wav",
        .folder = home.path("found")};
    PaletteStore.SetIniPath(PalFile);
    search.palettes = PaletteStore.Bytes();
    Work work;
    FoundFiles found;
    const double sought = timed([&] { found = FindLostFiles(search, work); });
    std::vector<PathChange> moved;
    const double held = timed([&] { moved = MovePaths(found.others, kEmptyPalette); });
    const double back = timed([&] { BringPaths(moved, true); });
    if (moved.size() + 1 < static_cast<std::size_t>(kPalettes) * kSounds - 1)
        return "not all lost files were found";
    home.file("edits") << filled << ' ' << median(one) << ' ' << whole << ' ' << sought << ' ' << held << ' '
                       << back;
    return {};
}

/// The program at work on the library; in a process of its own, as it starts once only.
void work(const Home& home) {
    bool edited = false;
    std::vector<double> refreshed, named, opened, saved, listed, found, hit;
    perform(home, "longer.txt", [&]() -> std::string {
        const int run = static_cast<int>(opened.size());
        if (run == kRuns) return std::exchange(edited, true) ? std::string() : edit(home);
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
    // A full history, in number and in bytes: each copy drops an old one, with its sound file where it has one.
    std::vector<double> kept;
    for (int file = 0; file < kHistoryEntries; ++file) {
        const std::string name = "Audio_Sample\\Old " + std::to_string(file) + ".wav";
        const std::filesystem::path path = home.path("Audio_Sample/Old " + std::to_string(file) + ".wav");
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << ' ';
        std::filesystem::resize_file(path, kHistoryBytes / kHistoryEntries);
        KeepDeletedFile(name);
    }
    std::vector<cImpulse::Line> lines = LinesOfRecords(false);
    for (int run = 0; run < 2 * kRuns; ++run) {
        lines.front().second = std::to_string(run);
        kept.push_back(timed([&] { KeepSection(HistoryReason::unsaved, paletteName(run), lines); }));
    }
    home.file("results") << median(refreshed) << ' ' << median(named) << ' ' << median(opened) << ' '
                         << median(saved) << ' ' << listed.front() << ' ' << median(found) << ' '
                         << median(hit) << ' ' << *std::ranges::max_element(kept);
}

void library() {
    const Home empty("empty"), one("one"), large("large");
    writeLibrary(empty, 0);
    writeLibrary(one, 1);
    writeLibrary(large, kPalettes);
    writeSounds(large.path("fill"), kPaletteSlots,
                [](int i) { return "Jingle " + std::to_string(i) + ".wav"; });
    writeSounds(large.path("found"), kSounds,
                [](int i) { return "A long name as they have them, number " + std::to_string(i) + ".wav"; });
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
    double filled = 0, single = 0, whole = 0, sought = 0, held = 0, back = 0;
    if (!(std::ifstream(large.path("edits")) >> filled >> single >> whole >> sought >> held >> back))
        throw std::runtime_error("the edits failed");
    atMost("edit-fill-96", filled, "ms", 250);
    atMost("edit-undo-one", single, "ms", 15);
    atMost("edit-undo-fill-96", whole, "ms", 250);
    atMost("edit-find-100000-lost", sought / 1000, "s", 5);
    atMost("edit-move-100000-paths", held, "ms", 500);
    atMost("edit-undo-100000-paths", back, "ms", 500);
}

const Known knows("library", library);

}  // namespace
}  // namespace zv::bench
