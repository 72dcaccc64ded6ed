// What goes out does not depend on how it is asked for: periods, outputs, readers.

#include "tests/engine/show.h"

namespace zv::engine::test {
namespace {

using Rendering = Show;

TEST_F(Rendering, SoundsConvertedTogetherAreClean) {
    const auto tone = [](double hz) {
        return [hz](std::uint64_t f, std::uint32_t) { return sine(f, hz, 48000, 0.2); };
    };
    decoders->sounds["pure"] = {.format = {48000, 2, 24}, .length = 96000, .sample = tone(1000)};
    decoders->sounds["none"] = {
        .format = {48000, 2, 24}, .length = 96000, .sample = [](auto, auto) { return 0.0F; }};
    const Topology studio;
    for (const char* name : {"pure", "none"}) BASS_ChannelPlay(studio.jingle(file(name)), false);
    const std::vector<float> sound = pullAndTake(44100);
    const test::Tone left = test::tone(sound, 1000, 44100, 4410, 40000);
    EXPECT_NEAR(left.size, 0.2, 2e-5);
    EXPECT_LT(decibels(left.rest / (left.size / std::numbers::sqrt2)), -130);
}

TEST_F(Rendering, EverySplitOfASourceIsItToTheBit) {
    const DWORD source = file("ramp", BASS_STREAM_DECODE | BASS_SAMPLE_FLOAT);
    const DWORD a = BASS_Split_StreamCreate(source, BASS_STREAM_DECODE | BASS_SAMPLE_FLOAT, nullptr);
    const DWORD b = BASS_Split_StreamCreate(source, BASS_STREAM_DECODE | BASS_SAMPLE_FLOAT, nullptr);
    const auto read = [](DWORD channel, std::size_t frames) {
        std::vector<float> out(frames * 2);
        const DWORD got = BASS_ChannelGetData(channel, out.data(), static_cast<DWORD>(out.size() * 4));
        out.resize(got / 4);
        return out;
    };
    std::mt19937 random(7);
    std::uint64_t atA = 0, atB = 0;
    for (int turn = 0; turn < 200; ++turn) {
        const std::size_t n = 1 + random() % 900;
        std::uint64_t& at = turn % 2 == 0 ? atA : atB;
        const std::vector<float> part = read(turn % 2 == 0 ? a : b, n);
        ASSERT_EQ(part.size(), n * 2);
        for (std::size_t f = 0; f < n; ++f, ++at) ASSERT_EQ(part[f * 2 + 1], ramp(at, 1));
    }
    EXPECT_EQ(BASS_ChannelGetPosition(a, BASS_POS_BYTE), atA * 8);
}

TEST_F(Rendering, OneOutputGoesAndTheOtherDoesNotNotice) {
    const Topology studio;
    const DWORD jingle = studio.jingle(file("ramp"));
    pull(4410);
    take();
    take(kAuxName);
    BASS_ChannelPlay(jingle, false);
    pull(4410);
    // The main output drives; it goes, another takes over within a period, and nothing hangs.
    devices->unplug(kMainName);
    pull(8820);
    const std::vector<float> aux = take(kAuxName);
    const double heard = frameOf(aux.back() - 0.5F / 16777216.0F);
    EXPECT_NEAR(heard, 4410 + 8820, 1000);
    EXPECT_EQ(BASS_ChannelIsActive(jingle), BASS_ACTIVE_PLAYING);
    devices->plug(kMainName);
    pull(4410);
    const std::vector<float> main = take();
    EXPECT_NEAR(frameOf(main.back() - 0.5F / 16777216.0F), 4410 * 4, 1000);
    const std::vector<float> after = take(kAuxName);
    for (std::size_t f = 1; f < after.size() / 2; ++f)
        ASSERT_GT(after[f * 2], after[f * 2 - 2])
            << "a gap in the other output when it was back, frame " << f;
    // Both gone: the no-sound device keeps time.
    const QWORD before = BASS_ChannelGetPosition(jingle, BASS_POS_BYTE);
    devices->unplug(kMainName);
    devices->unplug(kAuxName);
    pull(44100);
    EXPECT_NEAR(static_cast<double>(BASS_ChannelGetPosition(jingle, BASS_POS_BYTE) - before), 44100.0 * 4,
                4000);
}

TEST_F(Rendering, ThePlainTopologyPlaysStraightOnTheOutput) {
    openMain();
    const DWORD play = BASS_FX_TempoCreate(file("ramp"), BASS_FX_FREESOURCE);
    ASSERT_NE(play, 0U);
    EXPECT_EQ(BASS_ChannelIsActive(play), BASS_ACTIVE_STOPPED);
    BASS_ChannelSetPosition(play, 4000, BASS_POS_BYTE);
    BASS_ChannelPlay(play, false);
    EXPECT_EQ(frameOf(pullAndTake(441)[0]), 1000);
    BASS_SetConfig(BASS_CONFIG_GVOL_STREAM, 5000);
    pull(4410);
    take();
    EXPECT_NEAR(frameOf(pullAndTake(441)[0]), (1000 + 441 * 11) / 2.0, 1);
    BASS_StreamFree(play);
    for (const float sample : pullAndTake(441)) ASSERT_EQ(sample, 0);
}

TEST_F(Rendering, WithoutAnAuxiliaryDeviceItsBranchStaysInStep) {
    const Topology studio(44100, false);
    const DWORD jingle = studio.jingle(file("sine"));
    BASS_ChannelPlay(jingle, false);
    pull(44100);
    take();
    BASS_Init(kAux, 44100, 0, nullptr, nullptr);
    BASS_SetDevice(kAux);
    const DWORD late = BASS_Split_StreamCreate(studio.outMixer[1], 0, nullptr);
    BASS_ChannelStart(late);
    pull(44100);
    EXPECT_EQ(take(), take(kAuxName));
}

TEST_F(Rendering, OutputsOfAnotherRateAreConverted) {
    begin({});
    ASSERT_TRUE(BASS_Init(0, 96000, 0, nullptr, nullptr));  // the graph runs at this rate
    ASSERT_TRUE(BASS_Init(kMain, 44100, 0, nullptr, nullptr));
    const DWORD play = BASS_FX_TempoCreate(file("sine"), BASS_FX_FREESOURCE);
    BASS_ChannelPlay(play, false);
    pull(44100);
    const std::vector<float> sound = take();
    double worst = 0;
    for (std::size_t f = 2000; f < 40000; ++f)
        worst = std::max(worst, std::abs(static_cast<double>(sound[f * 2] - sine(f, 1000, 44100, 0.5))));
    // Up and down again: both conversions are transparent.
    EXPECT_LT(worst, 1e-3);
}

}  // namespace
}  // namespace zv::engine::test
