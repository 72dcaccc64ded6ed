// A bridge between two clocks, each stepped by hand: its whole account is compared with bridge.txt.
#include <iomanip>
#include <sstream>

#include <gtest/gtest.h>

#include "engine/realtime/thread_tags.h"
#include "engine/sources/bridge.h"
#include "tests/engine/made_sounds.h"
#include "tests/support/approved.h"

namespace zv::engine::test {
namespace {

constexpr std::size_t kStep = 441;  ///< frames of 10 ms

/// Writer and reader. Every written frame is its own number.
class Clockwork {
  public:
    Clockwork(std::ostringstream& account, const std::string& title, BridgeOptions options)
        : bridge(options), account_(account) {
        account_ << title << '\n';
    }
    /// `steps` times so many frames written, then so many read; then a line.
    void run(const char* what, int steps, std::size_t written, std::size_t read = kStep) {
        go(steps, written, read);
        tell(what);
    }
    void go(int steps, std::size_t written, std::size_t read) {
        const AudioSection audio;
        for (int i = 0; i < steps; ++i) {
            write(written);
            if (read == 0) continue;
            heard_.assign(2 * read, -1);
            bridge.read(heard_);
            count();
        }
    }
    void write(std::size_t frames) {
        const AudioSection audio;
        std::vector<float> in(2 * frames);
        for (std::size_t f = 0; f < frames; ++f, ++last_)
            in[2 * f] = ramp(last_, 0), in[2 * f + 1] = ramp(last_, 1);
        if (frames > 0) bridge.write(in);
    }
    void readOwn(std::size_t frames) {
        const AudioSection audio;
        write(bridge.due(frames));
        heard_.assign(2 * frames, -1);
        bridge.readOwn(heard_);
        count();
    }
    /// Distance in frames, target in ms, correction, underruns; of all that was read since the last line the silent
    /// frames, and how far the others lay behind the writer.
    void tell(const char* what) {
        account_ << "  " << std::left << std::setw(34) << what << std::right << std::fixed
                 << std::setprecision(1) << " distance" << std::setw(6) << bridge.filled() << " target"
                 << std::setw(5) << bridge.target() << " ppm" << std::setw(7) << bridge.correction()
                 << " underruns " << bridge.underruns();
        if (silent_ > 0) account_ << " silent " << silent_;
        if (heardFrames_ > 0)
            account_ << std::setprecision(3) << " behind " << behind_ / static_cast<double>(heardFrames_);
        account_ << '\n';
        silent_ = heardFrames_ = 0;
        behind_ = 0;
    }
    Bridge bridge;

  private:
    void count() {
        for (std::size_t i = 0; i < heard_.size(); i += 2) {
            if (heard_[i] == 0 && heard_[i + 1] == 0) {
                ++silent_;
                continue;
            }
            ++heardFrames_;
            behind_ += static_cast<double>(last_) - (frameOf(heard_[i]) + frameOf(heard_[i + 1]) - 0.5) / 2;
        }
    }
    std::ostringstream& account_;
    std::size_t last_ = 1, silent_ = 0, heardFrames_ = 0;
    double behind_ = 0;
    std::vector<float> heard_;
};

TEST(Bridging, TheDistanceIsBoundedLearntAndBegunAnew) {
    std::ostringstream all;
    BridgeOptions options;
    options.targetMs = 30;
    options.leastMs = 18;
    options.mostMs = 60;
    {
        Clockwork c(all, "Too far ahead", options);
        c.run("nothing read yet", 20, kStep, 0);
        c.run("read: given up at once", 1, 0);
    }
    {
        Clockwork c(all, "Lumps", options);
        c.run("enough", 2, 2 * kStep);
        for (int second = 0; second < 2; ++second) {
            c.go(97, kStep, kStep);
            c.go(1, 0, 1543);
            c.go(1, 1543, 0);
            c.tell("a second, 35 ms of it at once");
        }
        c.run("a minute of calm", 6000, kStep);
        c.run("runs dry", 4, 0);
        c.run("too little to begin with", 2, kStep);
        c.run("enough", 3, 2 * kStep);
        c.run("a second and a half", 150, kStep);
        c.bridge.restart();
        c.run("begun anew", 1, kStep);
        c.run("enough", 3, 2 * kStep);
        c.bridge.rest();
        c.run("a rest: what was written is silence", 3, 0);
        c.run("what comes then is heard whole", 7, kStep);
        c.run("a second and a half", 150, kStep);
        for (const bool rests : {true, false, true}) {
            c.go(1, 3500, kStep);
            c.run("half a glide, by a debt", 9, kStep);
            rests ? c.bridge.rest() : c.bridge.clear();
            c.run("begun anew", 3, 0);
        }
    }
    for (const double ppm : {-200.0, 1000.0}) {
        for (const std::uint32_t rate : {44100U, 48000U}) {
            BridgeOptions apart = options;
            apart.outRate = rate;
            const std::string pair = std::to_string(static_cast<int>(ppm)) + " ppm apart, read at ";
            Clockwork c(all, pair + std::to_string(rate), apart);
            c.go(4, kStep, 0);
            double owed = 0;
            for (int i = 0; i < 6000; ++i) {
                owed += kStep * ppm * 1e-6;
                const int whole = static_cast<int>(owed);
                owed -= whole;
                c.go(1, kStep + static_cast<std::size_t>(whole), rate / 100);
            }
            c.tell("a minute");
            c.bridge.rest();
            c.go(3, 0, rate / 100);
            c.bridge.clear();
            c.run("a rest: what was learnt holds", 5, 2 * kStep, rate / 100);
        }
    }
    for (const std::uint32_t rate : {44100U, 48000U}) {
        BridgeOptions alone = options;
        alone.outRate = rate;
        const std::size_t period = rate / 100;
        Clockwork c(all, "The writer is gone: the reader writes for itself", alone);
        const auto account = [&](const char* what) {
            all << "  " << what << " follows " << c.bridge.follows() << ", due " << c.bridge.due(period)
                << ", dry " << c.bridge.runsDry(period) << '\n';
        };
        c.go(4, kStep, 0);
        c.run("on its way", 509, kStep, period);
        c.go(3, 0, period);
        c.run("the writer is late", 1, kStep - 150, period);
        account("then it");
        for (int i = 0; i < 3; ++i) c.readOwn(period);
        c.tell("its own");
        c.go(20, 2 * kStep, period);
        c.readOwn(period), c.tell("a lump from the writer, its own");
        c.go(150, kStep, period);
        c.run("the writer is back, late", 3, 0, 2 * period);
        c.bridge.restart();
        c.bridge.clear();
        account("cleared, it");
        c.run("enough", 40, kStep + 50, period);
    }
    {
        options.oneClock = true;
        Clockwork c(all, "In step", options);
        c.run("nothing yet", 1, 0);
        c.run("the first sound within a read", 1, 200);
        c.run("a gap", 1, 200);
        c.run("50 ms ahead are let be", 1, 2205 + kStep);
        c.run("more is not", 1, kStep + 1);
        c.bridge.restart();
        c.run("begun anew", 1, 0);
    }
    zv::test::expectApproved("engine/bridge.txt", all.str());
}

}  // namespace
}  // namespace zv::engine::test
