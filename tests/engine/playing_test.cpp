// Playing, positions, loops, slides: computed sounds go in, and every frame that comes out is known.

#include "tests/engine/show.h"

namespace zv::engine::test {
namespace {

constexpr std::uint64_t kFadeIn = 441;

using Playing = Show;

TEST_F(Playing, APressedJingleIsOnBothOutputsToTheBit) {
    const Topology studio;
    const DWORD jingle = studio.jingle(file("sine"));
    pull(44100);
    take();
    take(kAuxName);
    BASS_ChannelSetAttribute(jingle, BASS_ATTRIB_VOL, 0);
    press(jingle);
    pull(44100);
    const std::vector<float> main = take();
    const std::vector<float> aux = take(kAuxName);
    ASSERT_EQ(main.size(), 88200U);
    EXPECT_EQ(main, aux);
    for (std::size_t f = 0; f < 44100; ++f) {
        const float expected = sine(f, 1000, 44100, 0.5);
        if (f >= kFadeIn)
            ASSERT_EQ(main[f * 2], expected) << f;
        else
            ASSERT_NEAR(main[f * 2], expected * static_cast<float>(f) / kFadeIn, 1e-6) << f;
    }
}

TEST_F(Playing, PositionsAndStatesAreThoseOfTheCaller) {
    const Topology studio;
    const DWORD source = file("ramp");
    const DWORD jingle = studio.jingle(source);
    EXPECT_EQ(BASS_ChannelGetLength(jingle, BASS_POS_BYTE), 441000U * 4);
    EXPECT_EQ(BASS_ChannelIsActive(jingle), BASS_ACTIVE_STOPPED);
    pull(4410);
    press(jingle, 40003);  // cut to a whole frame
    EXPECT_EQ(BASS_ChannelIsActive(jingle), BASS_ACTIVE_PLAYING);
    EXPECT_EQ(BASS_ChannelGetPosition(jingle, BASS_POS_BYTE), 40000U);
    take();
    const std::vector<float> sound = pullAndTake(4410);
    for (std::size_t f = kFadeIn; f < 4410; ++f) ASSERT_EQ(sound[f * 2], ramp(10000 + f, 0)) << f;
    EXPECT_EQ(BASS_ChannelGetPosition(jingle, BASS_POS_BYTE), 40000U + 4410 * 4);
    EXPECT_EQ(BASS_ChannelGetPosition(source, BASS_POS_BYTE), 40000U + 4410 * 4);
    BASS_ChannelStop(jingle);
    EXPECT_EQ(BASS_ChannelIsActive(jingle), BASS_ACTIVE_STOPPED);
    EXPECT_EQ(BASS_ChannelGetPosition(jingle, BASS_POS_BYTE), 40000U + 4410 * 4);
    for (const float sample : pullAndTake(882)) ASSERT_EQ(sample, 0);
    // Played on from where it stands.
    BASS_ChannelPlay(jingle, false);
    EXPECT_EQ(pullAndTake(441)[0], ramp(14410, 0));
    EXPECT_FALSE(BASS_ChannelSetPosition(jingle, 441001 * 4, BASS_POS_BYTE));
    EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_POSITION);
}

TEST_F(Playing, TheEndIsNoticedAndTheTailRings) {
    const Topology studio;
    decoders->sounds["short"] = {.length = 1000, .sample = [](auto, auto) { return 0.25F; }};
    const DWORD jingle = studio.jingle(file("short")), other = studio.jingle(file("one"));
    press(jingle);
    BASS_ChannelSetAttribute(jingle, BASS_ATTRIB_VOL, 1);
    const std::vector<float> sound = pullAndTake(1323);
    EXPECT_EQ(sound[999 * 2], 0.25F);
    EXPECT_EQ(sound[1000 * 2], 0);
    EXPECT_EQ(BASS_ChannelIsActive(jingle), BASS_ACTIVE_STOPPED);
    EXPECT_EQ(BASS_ChannelGetPosition(jingle, BASS_POS_BYTE), 4000U);
    BASS_ChannelSetAttribute(jingle, BASS_ATTRIB_TAIL, 0.1F);
    press(jingle);
    const BASS_BFX_VOLUME half{BASS_BFX_CHANALL, 0.5F};
    BASS_FXSetParameters(BASS_ChannelSetFX(other, BASS_FX_BFX_VOLUME, 20), &half);
    BASS_ChannelPlay(other, false);
    take();
    EXPECT_EQ(pullAndTake(1000 + 4410 - 441).back(), 0.5F) << "a tail without effects is silent";
    EXPECT_EQ(BASS_ChannelIsActive(jingle), BASS_ACTIVE_PLAYING);
    pull(882);
    EXPECT_EQ(BASS_ChannelIsActive(jingle), BASS_ACTIVE_STOPPED);
}

/// A file of another rate is read ahead by its conversion. What is changed before the heard position is at
/// the wrap governs that wrap all the same.
TEST_F(Playing, ConvertedLoopsObeyToTheLastFrame) {
    constexpr std::uint64_t start = 1000, end = 3000, later = 2000;
    for (const std::uint32_t rate : {48000U, 22050U, 96000U}) {
        for (const std::uint64_t before : {1U, 2U, 17U, 40U, 90U}) {
            for (const char* what : {"left", "taken", "moved", "kept"}) {
                SCOPED_TRACE(std::to_string(rate) + " Hz, " + what +
                             ", frames before: " + std::to_string(before));
                begin({.period = 1});
                decoders->sounds["file"] = {.format = {rate, 2, 16}, .length = rate, .sample = ramp};
                const Topology studio;
                const DWORD source = file("file");
                const DWORD jingle = studio.jingle(source);
                const auto loop = [&](bool on) {
                    BASS_ChannelFlags(source, on ? BASS_SAMPLE_LOOP : 0, BASS_SAMPLE_LOOP);
                };
                const auto heard = [&] { return BASS_ChannelGetPosition(jingle, BASS_POS_BYTE) / 4; };
                loop(*what != 't');
                BASS_ChannelSetPosition(source, start * 4, BASS_POS_LOOP);
                BASS_ChannelSetPosition(source, end * 4, BASS_POS_END);
                BASS_ChannelSetPosition(jingle, (end - 150) * 4, BASS_POS_BYTE);
                BASS_ChannelPlay(jingle, false);
                std::uint64_t last = 0;
                while (heard() < end - before && heard() >= last) {
                    last = heard();
                    pull(1);
                }
                if (heard() < last || heard() >= end) {
                    ASSERT_EQ(before, 1U) << "never back";  // one frame out is two of the file
                    continue;
                }
                if (*what == 'l') {
                    loop(false);
                    BASS_ChannelSetPosition(source, BASS_NO_POSITION, BASS_POS_END);
                } else if (*what == 't') {
                    loop(true);
                } else if (*what == 'm') {
                    BASS_ChannelSetPosition(source, later * 4, BASS_POS_LOOP);
                }
                devices->setPeriod(100);
                pull(200);
                EXPECT_EQ(BASS_ChannelIsActive(jingle), BASS_ACTIVE_PLAYING);
                const std::uint64_t from = *what == 'l' ? end : *what == 'm' ? later : start;
                EXPECT_NEAR(static_cast<double>(heard()),
                            static_cast<double>(from - before) + 200.0 * rate / 44100, 3);
                pull(100);
                EXPECT_NEAR(frameOf(take().end()[-2]), static_cast<double>(heard()), 2 + 2.0 * rate / 44100);
            }
        }
    }
}

TEST_F(Playing, SlidesAreExactToTheSample) {
    const Topology studio;
    const DWORD jingle = studio.jingle(file("one"));
    pull(4410);
    take();
    BASS_ChannelPlay(jingle, false);
    EXPECT_EQ(pullAndTake(441)[0], 1);

    BASS_ChannelSlideAttribute(jingle, BASS_ATTRIB_VOL, 0.5F, 100);
    EXPECT_TRUE(BASS_ChannelIsSliding(jingle, BASS_ATTRIB_VOL));
    std::vector<float> s = pullAndTake(4851);
    for (std::size_t f = 0; f < 4410; ++f)
        ASSERT_NEAR(s[f * 2], 1 - 0.5 * static_cast<double>(f) / 4410, 1e-6) << f;
    EXPECT_GT(s[4409 * 2], 0.5F);
    EXPECT_EQ(s[4410 * 2], 0.5F);
    EXPECT_FALSE(BASS_ChannelIsSliding(jingle, BASS_ATTRIB_VOL));

    // A new slide replaces a running one from the value it has reached.
    BASS_ChannelSlideAttribute(jingle, BASS_ATTRIB_VOL, 1, 100);
    pullAndTake(2205);
    float now = 0;
    BASS_ChannelGetAttribute(jingle, BASS_ATTRIB_VOL, &now);
    EXPECT_NEAR(now, 0.75, 1e-4);
    BASS_ChannelSlideAttribute(jingle, BASS_ATTRIB_VOL, 0, 100);
    s = pullAndTake(441);
    EXPECT_NEAR(s[0], 0.75, 1e-6);

    // Logarithmic: equal ratios over 60 dB.
    BASS_ChannelSetAttribute(jingle, BASS_ATTRIB_VOL, 1);
    BASS_ChannelSlideAttribute(jingle, BASS_ATTRIB_VOL | BASS_SLIDE_LOG, 0, 100);
    s = pullAndTake(4851);
    for (const std::size_t f : {0U, 1000U, 2205U, 4000U})
        EXPECT_NEAR(20 * std::log10(s[f * 2]), -60.0 * static_cast<double>(f) / 4410, 1e-3) << f;
    EXPECT_EQ(s[4410 * 2], 0);

    // A slide that ends the channel, on that very sample; the attribute stays 0.
    BASS_ChannelSetAttribute(jingle, BASS_ATTRIB_VOL, 1);
    const QWORD before = BASS_ChannelGetPosition(jingle, BASS_POS_BYTE);
    BASS_ChannelSlideAttribute(jingle, BASS_ATTRIB_VOL, -1, 50);
    pull(4410);
    EXPECT_EQ(BASS_ChannelIsActive(jingle), BASS_ACTIVE_STOPPED);
    EXPECT_EQ(BASS_ChannelGetPosition(jingle, BASS_POS_BYTE), before + 2205 * 4);
    BASS_ChannelGetAttribute(jingle, BASS_ATTRIB_VOL, &now);
    EXPECT_EQ(now, 0);
    // Slides run on while nothing sounds.
    BASS_ChannelSlideAttribute(jingle, BASS_ATTRIB_VOL, 1, 100);
    BASS_ChannelSlideAttribute(jingle, BASS_ATTRIB_VOLDSP, 0, 100);
    pull(2205);
    BASS_ChannelGetAttribute(jingle, BASS_ATTRIB_VOL, &now);
    EXPECT_NEAR(now, 0.5, 1e-3);
    BASS_ChannelGetAttribute(jingle, BASS_ATTRIB_VOLDSP, &now);
    EXPECT_NEAR(now, 0.5, 1e-3);
    take();
    BASS_ChannelPlay(jingle, false);
    EXPECT_NEAR(pullAndTake(441)[0], 0.25, 1e-3);
    // 0 ms acts at once, also as the caller sees it.
    BASS_ChannelSlideAttribute(jingle, BASS_ATTRIB_VOL, -1, 0);
    EXPECT_EQ(BASS_ChannelIsActive(jingle), BASS_ACTIVE_STOPPED);
    for (const float sample : pullAndTake(441)) ASSERT_EQ(sample, 0);
}

TEST_F(Playing, ThePlainTopologyPlaysStraightOnTheOutput) {
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

}  // namespace
}  // namespace zv::engine::test
