// Workers beside outputs that the test asks by hand: what calls them at once, a disk that hangs, and their rest.
#include <condition_variable>
#include <ctime>
#include <filesystem>
#include <mutex>

#include "tests/engine/show.h"

namespace zv::engine::test {
namespace {

using std::chrono::milliseconds;

/// An output without a thread: it is asked when the test does so, and counts how often it is woken.
class StillDevices final : public DeviceSource {
  public:
    std::vector<DeviceDescription> outputs() override { return {{"one", "one", true, 44100}}; }
    std::vector<DeviceDescription> inputs() override { return {}; }
    std::unique_ptr<SoundDevice> openOutput(const std::string&, std::uint32_t, SoundClient& client) override {
        asked_ = &client;
        return std::make_unique<Line>(wakes);
    }
    std::unique_ptr<SoundDevice> openInput(const std::string&, std::uint32_t, SoundClient&) override {
        return nullptr;
    }
    std::unique_ptr<SoundDevice> openNoSound(std::uint32_t, SoundClient&) override {
        return std::make_unique<Line>(others_);
    }
    bool offline() const override { return false; }
    void ask(int periods) {
        std::vector<float> sound(882);
        for (; periods > 0; --periods) asked_->render(sound);
    }
    std::atomic<int> wakes{0};

  private:
    struct Line final : SoundDevice {
        explicit Line(std::atomic<int>& count) : woken(count) {}
        std::uint32_t rate() const override { return 44100; }
        std::uint32_t period() const override { return 441; }
        void wake() override { ++woken; }
        std::atomic<int>& woken;
    };
    SoundClient* asked_ = nullptr;
    std::atomic<int> others_{0};
};

class WorkersTest : public Show {
  protected:
    WorkersTest() {
        engineControl()->install({decoders, still});
        openMain();
        decoders->sounds["long"] = {.length = 44100 * 180, .sample = ramp};
        decoders->sounds["hangs"] = {.length = 44100 * 180, .sample = [this](auto f, auto c) {
                                         std::unique_lock lock(mutex);
                                         gone.wait(lock, [this] { return !hangs; });
                                         return ramp(f, c);
                                     }};
    }
    ~WorkersTest() override {
        {
            const std::lock_guard lock(mutex);
            hangs = false;
        }
        gone.notify_all();
        engineControl()->install({});
    }
    template <typename Holds>
    static bool soon(int ms, Holds holds) {
        for (const auto until = std::chrono::steady_clock::now() + milliseconds(ms); !holds();) {
            if (std::chrono::steady_clock::now() > until) return false;
            std::this_thread::sleep_for(milliseconds(1));
        }
        return true;
    }
    static bool there(DWORD channel, std::uint64_t frame, int ms) {
        return soon(ms, [&] {
            return Engine::instance().find(channel)->sound->page(frame / PagedSound::kPage) != nullptr;
        });
    }
    std::shared_ptr<StillDevices> still = std::make_shared<StillDevices>();
    std::mutex mutex;
    std::condition_variable gone;
    bool hangs = false;
};

TEST_F(WorkersTest, ComeAtOnceAndOtherwiseRest) {
    const DWORD channel = file("long", BASS_SAMPLE_LOOP);
    for (const DWORD mode : {BASS_POS_BYTE, BASS_POS_LOOP}) {
        bool atOnce = false;  // they would look by themselves a quarter of a second later
        for (std::uint64_t k = 1; k <= 3 && !atOnce; ++k) {
            BASS_ChannelSetPosition(channel, (k + mode) * 441'000 * 4, mode);
            atOnce = there(channel, (k + mode) * 441'000, 60);
        }
        EXPECT_TRUE(atOnce) << mode;
    }
#ifndef _WIN32  // where the clock of a process is the wall's
    std::this_thread::sleep_for(milliseconds(20));
    const std::clock_t before = std::clock();
    std::this_thread::sleep_for(milliseconds(60));
    EXPECT_LT(static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC, 0.03) << "busy with nothing";
#endif
}

TEST_F(WorkersTest, ADiskThatHangsTakesNothingFromTheOthers) {
    std::vector<DWORD> hanging, others;
    for (int i = 0; i < 3; ++i) hanging.push_back(file("hangs", 0)), others.push_back(file("long", 0));
    hangs = true;
    for (std::size_t i = 0; i < 3; ++i) {
        BASS_ChannelSetPosition(hanging[i], 4'410'000 * 4, BASS_POS_BYTE);
        std::this_thread::sleep_for(milliseconds(20));
        BASS_ChannelSetPosition(others[i], 4'410'000 * 4, BASS_POS_BYTE);
        EXPECT_TRUE(there(others[i], 4'410'000, 2000)) << i;
    }
    EXPECT_FALSE(there(hanging[0], 4'410'000, 0));
    std::error_code none;
    EXPECT_LT(std::distance(std::filesystem::directory_iterator("/proc/self/task", none), {}), 14)
        << "threads";
}

TEST_F(WorkersTest, AnOutputAtRestIsWokenByWhatSoundsAndByWhatWaits) {
    const DWORD mixer = BASS_Mixer_StreamCreate(44100, 2, BASS_STREAM_DECODE | BASS_MIXER_NONSTOP);
    const DWORD split = BASS_Split_StreamCreate(mixer, 0, nullptr), channel = file("long");
    BASS_ChannelPlay(split, false);
    const auto rested = [&] {
        still->ask(250);
        still->wakes = 0;
        return engineControl()->statistics(kMain).resting;
    };
    const auto woken = [&](int ms) { return soon(ms, [&] { return still->wakes > 0; }); };
    const auto sync = [&](DWORD of) {
        BASS_ChannelSetSync(
            of, BASS_SYNC_POS, 1 << 30, [](auto...) {}, nullptr);
    };
    sync(channel);
    ASSERT_TRUE(rested()) << "whatever waits for a jingle";
    BASS_ChannelPlay(split, false);
    EXPECT_TRUE(woken(0)) << "a start";
    ASSERT_TRUE(rested());
    BASS_Mixer_StreamAddChannel(mixer, channel, 0);
    EXPECT_TRUE(woken(0)) << "what plays when it is added";
    BASS_ChannelStop(channel);
    ASSERT_TRUE(rested());
    BASS_ChannelSetAttribute(split, BASS_ATTRIB_VOLDSP, 0.5F);
    EXPECT_TRUE(woken(1000)) << "a command that waits";
    const DWORD other = BASS_Mixer_StreamCreate(44100, 2, BASS_STREAM_DECODE);
    sync(other);
    EXPECT_FALSE(rested()) << "somebody waits for a time of a mixer";
    BASS_StreamFree(other);
    EXPECT_TRUE(rested());
}

}  // namespace
}  // namespace zv::engine::test
