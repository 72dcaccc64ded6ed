// Start, stop and loop of a jingle as an editor moves them.
#include "audio/cue_points.h"

#include <cmath>
#include <random>

#include "tests/support/studio.h"

namespace zv {
namespace {

constexpr SoundLength kSound{1'000'000, 6'000};

struct Move {
    const char* what;
    void (*move)(CuePoints&, const SoundLength&, double);
    CuePoints before;
    double to;
    CuePoints after;
};

TEST(CuePoints, EachMoveEndsAtTheNearestPlaceThatItMayHave) {
    // start, stop, loop in, loop out, loop length, locked
    const CuePoints loop{0, 0, 200'000, 400'000, 200'000, false};
    const CuePoints locked{0, 0, 200'000, 400'000, 200'000, true};
    const Move moves[] = {
        {"start", MoveStart, {}, 5'000, {5'000}},
        {"start before the beginning", MoveStart, {}, -1, {}},
        {"start behind the end", MoveStart, {}, 2'000'000, {994'000}},
        {"start within the guard", MoveStart, {}, 994'001, {994'000}},
        {"stop", MoveStop, {}, 500'000, {0, 500'000}},
        {"stop at the beginning", MoveStop, {}, 0, {0, 6'000}},
        {"stop that leaves the guard", MoveStop, {}, 994'000, {0, 994'000}},
        {"stop within the guard", MoveStop, {0, 5}, 994'001, {}},
        {"stop behind the end", MoveStop, {0, 5}, 2'000'000, {}},
        {"loop in", MoveLoopIn, loop, 100'000, {0, 0, 100'000, 400'000, 300'000}},
        {"loop in pushes loop out", MoveLoopIn, loop, 395'000, {0, 0, 395'000, 401'000, 6'000}},
        {"loop in at the end", MoveLoopIn, loop, 2'000'000, {0, 0, 994'000, 1'000'000, 6'000}},
        {"locked loop in takes loop out along",
         MoveLoopIn,
         locked,
         300'000,
         {0, 0, 300'000, 500'000, 200'000, true}},
        {"locked loop in at the end", MoveLoopIn, locked, 900'000, {0, 0, 800'000, 1'000'000, 200'000, true}},
        {"loop out", MoveLoopOut, loop, 900'000, {0, 0, 200'000, 900'000, 700'000}},
        {"loop out pushes loop in", MoveLoopOut, loop, 205'000, {0, 0, 199'000, 205'000, 6'000}},
        {"loop out at the beginning", MoveLoopOut, loop, 0, {0, 0, 0, 6'000, 6'000}},
        {"locked loop out takes loop in along",
         MoveLoopOut,
         locked,
         300'000,
         {0, 0, 100'000, 300'000, 200'000, true}},
        {"locked loop out at the beginning", MoveLoopOut, locked, 0, {0, 0, 0, 200'000, 200'000, true}},
        {"locked loop out at the end", MoveLoopOut, locked, 5e9, {0, 0, 800'000, 1'000'000, 200'000, true}},
    };
    for (const Move& m : moves) {
        CuePoints p = m.before;
        m.move(p, kSound, m.to);
        EXPECT_EQ(p.start, m.after.start) << m.what;
        EXPECT_EQ(p.stop, m.after.stop) << m.what;
        EXPECT_EQ(p.loopIn, m.after.loopIn) << m.what;
        EXPECT_EQ(p.loopOut, m.after.loopOut) << m.what;
        EXPECT_EQ(p.loopLen, m.after.loopLen) << m.what;
    }
}

TEST(CuePoints, NoMoveLeavesTheFile) {
    std::mt19937 chance(7);
    for (const SoundLength& sound : {kSound, SoundLength{4, 0}, SoundLength{6'001, 6'000}}) {
        CuePoints p{0, 0, 0, sound.length, sound.length, false};
        for (int i = 0; i < 2'000; ++i) {
            const double to = std::floor(std::uniform_real_distribution(-1.0, 2.0)(chance) * sound.length);
            p.lengthLocked = chance() % 3 == 0;
            constexpr void (*kMoves[])(CuePoints&, const SoundLength&, double) = {MoveStart, MoveStop,
                                                                                  MoveLoopIn, MoveLoopOut};
            kMoves[chance() % 4](p, sound, to);
            ASSERT_TRUE(p.start >= 0 && p.start <= sound.length - sound.minGap);
            ASSERT_TRUE(p.stop == 0 || (p.stop >= sound.minGap && p.stop < sound.length));
            ASSERT_TRUE(p.loopIn >= 0 && p.loopOut <= sound.length);
            ASSERT_GE(p.loopOut - p.loopIn, sound.minGap);
            ASSERT_DOUBLE_EQ(p.loopLen, p.loopOut - p.loopIn);
        }
    }
}

TEST(CuePoints, ASoundThatBecameShorterTakesItsPointsAlong) {
    const struct {
        CuePoints before, after;
        bool moved;
    } cases[] = {
        {{100'000, 900'000, 200'000, 400'000}, {100'000, 900'000, 200'000, 400'000}, false},
        {{2'000'000, 0, 0, 1'000'000}, {0, 0, 0, 1'000'000}, true},
        {{0, 999'000, 0, 1'000'000}, {0, 0, 0, 1'000'000}, true},
        {{500'000, 400'000, 0, 1'000'000}, {500'000, 0, 0, 1'000'000}, true},
        {{0, 0, 5'000'000, 6'000'000}, {0, 0, 994'000, 1'000'000}, true},
        {{0, 0, 0, 0}, {0, 0, 0, 1'000'000}, true},
        {{0, 0, 500'000, 400'000}, {0, 0, 394'000, 400'000}, true},
    };
    for (const auto& c : cases) {
        CuePoints p = c.before;
        EXPECT_EQ(BringInto(p, kSound), c.moved) << c.before.start << ' ' << c.before.stop;
        EXPECT_EQ(p.start, c.after.start);
        EXPECT_EQ(p.stop, c.after.stop);
        EXPECT_EQ(p.loopIn, c.after.loopIn);
        EXPECT_EQ(p.loopOut, c.after.loopOut);
    }
}

class CuePointFiles : public test::StudioTest {};

TEST_F(CuePointFiles, AValueReadBackShowsTheSameHundredthsAtAnyRate) {
    std::mt19937 chance(3);
    for (const std::uint32_t rate :
         {8'000, 11'025, 22'050, 44'100, 48'000, 88'200, 96'000, 176'400, 192'000}) {
        for (const std::uint16_t channels : {std::uint16_t{1}, std::uint16_t{2}}) {
            const auto file = path("some.wav");
            test::writeWav(file, std::vector<std::int16_t>(100), rate, channels);
            const DWORD sound = BASS_StreamCreateFile(false, file.c_str(), 0, 0, BASS_STREAM_DECODE);
            ASSERT_NE(sound, 0U);
            for (int i = 0; i < 2'000; ++i) {
                const FieldTime fields = FieldsOf(std::uniform_real_distribution(0.0, 7200.0)(chance));
                const QWORD bytes = BASS_ChannelSeconds2Bytes(sound, SecondsOf(fields));
                ASSERT_EQ(FieldsOf(BASS_ChannelBytes2Seconds(sound, bytes)), fields) << rate << ' ' << bytes;
            }
            BASS_StreamFree(sound);
        }
    }
}

TEST(CuePoints, FieldsAreTheNearestHundredthAndAnyFormOfThemIsRead) {
    EXPECT_EQ(FieldsOf(-1), FieldTime{});
    EXPECT_EQ(FieldsOf(std::nan("")), FieldTime{});
    EXPECT_EQ(FieldsOf(59.996), (FieldTime{1, 0, 0}));
    EXPECT_EQ(FieldsOf(3'725.124), (FieldTime{62, 5, 12}));
    EXPECT_DOUBLE_EQ(SecondsOf({0, 90, 150}), 91.5);
    for (int h = 0; h < 30'000; h += 7) ASSERT_EQ(FieldsOf(SecondsOf({0, 0, h})), FieldsOf(h / 100.0)) << h;
}

}  // namespace
}  // namespace zv
