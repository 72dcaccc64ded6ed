// The display tick with 120 jingles sounding, in the whole program on the virtual clock.
#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "app/start.h"
#include "benchmarks/measure.h"
#include "engine/bass.h"
#include "model/jingle.h"
#include "platform/clock.h"
#include "platform/qt/view/shell.h"
#include "platform/rehearsal/rehearsal.h"
#include "ui/display.h"
#include "ui/main_window.h"

namespace zv::bench {
namespace {

namespace fs = std::filesystem;

/// A minute of a quiet tone, 16-bit stereo.
void writeSound(const fs::path& file) {
    constexpr std::uint32_t kRate = 44100, kFrames = 60 * kRate, kBytes = 4 * kFrames;
    std::string wav = "RIFF....WAVEfmt ....";
    const auto put = [&wav](std::size_t at, std::uint32_t value) {
        for (int k = 0; k < 4; ++k) wav[at + static_cast<std::size_t>(k)] = static_cast<char>(value >> 8 * k);
    };
    put(4, kBytes + 36);
    put(16, 16);
    const std::uint16_t format[] = {1, 2, kRate & 0xffff, 0, 176400 & 0xffff, 176400 >> 16, 4, 16};
    for (const std::uint16_t v : format) wav += {static_cast<char>(v), static_cast<char>(v >> 8)};
    wav += "data....";
    put(wav.size() - 4, kBytes);
    for (std::uint32_t f = 0; f < kFrames; ++f) {
        const auto v = static_cast<std::int16_t>(200 * std::sin(f * 0.05));
        for (int side = 0; side < 2; ++side) wav += {static_cast<char>(v), static_cast<char>(v >> 8)};
    }
    std::ofstream(file, std::ios::binary) << wav;
}

class Home {
  public:
    Home() : folder(fs::temp_directory_path() / ("zentrova-bench-home-" + std::to_string(getpid()))) {
        fs::create_directories(folder / "out");
        writeSound(folder / "bed.wav");
        std::ofstream(folder / "zv.ini")
            << "[Settings]\r\nJinglesRows=8\r\nJinglesCols=12\r\nHotJinglesRows=2\r\n";
        std::ofstream palette(folder / "palette.ini"), hot(folder / "HotJingles.ini"),
            show(folder / "show.txt");
        palette << "[Full]\r\n";
        hot << "[HotJingles]\r\n";
        for (int k = 0; k < kPaletteSlots; ++k) palette << "Path_" << k << "=bed.wav\r\n";
        for (int k = kPaletteSlots; k < kJingles; ++k) hot << "Path_" << k - kPaletteSlots << "=bed.wav\r\n";
        show << "at 0 resize 1280 900\nat 0 pick Full\n";
        for (int k = 0; k < kJingles; ++k) show << "at " << 1000 + 20 * k << " press " << k << "\n";
        show << "at 50000 end\n";
    }
    ~Home() {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }
    Home(const Home&) = delete;
    Home& operator=(const Home&) = delete;
    fs::path folder;
};

int sounding() {
    int count = 0;
    for (const JingleRecord& j : J)
        count += j.hPlay != 0 && BASS_ChannelIsActive(j.hPlay) == BASS_ACTIVE_PLAYING;
    return count;
}

void tick() {
    const Home home;
    std::error_code error;
    const std::string shipped = fs::read_symlink("/proc/self/exe", error).parent_path().string();
    char name[] = "bench_program";
    char* words[] = {name, nullptr};
    int count = 1;
    shell::startQt(count, words, true);

    RehearsalOptions options;
    options.script = (home.folder / "show.txt").string();
    options.home = home.folder.string();
    options.out = (home.folder / "out").string();
    options.keepSound = false;
    CommandLine commandLine;
    commandLine.home = options.home;

    std::vector<double> times, painted;
    int most = 0;
    bool inside = false;
    RehearsedProgram program;
    program.start = [&] {
        EnterProgramFolder(commandLine, shipped);
        return Main(commandLine);
    };
    program.close = [] { shell::closeWindow(frmMain().window); };
    program.fault = [&]() -> std::string {
        if (inside) return {};
        inside = true;
        const int now = sounding();
        most = std::max(most, now);
        if (now == kJingles) {
            sleepMs(40);  // the sound goes on, so that bars and counter have moved
            const double before = wallSeconds();
            TimerDispAndJButtonsTick();
            times.push_back((wallSeconds() - before) * 1000);
            // The same with every bar moving, and what changed painted into memory.
            sleepMs(700);  // a bar is a hundred pixels for a minute: each has moved
            shell::deliverEvents();
            const double again = wallSeconds();
            TimerDispAndJButtonsTick();
            shell::flushChanged();
            shell::deliverEvents();
            painted.push_back((wallSeconds() - again) * 1000);
        }
        inside = false;
        return {};
    };
    const int status = rehearse(options, program);
    shell::endQt();
    if (status != kRehearsalPassed) throw std::runtime_error("the rehearsal did not pass");
    if (times.empty())
        throw std::runtime_error("at most " + std::to_string(most) + " of 120 jingles sounded at once");
    atMost("tick-120", median(times), "ms", 1);
    atMost("tick-120-painted", median(painted), "ms", 2.5);
}

const Known knows("tick-120", tick);

}  // namespace
}  // namespace zv::bench
