// The display's tick with 120 jingles sounding and every bar moving, in the whole program on the virtual
// clock.
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "benchmarks/measure.h"
#include "benchmarks/program.h"
#include "engine/bass.h"
#include "model/jingle.h"
#include "platform/clock.h"
#include "platform/qt/view/shell.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/timers.h"
#include "ui/screen/display_tick.h"
#include "ui/screen/meters.h"

namespace zv::bench {
namespace {

constexpr std::size_t kTicks = 1000;
constexpr std::uint32_t kSeconds = 12;  // of a sound: its bar moves by a pixel in an eighth of a second
constexpr int kBetween = 170;           // ms

/// A quiet tone, 16-bit stereo.
std::string sound() {
    constexpr std::uint32_t kRate = 44100, kFrames = kSeconds * kRate, kBytes = 4 * kFrames;
    std::string wav;
    const auto put = [&wav](std::uint32_t value, int bytes) {
        for (int k = 0; k < bytes; ++k) wav += static_cast<char>(value >> 8 * k);
    };
    wav = "RIFF";
    put(kBytes + 36, 4);
    wav += "WAVEfmt ";
    put(16, 4);
    put(1, 2);
    put(2, 2);
    put(kRate, 4);
    put(4 * kRate, 4);
    put(4, 2);
    put(16, 2);
    wav += "data";
    put(kBytes, 4);
    for (std::uint32_t f = 0; f < kFrames; ++f) {
        const auto v = static_cast<std::uint32_t>(std::lround(200 * std::sin(f * 0.05)));
        put(v, 2);
        put(v, 2);
    }
    return wav;
}

void writeShow(const Home& home) {
    home.file("bed.wav") << sound();
    home.file("zv.ini") << "[Settings]\r\nJinglesRows=8\r\nJinglesCols=12\r\nHotJinglesRows=2\r\n";
    auto palette = home.file("palette.ini"), hot = home.file("HotJingles.ini"), show = home.file("show.txt");
    palette << "[Full]\r\n";
    hot << "[HotJingles]\r\n";
    show << "at 0 resize 1280 900\nat 0 pick Full\n";
    for (int k = 0; k < kJingles; ++k) {
        const bool isHot = k >= kPaletteSlots;
        const int slot = isHot ? k - kPaletteSlots : k;
        (isHot ? hot : palette) << "Path_" << slot << "=bed.wav\r\nLoop_" << slot << "=1\r\n";
        show << "at " << 1000 + 20 * k << " press " << k << "\n";
    }
    show << "at 300000 end\n";
}

int sounding() {
    int count = 0;
    for (const JingleRecord& j : J)
        count += j.hPlay != 0 && BASS_ChannelIsActive(j.hPlay) == BASS_ACTIVE_PLAYING;
    return count;
}

std::vector<int> barWidths() {
    std::vector<int> widths;
    for (int k = 0; k < kJingles; ++k) widths.push_back(Button(k)->JRemLev.width());
    return widths;
}

void tick() {
    const Home home("tick");
    writeShow(home);
    std::vector<double> logic, painted, meters;
    bool inside = false;
    int still = 0;
    perform(home, "show.txt", [&]() -> std::string {
        if (inside || logic.size() == kTicks || sounding() != kJingles) return {};
        inside = true;
        while (logic.size() < kTicks) {
            const std::vector<int> before = barWidths();
            // The sound goes on; the display's own ticks do not, so that the one that is measured has all to
            // do.
            timers().TimerDispAndJButtons.stop();
            sleepMs(kBetween);
            shell::flushChanged();
            shell::deliverEvents();
            const double began = wallSeconds();
            TimerDispAndJButtonsTick();
            const double decided = wallSeconds();
            shell::flushChanged();
            shell::deliverEvents();
            const double shown = wallSeconds();
            TimerVUTick();
            meters.push_back((wallSeconds() - shown) * 1000);
            logic.push_back((decided - began) * 1000);
            painted.push_back((shown - began) * 1000);
            const std::vector<int> after = barWidths();
            for (std::size_t k = 0; k < after.size(); ++k) still += before[k] == after[k];
        }
        timers().TimerDispAndJButtons.start();
        inside = false;
        return {};
    });
    if (logic.size() != kTicks) throw std::runtime_error("the 120 jingles never sounded at once");
    if (still > 0) throw std::runtime_error(std::to_string(still) + " bars stood still");
    tell("tick-120-measured", static_cast<double>(logic.size()), "ticks");
    atMost("tick-120-median", median(logic), "ms", 1);
    atMost("tick-120-painted-median", median(painted), "ms", 2.5);
    atMost("meters-120-median", median(meters), "ms", 0.5);
}

const Known knows("tick-120", tick);

}  // namespace
}  // namespace zv::bench
