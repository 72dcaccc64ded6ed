// Start, stop and loop of a jingle as an editor moves them.
#include "audio/cue_points.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

namespace zv {
namespace {

constexpr SoundLength kSound{1'000'000, 6'000};

std::tuple<double, double, double, double> places(const CuePoints& p) {
    return {p.start, p.stop, p.loopIn, p.loopOut};
}

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
        {"start within the guard", MoveStart, {}, 994'001, {994'000}},
        {"stop", MoveStop, {}, 500'000, {0, 500'000}},
        {"stop at the beginning", MoveStop, {}, 0, {0, 6'000}},
        {"stop that leaves the guard", MoveStop, {}, 994'000, {0, 994'000}},
        {"stop within the guard", MoveStop, {0, 5}, 994'001, {}},
        {"stop behind the end", MoveStop, {0, 5}, 2'000'000, {}},
        {"loop in", MoveLoopIn, loop, 100'000, {0, 0, 100'000, 400'000, 300'000}},
        {"loop in pushes loop out", MoveLoopIn, loop, 395'000, {0, 0, 395'000, 401'000, 6'000}},
        {"loop in at the end", MoveLoopIn, loop, 2'000'000, {0, 0, 994'000, 1'000'000, 6'000}},
        {"locked loop in", MoveLoopIn, locked, 300'000, {0, 0, 300'000, 500'000, 200'000, true}},
        {"locked loop in at the end", MoveLoopIn, locked, 900'000, {0, 0, 800'000, 1'000'000, 200'000, true}},
        {"loop out", MoveLoopOut, loop, 900'000, {0, 0, 200'000, 900'000, 700'000}},
        {"loop out pushes loop in", MoveLoopOut, loop, 205'000, {0, 0, 199'000, 205'000, 6'000}},
        {"loop out at the beginning", MoveLoopOut, loop, 0, {0, 0, 0, 6'000, 6'000}},
        {"locked loop out", MoveLoopOut, locked, 300'000, {0, 0, 100'000, 300'000, 200'000, true}},
        {"locked loop out at the beginning", MoveLoopOut, locked, 0, {0, 0, 0, 200'000, 200'000, true}},
        {"locked loop out at the end", MoveLoopOut, locked, 5e9, {0, 0, 800'000, 1'000'000, 200'000, true}},
    };
    for (const Move& m : moves) {
        CuePoints p = m.before;
        m.move(p, kSound, m.to);
        EXPECT_EQ(places(p), places(m.after)) << m.what;
        EXPECT_EQ(p.loopLen, m.after.loopLen) << m.what;
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
        EXPECT_EQ(places(p), places(c.after));
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
