// Devices of a JACK server of the test's own, and the choice between sound systems.

#include <jack/jack.h>

#include <atomic>

#include "platform/desktop_sound/choosing_devices.h"
#include "platform/jack/jack_devices.h"
#include "platform/jack/jack_stream.h"
#include "platform/offline/offline_devices.h"
#include "tests/sound/sound_server.h"

namespace zv::test {
namespace {

class Jack : public testing::Test {
  protected:
    Process serve(int rate, int period) const { return startJack(folder_, rate, period); }
    static bool listed(engine::DeviceSource& devices) {
        return within(8, [&] { return !devices.outputs().empty(); });
    }
    const Folder folder_;
};

TEST_F(Jack, EveryRateAndBlockSizeOfTheServerIsTaken) {
    const std::pair<std::uint32_t, std::uint32_t> rows[]{
        {44'100, 256}, {48'000, 256}, {48'000, 441}, {96'000, 333}, {44'100, 2048}};
    for (const auto& [rate, period] : rows) {
        const Process server = serve(static_cast<int>(rate), static_cast<int>(period));
        const auto devices = makeJackDevices();
        ASSERT_TRUE(listed(*devices)) << rate << " " << period;
        const auto outputs = devices->outputs();
        ASSERT_EQ(2U, outputs.size());  // a pair and a single port
        EXPECT_EQ("system 1/2", outputs[0].name);
        EXPECT_EQ("system 3", outputs[1].name);
        EXPECT_TRUE(outputs[0].isDefault);
        EXPECT_EQ(rate, outputs[0].rate);
        EXPECT_EQ(1U, devices->inputs().size());
        Probe probe;
        auto output = devices->openOutput(outputs[0].id, 44'100, probe);
        auto input = devices->openInput("", 44'100, probe);
        ASSERT_TRUE(output && input) << rate << " " << period;
        EXPECT_EQ(rate, output->rate());
        EXPECT_TRUE(within(4, [&] { return probe.asked > rate / 4 && probe.taken > rate / 4; }))
            << rate << " " << period;
        EXPECT_LE(probe.longest, output->period());
        output.reset();
        const std::uint64_t asked = probe.asked;
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        EXPECT_EQ(asked, probe.asked);
        EXPECT_FALSE(devices->openOutput("nowhere", 44'100, probe));
    }
    EXPECT_TRUE(makeJackDevices()->outputs().empty());
}

/// Listens to what the program sends: how often it crosses zero upwards.
class Tap {
  public:
    Tap() : client_(openJackClient("tap")) {
        if (client_ == nullptr) return;
        port_ = jack_port_register(client_, "in", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
        jack_set_process_callback(
            client_,
            [](jack_nframes_t frames, void* self) {
                static_cast<Tap*>(self)->listen(frames);
                return 0;
            },
            this);
        jack_activate(client_);
        jack_connect(client_, "Zentrova:out_1", jack_port_name(port_));
    }
    ~Tap() {
        if (client_ != nullptr) closeJackClient(client_);
    }
    /// Hz of the tone that is heard, counted over a second of it.
    double pitch() {
        if (client_ == nullptr) return 0;
        const double rate = jack_get_sample_rate(client_);
        crossings_ = frames_ = 0;
        within(6, [&] { return static_cast<double>(frames_) > rate; });
        return static_cast<double>(crossings_) * rate / static_cast<double>(frames_);
    }

  private:
    void listen(jack_nframes_t frames) {
        const auto* in = static_cast<const float*>(jack_port_get_buffer(port_, frames));
        for (jack_nframes_t i = 0; i < frames; ++i) {
            if (last_ < 0 && in[i] >= 0) ++crossings_;
            last_ = in[i];
        }
        frames_ += frames;
    }
    jack_client_t* client_;
    jack_port_t* port_ = nullptr;
    float last_ = 0;
    std::atomic<std::uint64_t> crossings_{0}, frames_{0};
};

TEST_F(Jack, AToneIsHeardAtItsPitchAndAfterTheServerCameBackAtAnotherRate) {
    constexpr DWORD rate = 44'100;
    constexpr double hertz = 1000;
    std::vector<float> tone(std::size_t{rate} * 2);
    for (std::size_t f = 0; f < rate; ++f)
        tone[f * 2] = tone[f * 2 + 1] =
            0.5F * static_cast<float>(std::sin(2 * M_PI * hertz * static_cast<double>(f) / rate));
    writeWav(folder_ / "tone.wav", tone, rate, 2);
    Process server = serve(48'000, 441);
    const auto devices = makeJackDevices();
    ASSERT_TRUE(listed(*devices));
    engine::engineControl()->install({makeFileDecoders(), devices});
    ASSERT_TRUE(BASS_Init(1, rate, 0, nullptr, nullptr)) << BASS_ErrorGetCode();
    const DWORD play = BASS_StreamCreateFile(false, (folder_ / "tone.wav").c_str(), 0, 0, BASS_SAMPLE_LOOP);
    ASSERT_TRUE(BASS_ChannelPlay(play, false));
    const auto heard = [] { return within(8, [] { return std::abs(Tap().pitch() - hertz) < 3; }); };
    EXPECT_TRUE(heard());
    for (const int again : {44'100, 96'000}) {
        server.end();
        EXPECT_TRUE(within(3, [] { return engine::engineControl()->statistics(1).lost; }));
        EXPECT_EQ(DWORD{BASS_ACTIVE_PLAYING}, BASS_ChannelIsActive(play));
        server = serve(again, 256);
        ASSERT_TRUE(within(8, [] { return !engine::engineControl()->statistics(1).lost; }));
        EXPECT_TRUE(heard()) << again;
    }
    BASS_Free();
    BASS_SetDevice(0);
    BASS_Free();
}

TEST(ChosenDevices, TheFirstSystemWithAnOutputIsTakenWheneverItComes) {
    const auto server = makeOfflineDevices({.outputs = {"Server"}});
    const auto card = makeOfflineDevices({.outputs = {"Card"}});
    bool waits = true;
    const auto devices = chooseDevices({{server, [&] { return waits; }}, {card}});
    server->unplug("Server");
    EXPECT_TRUE(devices->outputs().empty());  // it waits: nobody else is asked
    waits = false;
    card->unplug("Card");
    EXPECT_TRUE(devices->outputs().empty());
    card->plug("Card");  // a card that is plugged in later
    ASSERT_EQ(1U, devices->outputs().size());
    EXPECT_EQ("Card", devices->outputs()[0].name);
    card->unplug("Card");
    server->plug("Server");  // nothing was opened: whatever comes is taken
    EXPECT_EQ("Server", devices->outputs()[0].name);
    Probe probe;
    const auto open = devices->openOutput("Server", 44'100, probe);
    server->unplug("Server");
    card->plug("Card");
    EXPECT_TRUE(devices->outputs().empty());  // it is followed, not left
}

}  // namespace
}  // namespace zv::test
