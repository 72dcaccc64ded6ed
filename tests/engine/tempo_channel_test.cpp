// Tempo, pitch and rate as the program uses them: through channels, mixers and devices.
#include <algorithm>

#include "platform/soundtouch/soundtouch_stretcher.h"
#include "tests/engine/dsp_signals.h"
#include "tests/engine/show.h"

namespace zv::engine::test {
namespace {

class TempoShow : public Show {
  protected:
    TempoShow() { install(); }
    void install() {
        engineControl()->install({decoders, soundTouchStretchers(), devices});
        decoders->sounds["tone"] = {.length = 20 * 44100, .sample = [](std::uint64_t f, std::uint32_t) {
                                        return sine(f, 150, 44100, 0.5);
                                    }};
    }
    static double seconds(DWORD channel) {
        return BASS_ChannelBytes2Seconds(channel, BASS_ChannelGetPosition(channel, BASS_POS_BYTE));
    }
    static double pitchOf(const std::vector<float>& stereo,
                          std::size_t from) {  // by upward crossings of zero
        std::size_t first = 0, last = 0;
        int waves = -1;
        for (std::size_t i = std::max<std::size_t>(from, 1); i < stereo.size() / 2; ++i) {
            if (stereo[2 * i - 2] >= 0 || stereo[2 * i] < 0) continue;
            if (waves++ < 0) first = i;
            last = i;
        }
        return waves * 44100.0 / static_cast<double>(last - first);
    }
};

TEST_F(TempoShow, TempoPitchAndRateDoWhatTheySay) {
    const struct {
        float tempo, pitch, freq;
        double speed, hz;
    } cases[] = {{10, 0, 0, 1.1, 150},        {-20, 0, 0, 0.8, 150},   {0, 12, 0, 1, 300},
                 {0, -5, 0, 1, 112.37},       {0, 0, 48510, 1.1, 165}, {0, 0, 44100, 1, 150},
                 {5, 2, 39690, 0.945, 151.53}};
    const Topology studio;
    for (const auto& c : cases) {
        const DWORD jingle = studio.jingle(file("tone"));
        EXPECT_TRUE(BASS_ChannelSetAttribute(jingle, BASS_ATTRIB_TEMPO, c.tempo));
        EXPECT_TRUE(BASS_ChannelSetAttribute(jingle, BASS_ATTRIB_TEMPO_PITCH, c.pitch));
        EXPECT_TRUE(BASS_ChannelSetAttribute(jingle, BASS_ATTRIB_TEMPO_FREQ, c.freq));
        float read = -1;
        EXPECT_TRUE(BASS_ChannelGetAttribute(jingle, BASS_ATTRIB_TEMPO_FREQ, &read));
        EXPECT_EQ(read, c.freq == 0 ? 44100 : c.freq);
        press(jingle, 44100 * 4);
        take();
        const std::vector<float> sound = pullAndTake(4 * 44100);
        EXPECT_NEAR(seconds(jingle), 1 + 4 * c.speed, 0.010) << c.tempo << ' ' << c.pitch << ' ' << c.freq;
        EXPECT_NEAR(pitchOf(sound, 4410), c.hz, 0.01 * c.hz) << c.tempo << ' ' << c.pitch << ' ' << c.freq;
        EXPECT_GT(std::fabs(sound[2 * 500]) + std::fabs(sound[2 * 573]), 0.2F) << "silent at the start";
        // Length and sync stay in the source's terms.
        EXPECT_EQ(BASS_ChannelGetLength(jingle, BASS_POS_BYTE), QWORD{20} * 44100 * 4);
        BASS_StreamFree(jingle);
        pull(441);
    }
}

TEST_F(TempoShow, LoopsAndSyncsHoldWhileStretched) {
    const Topology studio;
    const DWORD jingle = studio.jingle(file("tone"));
    BASS_ChannelSetAttribute(jingle, BASS_ATTRIB_TEMPO, 25);
    BASS_ChannelSetPosition(jingle, 44100 * 4, BASS_POS_LOOP);
    BASS_ChannelSetPosition(jingle, 2 * 44100 * 4, BASS_POS_END);
    BASS_ChannelFlags(jingle, BASS_SAMPLE_LOOP, BASS_SAMPLE_LOOP);
    static int fired;
    fired = 0;
    BASS_ChannelSetSync(
        jingle, BASS_SYNC_POS, static_cast<QWORD>(44100 * 4 * 1.5),
        [](HSYNC, DWORD, DWORD, void*) { ++fired; }, nullptr);
    press(jingle);
    for (int i = 0; i < 400; ++i) {  // four seconds: five of the source
        pull(441);
        ASSERT_LE(seconds(jingle), 2.0);
        engineControl()->settleSyncs();
    }
    EXPECT_EQ(fired, 4);
    EXPECT_NEAR(seconds(jingle), 2.0, 0.012);
    BASS_ChannelFlags(jingle, 0, BASS_SAMPLE_LOOP);
    pull(44100);
    EXPECT_EQ(BASS_ChannelIsActive(jingle), BASS_ACTIVE_STOPPED);
}

TEST_F(TempoShow, SlidesOfTempoPitchAndRate) {
    const Topology studio;
    const DWORD jingle = studio.jingle(file("tone"));
    const auto value = [&](DWORD attribute) {
        float v = -1;
        EXPECT_TRUE(BASS_ChannelGetAttribute(jingle, attribute, &v));
        return v;
    };
    press(jingle);
    pull(4410);
    BASS_ChannelSlideAttribute(jingle, BASS_ATTRIB_TEMPO, 50, 1000);
    BASS_ChannelSlideAttribute(jingle, BASS_ATTRIB_TEMPO_PITCH, -6, 500);
    BASS_ChannelSlideAttribute(jingle, BASS_ATTRIB_TEMPO_FREQ | BASS_SLIDE_LOG, 88200, 2000);
    EXPECT_TRUE(BASS_ChannelIsSliding(jingle, BASS_ATTRIB_TEMPO));
    EXPECT_EQ(value(BASS_ATTRIB_TEMPO), 0);
    pull(22050);
    EXPECT_NEAR(value(BASS_ATTRIB_TEMPO), 25, 0.01);
    EXPECT_EQ(value(BASS_ATTRIB_TEMPO_PITCH), -6);
    EXPECT_NEAR(value(BASS_ATTRIB_TEMPO_FREQ), 44100 * std::exp2(0.25), 1);
    EXPECT_FALSE(BASS_ChannelIsSliding(jingle, BASS_ATTRIB_TEMPO_PITCH));
    // Another one replaces it from there; a set ends it; both go on while the channel stands.
    BASS_ChannelSlideAttribute(jingle, BASS_ATTRIB_TEMPO, -5, 600);
    BASS_ChannelSetAttribute(jingle, BASS_ATTRIB_TEMPO_FREQ, 40000);
    EXPECT_FALSE(BASS_ChannelIsSliding(jingle, BASS_ATTRIB_TEMPO_FREQ));
    BASS_ChannelStop(jingle);
    const double place = seconds(jingle);
    pull(441 * 30);
    EXPECT_NEAR(value(BASS_ATTRIB_TEMPO), 10, 0.6);
    EXPECT_EQ(seconds(jingle), place);
    pull(441 * 31);
    EXPECT_EQ(value(BASS_ATTRIB_TEMPO), -5);
    EXPECT_FALSE(BASS_ChannelIsSliding(jingle, BASS_ATTRIB_TEMPO));
    EXPECT_EQ(value(BASS_ATTRIB_TEMPO_FREQ), 40000);
}

}  // namespace
}  // namespace zv::engine::test
