// The jingle editor: how soon its window and its waveform are there, and what a playhead that moves costs.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "audio/edit_sound.h"
#include "audio/outline.h"
#include "audio/sound_file.h"
#include "benchmarks/measure.h"
#include "benchmarks/program.h"
#include "model/jingle.h"
#include "platform/clock.h"
#include "platform/decoders.h"
#include "platform/file_decoders/file_decoders.h"
#include "platform/qt/view/shell.h"
#include "ui/edit/jingle_editor.h"
#include "ui/edit/wave_canvas.h"
#include "ui/screen/wave_picture.h"
#include "ui/windows/jingle_window.h"

namespace zv::bench {
namespace {

constexpr double kMs = 1000;
constexpr int kMinutes = 5, kHour = 60;
constexpr std::size_t kRepaints = 300;
constexpr double kMoved = 176'400;  ///< bytes: a second, so that the playhead stands elsewhere

void makeSound(const Home& home, const std::string& name, int minutes) {
    const std::string make = "ffmpeg -v error -y -f lavfi -i anoisesrc=d=" + std::to_string(60 * minutes) +
                             ":c=pink:a=0.3:r=44100 -ac 2 -b:a 128k '" + home.path(name) + "'";
    if (std::system(make.c_str()) != 0) throw std::runtime_error("ffmpeg could not make a test file");
}

class Work final : public JobWork {
  public:
    bool cancelled() override { return false; }
    void progress(int, std::string) override {}
};

struct Drawn {
    double first = 0, whole = 0;  ///< seconds from the beginning
    double hold = 0;              ///< longest time that the interface was held, seconds
};

/// A worker reads the outline while the interface draws what is there, as they do in the window.
Drawn outline(const std::string& path) {
    std::mutex mutex;
    Outline newest;
    std::atomic<bool> over = false;
    const auto put = [&](Waveform part) {
        auto made = std::make_shared<const Waveform>(std::move(part));
        const std::lock_guard lock(mutex);
        newest = std::move(made);
    };
    const double began = wallSeconds();
    std::thread worker([&] {
        Work work;
        if (const auto decoder = OpenSoundFile(path)) put(readWaveform(*decoder, work, put));
        over = true;
    });
    Drawn drawn;
    Outline shown;
    for (bool last = false; !last; std::this_thread::sleep_for(std::chrono::milliseconds(1))) {
        last = over;
        const double before = wallSeconds();
        Outline now;
        {
            const std::lock_guard lock(mutex);
            now = newest;
        }
        if (!now || now == shown) continue;
        shown = now;
        WaveView view{.length = static_cast<double>(now->length) / now->rate,
                      .rate = static_cast<double>(now->rate),
                      .width = 968,
                      .height = 140};
        view.showAll();
        const WaveShape shape = ShapeOf(view, now, {});
        const Drawing drawing = DrawWave(view, {}, shape, {}, {}, WaveLookOf(false));
        if (drawing.empty()) throw std::runtime_error("nothing was drawn");
        const double done = wallSeconds();
        if (drawn.first == 0) drawn.first = done - began;
        drawn.whole = done - began;
        drawn.hold = std::max(drawn.hold, done - before);
    }
    worker.join();
    if (!shown || shown->frames == 0) throw std::runtime_error("the outline did not come");
    return drawn;
}

void writeShow(const Home& home) {
    home.file("zv.ini") << "[Settings]\r\nSealed=0\r\n";
    home.file("palette.ini") << "[Long]\r\nPath_0=long.mp3\r\n";
    home.file("show.txt") << "at 0 resize 1280 800\nat 0 pick Long\nat 60000 end\n";
}

/// The window in the whole program, in a process of its own.
void work(const Home& home) {
    const auto shownNow = [] {
        shell::flushChanged();
        shell::deliverEvents();
    };
    std::vector<double> repaints;
    double opened = 0;
    bool inside = false;
    perform(home, "show.txt", [&]() -> std::string {
        if (inside || !repaints.empty() || Jingle(0).hPlay == 0) return {};
        inside = true;
        const double before = wallSeconds();
        clFXSet(0);
        shownNow();
        opened = wallSeconds() - before;
        sleepMs(15'000);  // of the virtual clock: the outline is there
        Play();
        while (repaints.size() < kRepaints) {
            sleepMs(170);
            shownNow();
            const double began = wallSeconds();
            EditSeek(0, EditPosition(0) + kMoved);
            ShowWave();
            shownNow();
            repaints.push_back((wallSeconds() - began) * kMs);
        }
        OKfx();
        return {};
    });
    home.file("results") << opened * kMs << ' ' << median(repaints);
}

void editor() {
    const Home home("editor");
    makeSound(home, "long.mp3", kMinutes);
    writeShow(home);
    if (!inProcessOfItsOwn([&] { work(home); })) throw std::runtime_error("the program failed");
    double opened = 0, repaint = 0;
    if (!(std::ifstream(home.path("results")) >> opened >> repaint))
        throw std::runtime_error("the show was too short");
    atMost("editor-window", opened, "ms", 150);
    atMost("editor-playhead-repaint", repaint, "ms", 2);
    soundDecoders = makeFileDecoders();
    const Drawn five = outline(home.path("long.mp3"));
    atMost("editor-waveform-first", five.first * kMs, "ms", 200);
    atMost("editor-waveform-5-minutes", five.whole, "s", 1.5);
    makeSound(home, "hour.mp3", kHour);
    const Drawn hour = outline(home.path("hour.mp3"));
    atMost("editor-waveform-hour", hour.whole, "s", 30);
    atMost("editor-waveform-hold", std::max(five.hold, hour.hold) * kMs, "ms", 15);
}

const Known knows("editor", editor);

}  // namespace
}  // namespace zv::bench
