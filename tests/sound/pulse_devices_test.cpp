// Outputs and inputs of a real sound server, started here.
#include <gmock/gmock.h>

#include "platform/pulse/pulse_devices.h"
#include "tests/sound/sound_server.h"

namespace zv::test {
namespace {

using testing::ElementsAre;

std::vector<std::string> namesOf(const std::vector<engine::DeviceDescription>& devices) {
    std::vector<std::string> names;
    for (const auto& device : devices) names.push_back(device.name);
    return names;
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
    Probe probe;
    auto device = devices->openOutput("out1", 44'100, probe);
    ASSERT_TRUE(device);
    server.freeze(true);
    const double before = seconds();
    EXPECT_EQ(PulseAnswer::silent, askPulseServer(options));
    // What a start asks: lists, names, both outputs.
    for (int i = 0; i < 10; ++i) {
        EXPECT_TRUE(devices->outputs().empty());
        EXPECT_TRUE(devices->inputs().empty());
        EXPECT_FALSE(devices->openOutput("out1", 44'100, probe));
    }
    EXPECT_LT(seconds() - before, 1.0);
    device.reset();
    EXPECT_LT(seconds() - before, 2.0) << "nor does it hold the closing of a device";
    server.freeze(false);
    EXPECT_TRUE(within(2, [&] { return askPulseServer(options) == PulseAnswer::ready; }));
    EXPECT_EQ(3U, devices->outputs().size());
}

TEST_F(PulseDevicesTest, DefaultAndUnknownDevicesAndRates) {
    Probe probe;
    server.pactl("set-default-sink out2");
    for (const std::uint32_t rate : {11'025U, 22'050U, 48'000U, 96'000U}) {
        SoundServer::Recording record(server, "out2");
        const auto device = devices->openOutput("", rate, probe);
        ASSERT_TRUE(device) << rate;
        EXPECT_EQ(rate, device->rate());
        EXPECT_LE(device->period(), std::max(256U, rate / 100));
        const std::uint64_t before = probe.asked;
        const auto start = std::chrono::steady_clock::now();
        ASSERT_TRUE(within(4, [&] { return probe.asked > before + rate / 2; }));
        const double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        EXPECT_NEAR(static_cast<double>(rate), static_cast<double>(probe.asked - before) / seconds,
                    rate * 0.25);
        const auto sound = record.stop();
        EXPECT_GT(*std::max_element(sound.begin(), sound.end()), 0);
        EXPECT_LE(probe.longest.exchange(0), device->period());
    }
    EXPECT_FALSE(devices->openOutput("nowhere", 44'100, probe));
    EXPECT_FALSE(devices->openOutput("out1", 0, probe));
    EXPECT_FALSE(devices->openInput("nowhere", 44'100, probe));
}

TEST_F(PulseDevicesTest, OutputThatIsPulledOutComesBackByItself) {
    Probe probe, other;
    const auto device = devices->openOutput("out2", 44'100, probe);
    const auto neighbour = devices->openOutput("out1", 44'100, other);
    ASSERT_TRUE(device && neighbour);
    for (int round = 1; round <= 2; ++round) {
        server.unplugOutput("out2");
        ASSERT_TRUE(within(2, [&] { return probe.lost == round; }));
        // The show goes on at its pace, here and next door.
        const std::uint64_t before = probe.asked, neighbourBefore = other.asked;
        EXPECT_TRUE(
            within(2, [&] { return probe.asked > before + 8'820 && other.asked > neighbourBefore + 8'820; }));
        EXPECT_EQ(round - 1, probe.back);
        server.plugOutput("out2", "OutTwo");
        ASSERT_TRUE(within(3, [&] { return probe.back == round; }));
        SoundServer::Recording record(server, "out2");
        EXPECT_TRUE(within(5, [&] { return record.frames() > 22'050; }));
        EXPECT_EQ(Probe::level, record.stop().back());
    }
    EXPECT_EQ(0, other.lost);
}

TEST_F(PulseDevicesTest, InputHearsAndSurvivesReplugging) {
    const Folder folder;
    writeWav(folder / "tone.wav", wanderingTones(44'100, 2, 44'100 * 10), 44'100, 2);
    Probe ear;
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

TEST(PulseDevicesWithoutServer, EmptyAtOnceAndNoSoundWorks) {
    const Folder folder;
    const auto devices = makePulseDevices({.server = "unix:" + (folder / "native")});
    Probe probe;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(devices->outputs().empty());
    EXPECT_TRUE(devices->inputs().empty());
    EXPECT_FALSE(devices->openOutput("", 44'100, probe));
    EXPECT_EQ(PulseAnswer::refused, askPulseServer({.server = "unix:" + (folder / "native")}));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(500));

    const auto begin = std::chrono::steady_clock::now();
    auto none = devices->openNoSound(44'100, probe);
    ASSERT_TRUE(none);
    ASSERT_TRUE(within(3, [&] { return probe.asked >= 22'050; }));
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    EXPECT_NEAR(0.5, seconds, 0.1);
    none.reset();
    const std::uint64_t asked = probe.asked;
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_EQ(asked, probe.asked);
}

}  // namespace
}  // namespace zv::test
