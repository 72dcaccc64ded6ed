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
    }
    /// Distance and target in ms, correction, underruns; of what was read last the silent frames and how far its last
    /// frame lies behind the writer.
    void tell(const char* what) {
        const auto silent = std::ranges::count(heard_, 0.0F) / 2;
        account_ << "  " << std::left << std::setw(34) << what << std::right << std::fixed
                 << std::setprecision(1) << " distance" << std::setw(6)
                 << static_cast<double>(bridge.filled()) / 44.1 << " target" << std::setw(5)
                 << bridge.target() << " ppm" << std::setw(7) << bridge.correction() << " underruns "
                 << bridge.underruns();
        if (silent > 0) account_ << " silent " << silent;
        if (!heard_.empty() && heard_.back() != 0)
            account_ << " behind" << std::setw(6)
                     << (static_cast<double>(last_) - frameOf(heard_[heard_.size() - 2])) / 44.1;
        account_ << '\n';
    }
    Bridge bridge;

  private:
    std::ostringstream& account_;
    std::size_t last_ = 1;
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
        c.run("ten seconds", 1000, kStep);
        c.run("the reader stands still", 60, kStep, 0);
        c.run("read again", 1, 0);
    }
    {
        Clockwork c(all, "Lumps", options);
        c.run("too little to begin with", 2, kStep);
        c.run("enough", 2, 2 * kStep);
        for (int second = 0; second < 3; ++second) {
            c.go(97, kStep, kStep);
            c.go(1, 0, 1543);
            c.go(1, 1543, 0);
            c.tell("a second, 35 ms of it at once");
        }
        for (int i = 0; i < 2; ++i) c.run("half a minute of calm", 3000, kStep);
        c.run("runs dry", 4, 0);
        c.run("nothing comes", 26, 0);
        c.run("too little to begin with", 2, kStep);
        c.run("enough", 3, 2 * kStep);
        c.bridge.restart();
        c.run("begun anew", 1, kStep);
        c.run("enough", 3, 2 * kStep);
        c.bridge.rest();
        c.run("a rest: what was written is silence", 3, 0);
        c.run("what comes then is heard whole", 7, kStep);
        c.run("a period late", 1, 0);
    }
    for (const double ppm : {200.0, -200.0, 1000.0}) {
        for (const std::uint32_t rate : {44100U, 48000U}) {
            BridgeOptions apart = options;
            apart.outRate = rate;
            const std::string pair = std::to_string(static_cast<int>(ppm)) + " ppm apart, read at ";
            Clockwork c(all, pair + std::to_string(rate), apart);
            c.go(4, kStep, 0);
            double owed = 0;
            for (int minute = 0; minute < 2; ++minute) {
                for (int i = 0; i < 6000; ++i) {
                    owed += kStep * ppm * 1e-6;
                    const int whole = static_cast<int>(owed);
                    owed -= whole;
                    c.go(1, kStep + static_cast<std::size_t>(whole), rate / 100);
                }
                c.tell("a minute");
            }
        }
    }
    {
        Clockwork c(all, "The writer is gone: the reader writes for itself", options);
        c.go(4, kStep, 0);
        c.run("on its way", 500, kStep);
        all << "  follows " << c.bridge.follows() << ", due " << c.bridge.due(kStep) << ", dry "
            << c.bridge.runsDry(kStep) << '\n';
        c.run("the writer is late", 2, 0);
        all << "  follows " << c.bridge.follows() << ", due " << c.bridge.due(kStep) << ", dry "
            << c.bridge.runsDry(kStep) << '\n';
        for (int i = 0; i < 3; ++i) c.readOwn(kStep), c.tell("its own");
        c.run("the writer is back", 3, kStep);
        c.bridge.clear();
        c.run("cleared", 1, kStep);
        all << "  follows " << c.bridge.follows() << ", dry " << c.bridge.runsDry(kStep) << '\n';
    }
    {
        options.oneClock = true;
        Clockwork c(all, "In step", options);
        c.run("nothing yet", 1, 0);
        c.run("the first sound within a read", 1, 200);
        c.run("a gap", 1, 200);
        c.run("ten steps", 10, kStep);
        c.run("50 ms ahead are let be", 1, 2205 + kStep);
        c.run("more is not", 1, kStep + 1);
        c.bridge.restart();
        c.run("begun anew", 1, 0);
        all << "  follows " << c.bridge.follows() << ", dry " << c.bridge.runsDry(kStep) << '\n';
    }
    zv::test::expectApproved("engine/bridge.txt", all.str());
}

}  // namespace
}  // namespace zv::engine::test
