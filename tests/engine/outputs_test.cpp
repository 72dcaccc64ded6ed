// Outputs whose callbacks are called by hand: what each gives, who drives and what is counted is compared with
// outputs.txt.
#include <sstream>

#include "tests/engine/show.h"
#include "tests/support/approved.h"

namespace zv::engine::test {
namespace {

/// An output asks when it is told to: "m" the main one, "a" the auxiliary, "0" the no-sound device. Behind "-" it is
/// lost, behind "+" it is back, behind "!" it ran dry, behind "?" only asks whether it rests; behind "h" or "l" its rate
/// is 48 or 22.05 kHz and its period twice as long, behind "x" it has none.
struct Hands final : DeviceSource {
    struct Line final : SoundDevice {
        Line(Hands& hands, char which, std::uint32_t at, SoundClient& its)
            : rateNow(at), client(its), hands_(hands), which_(which) {
            hands.lines[which] = this;
            if (which == 'i') return;
            std::vector<float> early(882, 9);  // asked before it is open
            its.render(early);
            EXPECT_EQ(early, std::vector<float>(882));
        }
        ~Line() override {
            if (hands_.lines[which_] == this) hands_.lines.erase(which_);
        }
        std::uint32_t rate() const override { return rateNow; }
        std::uint32_t period() const override { return rateNow / 100; }
        void wake() override { ++woken; }
        std::uint32_t rateNow;
        int woken = 0;
        SoundClient& client;

      private:
        Hands& hands_;
        const char which_;
    };
    explicit Hands(bool one) : oneClock_(one) {}
    std::vector<DeviceDescription> outputs() override { return {{"m", "m", true, 0}, {"a", "a", false, 0}}; }
    std::vector<DeviceDescription> inputs() override { return {{"i", "i", true, 0}}; }
    std::unique_ptr<SoundDevice> openOutput(const std::string& id, std::uint32_t rate,
                                            SoundClient& client) override {
        if (refuses) return nullptr;
        return std::make_unique<Line>(*this, id[0], hasRate ? rate : 0, client);
    }
    std::unique_ptr<SoundDevice> openInput(const std::string&, std::uint32_t rate,
                                           SoundClient& client) override {
        return std::make_unique<Line>(*this, 'i', rate, client);
    }
    std::unique_ptr<SoundDevice> openNoSound(std::uint32_t rate, SoundClient& client) override {
        return std::make_unique<Line>(*this, '0', rate, client);
    }
    bool offline() const override { return true; }
    bool oneClock() const override { return oneClock_; }
    bool rests() const override { return true; }

    std::map<char, Line*> lines;
    bool refuses = false, hasRate = true;  ///< to open an output; with one

  private:
    bool oneClock_;
};

class Account : public Show {
  protected:
    /// All of `acts` so many times; then, of each output: how often it was called, asked, woken and a source ran dry, the
    /// stretches of the ramp that it gave, and its silent frames.
    void run(const char* what, int times, const std::string& acts) {
        std::map<char, std::vector<float>> heard;
        for (int i = 0; i < times; ++i) {
            char how = ' ';
            for (const char c : acts) {
                if (const auto line = hands->lines.find(c); line != hands->lines.end())
                    ask(c, *line->second, std::exchange(how, ' '), heard[c]);
                else
                    how = c;
            }
        }
        all << what << ':';
        for (const auto& [name, line] : hands->lines) {
            if (name == 'i') continue;
            const DeviceStatistics s = statisticsOf(name);
            all << " | " << name << (s.open ? "" : " closed") << (s.lost ? " lost" : "")
                << (s.resting ? " rests" : "") << (s.longestCallbackNs > 0 ? "" : " in no time") << ' '
                << s.callbacks << '/' << s.asked << '/' << line->woken << '/' << s.sourceUnderruns;
            tell(heard[name], static_cast<double>(line->rateNow) / 44100);
        }
        all << '\n';
    }
    static DeviceStatistics statisticsOf(char name) {
        return engineControl()->statistics(name == '0' ? 0 : name == 'm' ? kMain : kAux);
    }
    void ask(char name, Hands::Line& line, char how, std::vector<float>& heard) {
        if (how == '-') return line.client.deviceLost();
        if (how == '+') return line.client.deviceBack();
        if (how == '!') {
            const std::uint64_t before = statisticsOf(name).underruns;
            line.client.ranDry();
            EXPECT_EQ(statisticsOf(name).underruns, before + 1);
            return;
        }
        if (how == '?') return static_cast<void>(line.client.resting());
        if (how == 'h' || how == 'l' || how == 'x') {
            const std::uint32_t rate = how == 'h' ? 48000 : how == 'l' ? 22050 : 0;
            if (how != 'x') line.rateNow = rate;
            return line.client.deviceChanged(rate, rate / 50);
        }
        std::vector<float> some(2 * std::size_t{line.period()}, 9);
        if (name == 'i') {
            for (float& sample : some) sample = ramp(spoken_++ / 2, 0);
            return line.client.heard(some);
        }
        line.client.render(some);
        heard.insert(heard.end(), some.begin(), some.end());
    }
    void tell(const std::vector<float>& sound, double perFrame) {
        std::size_t silent = 0;
        double first = -1, last = -1;
        const auto stretch = [&] {
            // A conversion rings for a few frames where the ramp jumps.
            if (first >= 0 && last - first > 100)
                all << ' ' << std::lround(first) << ".." << std::lround(last);
            first = -1;
        };
        for (std::size_t f = 0; f < sound.size() / 2; ++f) {
            const double frame = frameOf(sound[2 * f]);
            if (std::abs(frame) < 0.5) {
                ++silent;
                stretch();
                continue;
            }
            if (first >= 0 && std::abs((frame - last) * perFrame - 1) > 0.5) stretch();
            if (first < 0) first = frame;
            last = frame;
        }
        stretch();
        if (silent > 0) all << " silent " << silent;
    }
    std::shared_ptr<Hands> hands;
    std::ostringstream all;

  private:
    std::uint64_t spoken_ = 2'000'000;  // samples: what the input hears are other numbers
};

TEST_F(Account, OfEveryOutputThroughLossSilenceAndReturn) {
    for (const int device : {-1, kMostDevices, 1000}) EXPECT_FALSE(engineControl()->statistics(device).open);
    for (const bool one : {false, true}) {
        hands = std::make_shared<Hands>(one);
        engineControl()->install({decoders, hands});
        all << (one ? "One clock" : "Two clocks") << '\n';
        bool slow = false;  // the decoder takes longer than a period
        decoders->sounds["ramp"].length = 900'000;
        decoders->sounds["ramp"].sample = [&](std::uint64_t frame, std::uint32_t channel) {
            if (std::exchange(slow, false)) std::this_thread::sleep_for(std::chrono::milliseconds(30));
            return ramp(frame, channel);
        };
        {
            const Topology studio(one ? 48000 : 44100);
            const DWORD jingle = studio.jingle(file("ramp"));
            run("before anything", 1, "0ma?0?m?a");
            BASS_ChannelPlay(jingle, false);
            run("the main one drives, the auxiliary follows", 20, "0ma");
            run("the auxiliary asks first, and runs dry", 3, "a0m!a");
            run("a change of what is not lost, and no rate", 1, "hm-mxm+m0ma");
            run("the main one is lost", 8, "-m0a");
            run("both are lost", 4, "-a0");
            run("the main one is back", 8, "+m0m");
            run("the auxiliary too", 8, "+a0ma");
            run("the main one comes back with another rate", 1, "-mhm+m");
            run("it drives", 8, "0ma");
            run("the auxiliary comes back slower", 1, "-ala+a");
            run("it follows", 8, "0maa");
            run("the main one hangs: the auxiliary would run dry", 8, "0a");
            const std::uint64_t late = statisticsOf('a').underruns;
            slow = true;
            run("it hangs on", 60, "0a");
            EXPECT_GT(statisticsOf('a').underruns, late);
            run("it goes on", 4, "0ma");
            run("both hang", 49, "0");
            run("half a second", 4, "0");
            run("they go on", 4, "0ma");
            BASS_ChannelStop(jingle);
            run("silence", 200, "0ma");
            run("a rest", 2, "0ma?0?m?a");
            BASS_ChannelPlay(jingle, false);
            run("out of the rest", 6, "0ma");
            run("both are lost after an underrun", 1, "-m-a");
            BASS_SetDevice(kMain);
            BASS_Free();
            run("the main one is closed", 8, "+a0a");
            hands->refuses = true;
            EXPECT_FALSE(BASS_Init(kMain, 44100, 0, nullptr, nullptr));
            EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_DRIVER);
            hands->refuses = hands->hasRate = false;
            EXPECT_FALSE(BASS_Init(kMain, 44100, 0, nullptr, nullptr));
            EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_FREQ);
            hands->hasRate = true;
            BASS_Init(kMain, 44100, 0, nullptr, nullptr);
            run("opened anew, it stands behind", 4, "0ma");
            BASS_RecordInit(0);
            const DWORD mic = BASS_RecordStart(44100, 2, 0, nullptr, nullptr);
            BASS_Mixer_StreamAddChannel(studio.micMixer, mic, 0);
            BASS_ChannelStop(jingle);
            run("an input", 20, "i0ma");
            run("it is ahead", 12, "i");
            run("it is heard on", 4, "i0ma");
            run("it was lost: what it had said is dropped", 1, "iiiiii-i+ii");
            run("it is heard again", 12, "i0ma");
            BASS_RecordFree();
            run("it is closed", 4, "0ma");
        }
    }
    zv::test::expectApproved("engine/outputs.txt", all.str());
}

}  // namespace
}  // namespace zv::engine::test
