// The engine on a real sound server with real files: what is pressed is on air at once and unchanged, on both
// outputs, also out of a rest.
#include <gmock/gmock.h>

#include "platform/pulse/pulse_devices.h"
#include "tests/sound/sound_server.h"

namespace zv::test {
namespace {

constexpr DWORD rate = 44'100;
constexpr DWORD mixing = BASS_STREAM_DECODE | BASS_MIXER_NONSTOP | BASS_SAMPLE_FLOAT;

/// Main and auxiliary output on two devices, and the microphone's bus, as the program builds them.
class OnAir : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(server.answers()) << "pulseaudio does not start";
        engine::engineControl()->install(
            {makeFileDecoders(), makePulseDevices({.server = server.address()})});
        BASS_SetConfig(BASS_CONFIG_DEV_NONSTOP, 1);
        ASSERT_TRUE(BASS_Init(0, rate, 0, nullptr, nullptr));
        mainMixer = BASS_Mixer_StreamCreate(rate, 2, mixing);
        micMixer = BASS_Mixer_StreamCreate(rate, 2, mixing);
        for (int i : {0, 1}) {
            outMixer[i] = BASS_Mixer_StreamCreate(rate, 2, mixing);
            for (const DWORD bus : {mainMixer, micMixer})
                BASS_Mixer_StreamAddChannel(outMixer[i],
                                            BASS_Split_StreamCreate(bus, BASS_STREAM_DECODE, nullptr),
                                            BASS_MIXER_CHAN_BUFFER);
            device[i] = numberOf(i == 0 ? "OutOne" : "OutTwo");
            ASSERT_TRUE(BASS_Init(static_cast<int>(device[i]), rate, 0, nullptr, nullptr))
                << BASS_ErrorGetCode();
            BASS_SetDevice(device[i]);
            const DWORD out = BASS_Split_StreamCreate(outMixer[i], 0, nullptr);
            BASS_ChannelSetAttribute(out, BASS_ATTRIB_BUFFER, 0);
            ASSERT_TRUE(BASS_ChannelStart(out));
        }
    }
    void TearDown() override {
        BASS_RecordFree();
        for (const DWORD number : {device[1], device[0], 0U})
            if (BASS_SetDevice(number)) BASS_Free();
    }

    /// The number of an output, which follows from the names of all that there are.
    static DWORD numberOf(const std::string& name) {
        BASS_DEVICEINFO info{};
        for (DWORD number = 1; BASS_GetDeviceInfo(number, &info); ++number)
            if (info.name == name) return number;
        ADD_FAILURE() << "no output " << name;
        return 0;
    }

    DWORD jingle(const std::string& path) {
        const DWORD source = BASS_StreamCreateFile(false, path.c_str(), 0, 0, BASS_STREAM_DECODE);
        EXPECT_NE(0U, source) << path << " " << BASS_ErrorGetCode();
        const DWORD play = BASS_FX_TempoCreate(source, BASS_STREAM_DECODE | BASS_FX_FREESOURCE);
        BASS_Mixer_StreamAddChannel(mainMixer, play, BASS_MIXER_CHAN_BUFFER);
        BASS_ChannelStop(play);
        return play;
    }

    SoundServer server;
    Folder folder;
    DWORD mainMixer = 0, micMixer = 0, outMixer[2]{}, device[2]{};
};

/// First frame of `sound` that is louder than noise; its size when there is none.
std::size_t firstSound(const std::vector<float>& sound) {
    for (std::size_t i = 0; i < sound.size(); ++i)
        if (std::abs(sound[i]) > 1e-4F) return i / 2;
    return sound.size() / 2;
}

/// Largest difference between `tones` as a 16-bit file holds them and what an output sent of them.
float worstDifference(const std::vector<float>& sent, const std::vector<float>& tones) {
    const std::size_t start = firstSound(sent),
                      shift = firstSound(tones);  // their own first frames are silent
    const std::size_t frames = tones.size() / 2 - shift;
    if (start + frames > sent.size() / 2) return 1;
    float worst = 0;
    for (std::size_t i = 0; i < frames * 2; ++i)
        worst =
            std::max(worst, std::abs(sent[2 * start + i] - std::round(tones[2 * shift + i] * 32768) / 32768));
    return worst;
}

TEST_F(OnAir, OutputsRestAndAPressEndsTheRestAtOnce) {
    const auto tones = wanderingTones(rate, 2, rate / 2);
    writeWav(folder / "tones.wav", tones, rate, 2);
    const DWORD play = jingle(folder / "tones.wav");
    const auto rest = [](int device) {
        return within(8, [&] {
            const auto asked = engine::engineControl()->statistics(device).callbacks;
            std::this_thread::sleep_for(std::chrono::milliseconds(400));
            return engine::engineControl()->statistics(device).callbacks == asked;
        });
    };
    float worst = 1, lag = 1000;
    for (int attempt = 0; attempt < 6 && worst > 1e-6F; ++attempt) {
        ASSERT_TRUE(rest(device[0]) && rest(device[1]));
        // What makes no sound is heard as well.
        const float volume = 0.5F + 0.1F * static_cast<float>(attempt);
        BASS_ChannelSlideAttribute(play, BASS_ATTRIB_VOL, volume, 5);
        EXPECT_TRUE(within(1, [&] {
            float now = 0;
            return BASS_ChannelGetAttribute(play, BASS_ATTRIB_VOL, &now) && now == volume;
        }));
        BASS_ChannelSetAttribute(play, BASS_ATTRIB_VOL, 1);
        ASSERT_TRUE(rest(device[0]) && rest(device[1]));
        Probe mainEar, auxEar;
        const auto devices = makePulseDevices({.server = server.address()});
        const auto one = devices->openInput("out1.monitor", rate, mainEar),
                   two = devices->openInput("out2.monitor", rate, auxEar);
        SoundServer::Recording record(server, "out1");
        const auto pressed = std::chrono::steady_clock::now().time_since_epoch().count();
        ASSERT_TRUE(BASS_ChannelPlay(play, true));
        ASSERT_TRUE(within(5, [&] { return BASS_ChannelIsActive(play) == BASS_ACTIVE_STOPPED; }));
        ASSERT_TRUE(within(2, [&, before = record.frames()] { return record.frames() > before + 8'820; }));
        ASSERT_TRUE(mainEar.soundAt != 0 && auxEar.soundAt != 0);
        worst = worstDifference(record.stop(), tones);
        lag = static_cast<float>(auxEar.soundAt - mainEar.soundAt) / 1e6F;
        std::printf("out of a rest: heard after %.1f ms, on the other output %.1f ms later\n",
                    static_cast<double>(mainEar.soundAt - pressed) / 1e6, static_cast<double>(lag));
    }
    EXPECT_LE(worst, 1e-6F) << "the press is not whole";
    EXPECT_LT(lag, 100);
}

TEST_F(OnAir, MicrophoneReachesTheOutput) {
    writeWav(folder / "tones.wav", wanderingTones(rate, 2, rate * 6), rate, 2);
    ASSERT_TRUE(BASS_RecordInit(-1)) << BASS_ErrorGetCode();
    BASS_RECORDINFO info{};
    ASSERT_TRUE(BASS_RecordGetInfo(&info));
    EXPECT_EQ(rate, info.freq);
    const DWORD microphone = BASS_FX_TempoCreate(BASS_RecordStart(info.freq, 2, 0, nullptr, nullptr),
                                                 BASS_STREAM_DECODE | BASS_FX_FREESOURCE);
    ASSERT_TRUE(BASS_Mixer_StreamAddChannel(micMixer, microphone, BASS_MIXER_CHAN_BUFFER));
    {
        const Process speaker = server.feedMicrophone(folder / "tones.wav");
        SoundServer::Recording record(server, "out1");
        ASSERT_TRUE(within(6, [&] { return record.frames() > rate * 2; }));
        const auto sound = record.stop();
        EXPECT_NEAR(0.54, *std::max_element(sound.begin(), sound.end()), 0.1);
    }
    // From one output through the microphone and the engine to the other, less the way from output to input,
    // which is in it once more than in what is asked: from input to output.
    const auto devices = makePulseDevices({.server = server.address()});
    double median = 1000;
    for (int attempt = 0; attempt < 5 && median >= 30; ++attempt) {
        const auto bare = clickTravels(*devices, "micfeed", "mic1");
        const auto whole = clickTravels(*devices, "micfeed", "out1.monitor");
        if (bare.empty() || whole.empty()) continue;  // a click was lost on a busy machine
        median = whole[whole.size() / 2] - bare[bare.size() / 2];
        std::printf("input to output: median %.1f ms (whole loop %.1f ms)\n", median,
                    whole[whole.size() / 2]);
    }
    EXPECT_LT(median, 30.0);
}

}  // namespace
}  // namespace zv::test
