// Outputs and inputs of a real sound server, started here.
#include <gmock/gmock.h>

#include <atomic>
#include <csignal>
#include <mutex>

#include "platform/pulse/pulse_devices.h"
#include "tests/sound/sound_server.h"

namespace zv::test {
namespace {

using testing::ElementsAre;

/// Sends a ramp that tells its own position, and keeps what it hears.
class Ramp : public engine::SoundClient {
  public:
    static float at(std::uint64_t frame) { return static_cast<float>(frame % 65'536 + 1) / 131'072; }

    void render(std::span<float> stereo) override {
        for (std::size_t i = 0; i + 1 < stereo.size(); i += 2) {
            const float sample = sounding ? at(next++) : 0;
            stereo[i] = sample;
            stereo[i + 1] = -sample;
        }
        longest = std::max<std::size_t>(longest, stereo.size() / 2);
        asked += stereo.size() / 2;
    }
    void heard(std::span<const float> stereo) override {
        for (const float sample : stereo) loudest = std::max(loudest.load(), std::abs(sample));
        taken += stereo.size() / 2;
    }
    void deviceLost() override { ++lost; }
    void deviceBack() override { ++back; }

    std::atomic<bool> sounding{true};
    std::atomic<std::uint64_t> next{0}, asked{0}, taken{0};
    std::atomic<std::size_t> longest{0};
    std::atomic<float> loudest{0};
    std::atomic<int> lost{0}, back{0};
};

std::vector<std::string> namesOf(const std::vector<engine::DeviceDescription>& devices) {
    std::vector<std::string> names;
    for (const auto& device : devices) names.push_back(device.name);
    return names;
}

/// Frames of the recording that do not follow their predecessor in the ramp, from its first to its last
/// sound.
int breaksIn(const std::vector<float>& sound) {
    int breaks = 0;
    const std::size_t frames = sound.size() / 2;
    std::size_t first = 0, last = frames;
    while (first < frames && sound[2 * first] == 0) ++first;
    while (last > first && sound[2 * last - 2] == 0) --last;
    if (last < first + 10'000) return static_cast<int>(frames);
    for (std::size_t i = first + 1; i < last; ++i) {
        const auto before = static_cast<std::uint64_t>(std::lround(sound[2 * i - 2] * 131'072)) - 1;
        if (sound[2 * i] != Ramp::at(before + 1) || sound[2 * i + 1] != -sound[2 * i]) ++breaks;
    }
    return breaks;
}

constexpr int latePeriods = 6;  ///< breaks that a busy machine may cause in half a second

/// The breaks in half a second of an output. A server that comes back late hurries for a while: another half
/// second is taken until one is good; a fault of ours is in all of them.
int breaksAtRest(SoundServer& server, const char* output) {
    int breaks = latePeriods + 1;
    for (int attempt = 0; attempt < 10 && breaks > latePeriods; ++attempt) {
        if (attempt > 0) std::this_thread::sleep_for(std::chrono::milliseconds(200));
        SoundServer::Recording record(server, output);
        if (within(5, [&] { return record.frames() > 22'050; })) breaks = breaksIn(record.stop());
    }
    return breaks;
}

class PulseDevicesTest : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(server.answers()) << "pulseaudio does not start"; }

    SoundServer server;
    std::shared_ptr<engine::DeviceSource> devices = makePulseDevices({.server = server.address()});
};

TEST_F(PulseDevicesTest, ListsNamesThatStayOverReplugging) {
    EXPECT_THAT(namesOf(devices->outputs()), ElementsAre("MicFeed", "OutOne", "OutTwo"));
    EXPECT_THAT(namesOf(devices->inputs()), ElementsAre("MicOne"));
    EXPECT_EQ("out2", devices->outputs()[2].id);
    EXPECT_EQ(44'100U, devices->outputs()[2].rate);
    server.pactl("set-default-sink out2");
    EXPECT_FALSE(devices->outputs()[1].isDefault);
    EXPECT_TRUE(devices->outputs()[2].isDefault);
    server.unplugOutput("out1");
    EXPECT_THAT(namesOf(devices->outputs()), ElementsAre("MicFeed", "OutTwo"));
    // One that is plugged in again has its place of before, whatever came meanwhile.
    server.plugOutput("out3", "OutOne");
    server.plugOutput("out1", "OutOne");
    EXPECT_THAT(namesOf(devices->outputs()), ElementsAre("MicFeed", "OutOne", "OutTwo", "OutOne (2)"));
}

TEST_F(PulseDevicesTest, AServerThatIsStoppedIsWaitedForOnceAndFoundWhenItGoesOn) {
    const PulseOptions options{.server = server.address()};
    const auto seconds = [start = std::chrono::steady_clock::now()] {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    Ramp ramp;
    server.freeze(true);
    const double before = seconds();
    EXPECT_EQ(PulseAnswer::silent, askPulseServer(options));
    // What a start asks: lists, names, both outputs.
    for (int i = 0; i < 10; ++i) {
        EXPECT_TRUE(devices->outputs().empty());
        EXPECT_TRUE(devices->inputs().empty());
        EXPECT_FALSE(devices->openOutput("out1", 44'100, ramp));
    }
    EXPECT_LT(seconds() - before, 1.0);
    server.freeze(false);
    EXPECT_TRUE(within(2, [&] { return askPulseServer(options) == PulseAnswer::ready; }));
    EXPECT_EQ(3U, devices->outputs().size());
}

TEST_F(PulseDevicesTest, TwoOutputsSendEveryFrameOnceAndUnchanged) {
    Ramp one, two;
    const auto first = devices->openOutput("out1", 44'100, one);
    const auto second = devices->openOutput("out2", 44'100, two);
    ASSERT_TRUE(first && second);
    // The server runs in real time: on a busy machine a period may come too late for it, but not every time.
    int breaks = 1;
    for (int attempt = 0; attempt < 5 && breaks > 0; ++attempt) {
        SoundServer::Recording recordOne(server, "out1"), recordTwo(server, "out2");
        ASSERT_TRUE(within(5, [&] { return recordOne.frames() > 30'000 && recordTwo.frames() > 30'000; }));
        breaks = breaksIn(recordOne.stop()) + breaksIn(recordTwo.stop());
    }
    EXPECT_EQ(0, breaks);
    EXPECT_EQ(44'100U, first->rate());
    EXPECT_LE(one.longest, first->period());
    EXPECT_LE(first->period(), 441U);
}

TEST_F(PulseDevicesTest, DefaultAndUnknownDevicesAndRates) {
    Ramp ramp;
    server.pactl("set-default-sink out2");
    for (const std::uint32_t rate : {11'025U, 22'050U, 48'000U, 96'000U}) {
        SoundServer::Recording record(server, "out2");
        const auto device = devices->openOutput("", rate, ramp);
        ASSERT_TRUE(device) << rate;
        EXPECT_EQ(rate, device->rate());
        const std::uint64_t before = ramp.asked;
        const auto start = std::chrono::steady_clock::now();
        ASSERT_TRUE(within(4, [&] { return ramp.asked > before + rate / 2; }));
        const double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        EXPECT_NEAR(static_cast<double>(rate), static_cast<double>(ramp.asked - before) / seconds,
                    rate * 0.25);
        const auto sound = record.stop();
        EXPECT_GT(*std::max_element(sound.begin(), sound.end()), 0);
    }
    EXPECT_FALSE(devices->openOutput("nowhere", 44'100, ramp));
    EXPECT_FALSE(devices->openOutput("out1", 0, ramp));
    EXPECT_FALSE(devices->openInput("nowhere", 44'100, ramp));
}

TEST_F(PulseDevicesTest, OutputThatIsPulledOutComesBackByItself) {
    Ramp ramp, other;
    const auto device = devices->openOutput("out2", 44'100, ramp);
    const auto neighbour = devices->openOutput("out1", 44'100, other);
    ASSERT_TRUE(device && neighbour);
    for (int round = 1; round <= 2; ++round) {
        server.unplugOutput("out2");
        ASSERT_TRUE(within(2, [&] { return ramp.lost == round; }));
        // The show goes on at its pace, here and next door.
        const std::uint64_t before = ramp.asked, neighbourBefore = other.asked;
        EXPECT_TRUE(
            within(2, [&] { return ramp.asked > before + 8'820 && other.asked > neighbourBefore + 8'820; }));
        EXPECT_EQ(round - 1, ramp.back);
        server.plugOutput("out2", "OutTwo");
        ASSERT_TRUE(within(3, [&] { return ramp.back == round; }));
        EXPECT_LE(breaksAtRest(server, "out2"), latePeriods);
    }
    EXPECT_EQ(0, other.lost);
}

TEST_F(PulseDevicesTest, ServerThatIsRestarted) {
    Ramp ramp;
    const auto device = devices->openOutput("out1", 44'100, ramp);
    ASSERT_TRUE(device);
    server.stop();
    ASSERT_TRUE(within(2, [&] { return ramp.lost == 1; }));
    EXPECT_TRUE(devices->outputs().empty());
    server.start();
    ASSERT_TRUE(within(5, [&] { return ramp.back == 1; }));
    EXPECT_LE(breaksAtRest(server, "out1"), latePeriods);
}

// A server that hangs holds neither the lists nor the closing of a device.
TEST_F(PulseDevicesTest, ServerThatHangs) {
    Ramp ramp;
    auto device = devices->openOutput("out1", 44'100, ramp);
    ASSERT_TRUE(device);
    server.freeze(true);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(devices->outputs().empty());
    device.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    server.freeze(false);
}

TEST_F(PulseDevicesTest, InputHearsAndSurvivesReplugging) {
    const Folder folder;
    writeWav(folder / "tone.wav", wanderingTones(44'100, 2, 44'100 * 10), 44'100, 2);
    Ramp ear;
    const auto device = devices->openInput("mic1", 44'100, ear);
    ASSERT_TRUE(device);
    ASSERT_TRUE(within(3, [&] { return ear.taken > 4'410; }));
    EXPECT_EQ(0, ear.loudest);
    const Process player = server.feedMicrophone(folder / "tone.wav");
    EXPECT_TRUE(within(3, [&] { return ear.loudest > 0.3F; }));
    server.pactl("unload-module module-remap-source");
    ASSERT_TRUE(within(2, [&] { return ear.lost == 1; }));
    server.pactl("load-module module-remap-source master=micfeed.monitor source_name=mic1");
    ASSERT_TRUE(within(3, [&] { return ear.back == 1; }));
    ear.loudest = 0;
    EXPECT_TRUE(within(3, [&] { return ear.loudest > 0.3F; }));
}

TEST_F(PulseDevicesTest, FromOutputToInputInUnderThirtyMilliseconds) {
    const auto took = clickTravels(*devices, "micfeed", "mic1");
    ASSERT_FALSE(took.empty());
    std::printf("output to input: median %.1f ms, worst %.1f ms\n", took[took.size() / 2], took.back());
    EXPECT_LT(took[took.size() / 2], 30.0);
}

TEST(PulseDevicesWithoutServer, EmptyAtOnceAndNoSoundWorks) {
    const Folder folder;
    const auto devices = makePulseDevices({.server = "unix:" + (folder / "native")});
    Ramp ramp;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(devices->outputs().empty());
    EXPECT_TRUE(devices->inputs().empty());
    EXPECT_FALSE(devices->openOutput("", 44'100, ramp));
    EXPECT_EQ(PulseAnswer::refused, askPulseServer({.server = "unix:" + (folder / "native")}));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(500));

    const auto begin = std::chrono::steady_clock::now();
    auto none = devices->openNoSound(44'100, ramp);
    ASSERT_TRUE(none);
    ASSERT_TRUE(within(3, [&] { return ramp.asked >= 22'050; }));
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    EXPECT_NEAR(0.5, seconds, 0.1);
    none.reset();
    const std::uint64_t asked = ramp.asked;
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_EQ(asked, ramp.asked);
}

}  // namespace
}  // namespace zv::test
