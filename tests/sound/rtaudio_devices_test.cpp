// Devices through RtAudio, on a JACK server of the test's own.
#include <gtest/gtest.h>

#include <unistd.h>

#include <atomic>
#include <cstdlib>

#include "platform/rtaudio/rtaudio_devices.h"
#include "tests/sound/sound_server.h"

namespace zv::test {
namespace {

class Counter : public engine::SoundClient {
  public:
    void render(std::span<float> stereo) override {
        std::fill(stereo.begin(), stereo.end(), 0.0F);
        asked += stereo.size() / 2;
    }
    void heard(std::span<const float> stereo) override { taken += stereo.size() / 2; }
    void deviceLost() override {}
    void deviceBack() override {}
    std::atomic<std::uint64_t> asked{0}, taken{0};
};

TEST(RtAudioDevices, OutputAndInputOfAJackServer) {
    const Folder folder;
    const std::string name = "zv" + std::to_string(getpid());
    setenv("JACK_DEFAULT_SERVER", name.c_str(), 1);
    setenv("JACK_NO_START_SERVER", "1", 1);
    {
        const Process jack(
            {"jackd", "-n", name, "-r", "-d", "dummy", "-r", "44100", "-p", "256", "-C", "2", "-P", "2"},
            {{"HOME", folder.path().string()}});
        std::shared_ptr<engine::DeviceSource> devices;
        ASSERT_TRUE(within(8, [&] { return !(devices = makeRtAudioDevices())->outputs().empty(); }))
            << "jackd2?";
        ASSERT_EQ(1U, devices->outputs().size());
        EXPECT_EQ(44'100U, devices->outputs()[0].rate);
        EXPECT_TRUE(devices->outputs()[0].isDefault);
        EXPECT_EQ(1U, devices->inputs().size());
        Counter counter;
        auto output = devices->openOutput(devices->outputs()[0].id, 44'100, counter);
        auto input = devices->openInput("", 44'100, counter);
        ASSERT_TRUE(output && input);
        EXPECT_EQ(44'100U, output->rate());
        EXPECT_EQ(256U, output->period());
        EXPECT_TRUE(within(4, [&] { return counter.asked > 11'025 && counter.taken > 11'025; }));
        output.reset();
        const std::uint64_t asked = counter.asked;
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        EXPECT_EQ(asked, counter.asked);
        EXPECT_FALSE(devices->openOutput("nowhere", 44'100, counter));
    }
    // Without a server there is nothing, and no long wait for it.
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(makeRtAudioDevices()->outputs().empty());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

}  // namespace
}  // namespace zv::test
