#include "engine/tempo/processor.h"

#include <gtest/gtest.h>

#include <mutex>
#include <thread>

#include "platform/soundtouch/soundtouch_stretcher.h"
#include "tests/engine/dsp_signals.h"

namespace zv::engine {
namespace {

constexpr std::uint32_t kRate = 44100;
constexpr std::size_t kBlock = 256;

/// A sound in memory, as source and as what the worker reads.
class Memory final : public FrameReader {
  public:
    explicit Memory(std::vector<float> stereo) : sound(std::move(stereo)) {}
    std::size_t readAt(std::uint64_t frame, std::span<float> out) override {
        const std::uint64_t frames = sound.size() / 2;
        if (frame >= frames) return 0;
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(out.size() / 2, frames - frame));
        std::copy_n(sound.begin() + static_cast<std::ptrdiff_t>(2 * frame), 2 * count, out.begin());
        return count;
    }
    PlayRange range() const override {
        const std::lock_guard lock(mutex_);
        return range_;
    }
    void setRange(const PlayRange& range) {
        const std::lock_guard lock(mutex_);
        range_ = range;
    }
    std::uint64_t frames() const { return sound.size() / 2; }
    std::vector<float> sound;

  private:
    mutable std::mutex mutex_;
    PlayRange range_;
};

/// A tempo channel as the engine drives it, without the engine.
class Player {
  public:
    explicit Player(std::vector<float> stereo)
        : memory(std::move(stereo)), tempo(kRate, 2, soundTouchStretchers(), memory) {
        setRange({memory.frames(), 0, false});
    }
    void setRange(const PlayRange& wanted) {
        range = wanted;
        memory.setRange(range);
    }
    void moveTo(std::uint64_t frame) {
        tempo.prime(frame);
        position = frame;
        tempo.restart(frame);
    }
    /// Appends up to `frames` frames to `heard`; the position of each block's first frame to `places`.
    void play(std::size_t frames, bool worker = true) {
        const std::size_t until = heard.size() / 2 + frames;
        while (heard.size() / 2 < until && !over) {
            if (worker) tempo.work();
            std::size_t left = std::min(kBlock, until - heard.size() / 2);
            while (left > 0 && !over) {
                places.resize(heard.size() / 2 + 1, tempo.sourceFrame());
                places.back() = tempo.sourceFrame();
                left -= part(left);
            }
        }
    }
    bool stretched() { return !tempo.neutral(); }

    Memory memory;
    TempoProcessor tempo;
    PlayRange range;
    std::uint64_t position = 0;
    std::vector<float> heard;
    std::vector<std::uint64_t> places;  // by output frame; between two blocks the former value
    bool over = false;
    bool wasStretched = false;

  private:
    std::size_t part(std::size_t most) {
        std::vector<float> block(2 * most);
        std::size_t got = 0;
        if (tempo.neutral()) {
            if (wasStretched) position = tempo.sourceFrame();
            wasStretched = false;
            most = std::min(most, tempo.neutralRun());
            if (position == range.end) {
                if (!range.loop) {
                    over = true;
                    return 0;
                }
                position = range.loopStart;
            }
            if (position < range.end)
                most = static_cast<std::size_t>(std::min<std::uint64_t>(most, range.end - position));
            got = memory.readAt(position, std::span(block).first(2 * most));
            if (tempo.fades()) tempo.fade(std::span(block).first(2 * got));
            position += got;
            tempo.passed(got, position);
            if (got == 0) over = true;
        } else {
            wasStretched = true;
            got = tempo.read(block);
            if (got == 0 && tempo.ended()) over = true;
            if (got == 0 && !over && !tempo.neutral()) ADD_FAILURE() << "starved", over = true;
        }
        heard.insert(heard.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(2 * got));
        return got;
    }
};

/// Short bursts of noise on silence, one every `every` frames from `first` on.
std::vector<float> bursts(std::size_t frames, std::size_t first, std::size_t every) {
    std::vector<float> out(2 * frames);
    const auto grain = test::noise(400, 77, 0.9f);
    for (std::size_t at = first; at + 400 < frames; at += every)
        for (std::size_t i = 0; i < 400; ++i)
            out[2 * (at + i)] = out[2 * (at + i) + 1] = grain[i] * std::exp(-static_cast<float>(i) / 60.0f);
    return out;
}

TEST(TempoProcessor, NeutralIsTheSourceToTheBit) {
    Player player(test::noise(2 * 20000, 1));
    player.setRange({20000, 5000, true});
    player.play(40000);
    for (std::size_t i = 0; i < 40000; ++i) {
        const std::size_t from = i < 20000 ? i : 5000 + (i - 20000) % 15000;
        ASSERT_EQ(player.heard[2 * i], player.memory.sound[2 * from]) << i;
    }
}

struct Change {
    TempoParameters to;
    const char* name;
};

const Change kChanges[] = {{{10, 0, 1}, "tempo +10"},    {{-15, 0, 1}, "tempo -15"},
                           {{0, 4, 1}, "pitch +4"},      {{0, -4, 1}, "pitch -4"},
                           {{0, 0, 1.06}, "rate x1.06"}, {{0, 0, 0.9}, "rate x0.9"},
                           {{8, 2, 1.02}, "all three"}};

TEST(TempoProcessor, GoingInAndOutMakesNoClick) {
    for (const Change& change : kChanges) {
        const double hz = 150;
        Player player(test::sine(hz, kRate, 10 * kRate));
        player.play(kRate / 2);
        player.tempo.setParameters(change.to);
        player.play(kRate);
        EXPECT_TRUE(player.stretched()) << change.name;
        player.tempo.setParameters({change.to.tempo + 3, change.to.pitch, change.to.rate});
        player.play(kRate / 2);
        player.tempo.setParameters({});
        player.play(kRate);
        EXPECT_FALSE(player.stretched()) << change.name;
        // The steepest that a higher pitch may be, and a little for the fade between two waves.
        const double rise = std::exp2(change.to.pitch / 12) * change.to.rate;
        const double most = test::roughness(player.memory.sound, 0, kRate) * std::max(1.0, rise * rise);
        EXPECT_LT(test::roughness(player.heard, 0, player.heard.size() / 2), 4 * most) << change.name;
        // Back in the source itself.
        const std::size_t end = player.heard.size() / 2;
        for (std::size_t i = 1; i <= kRate / 4; ++i)
            ASSERT_EQ(player.heard[2 * (end - i)], player.memory.sound[2 * (player.position - i)])
                << change.name;
    }
}

TEST(TempoProcessor, LevelHoldsThroughAChangeOfTempo) {
    Player player(test::sine(150, kRate, 10 * kRate));
    player.play(kRate / 2);
    for (double tempo : {10.0, 25.0, -20.0, 0.0}) {
        player.tempo.setParameters({tempo, 0, 1});
        player.play(kRate / 2);
    }
    const std::size_t frames = player.heard.size() / 2, step = kRate / 75;  // two waves
    for (std::size_t at = 0; at + step < frames; at += step) {
        double power = 0;
        for (std::size_t i = at; i < at + step; ++i)
            power += double(player.heard[2 * i]) * player.heard[2 * i];
        EXPECT_NEAR(std::sqrt(2 * power / static_cast<double>(step)), 0.5, 0.06) << at;
    }
}

TEST(TempoProcessor, PositionIsThatOfWhatIsHeard) {
    for (const Change& change : kChanges) {
        const std::size_t every = 9973;
        Player player(bursts(12 * kRate, 15000, every));
        player.play(kRate / 4);
        player.tempo.setParameters(change.to);
        player.play(8 * kRate);
        std::size_t found = 0;
        const std::size_t end = player.heard.size() / 2;
        for (std::size_t i = kRate / 2; i < end; ++i) {
            if (std::fabs(player.heard[2 * i]) < 0.3f) continue;
            const double place = static_cast<double>(player.places[std::min(i, player.places.size() - 1)]);
            const double nearest = 15000 + std::round((place - 15000) / every) * every;
            EXPECT_NEAR(place, nearest, 0.010 * kRate + kBlock * change.to.speed())
                << change.name << " at " << i;
            ++found;
            i += every / 2;
        }
        EXPECT_GT(found, 25u) << change.name;
        // And it runs evenly: what was played times the speed.
        const double expected = static_cast<double>(player.places.back()) - kRate / 4;
        const double played = static_cast<double>(player.places.size()) - kRate / 4;
        EXPECT_NEAR(expected, played * change.to.speed(),
                    (0.010 + 0.025 * std::fabs(change.to.speed() - 1)) * kRate)
            << change.name;
    }
}

TEST(TempoProcessor, ALoopIsFollowedAndAClearedOneLeft) {
    Player player(test::noise(2 * 4 * kRate, 3));
    player.tempo.setParameters({20, 0, 1});
    player.setRange({2 * kRate, kRate, true});
    player.moveTo(0);
    EXPECT_TRUE(player.stretched());  // from the first frame on
    player.play(6 * kRate);
    std::size_t wraps = 0;
    for (std::size_t i = kBlock; i < player.places.size(); i += kBlock) {
        ASSERT_LE(player.places[i], 2 * kRate);
        if (player.places[i] < player.places[i - kBlock]) ++wraps;
    }
    EXPECT_NEAR(static_cast<double>(wraps), (6 * 1.2 - 1), 1);
    // 100 ms before the next wrap the loop goes: the sound plays through to the end.
    while (player.tempo.sourceFrame() < 2 * kRate - kRate / 10 ||
           player.tempo.sourceFrame() > 2 * kRate - kRate / 20)
        player.play(kBlock);
    player.setRange({4 * kRate, kRate, false});
    const std::size_t before = player.heard.size() / 2;
    const std::uint64_t place = player.tempo.sourceFrame();
    player.play(4 * kRate);
    EXPECT_TRUE(player.over);
    EXPECT_TRUE(player.tempo.ended());
    EXPECT_NEAR(static_cast<double>(player.heard.size() / 2 - before),
                static_cast<double>(4 * kRate - place) / 1.2, 0.03 * kRate);
    EXPECT_NEAR(static_cast<double>(player.tempo.sourceFrame()), 4.0 * kRate, 0.01 * kRate);
}

TEST(TempoProcessor, ALoopSetBeforeTheEndIsTakenThoughTheEndWasRendered) {
    Player player(test::noise(2 * 2 * kRate, 4));
    player.tempo.setParameters({-10, 0, 1});
    player.moveTo(kRate);
    while (player.tempo.sourceFrame() < 2 * kRate - kRate / 10) player.play(kBlock);
    player.setRange({2 * kRate, kRate / 2, true});
    player.play(kRate);
    EXPECT_FALSE(player.over);
    EXPECT_LT(player.tempo.sourceFrame(), std::uint64_t{2 * kRate});
}

TEST(TempoProcessor, AChangeOfLoopOrEndGovernsTheNextWrapHoweverNear) {
    // A second of silence, one of the sound played, and one more that only an end taken away lets through;
    // the loop returns to a fourth, far louder one.
    constexpr std::uint64_t kEnd = 2 * kRate, kLoud = 3 * kRate;
    std::vector<float> sound = test::sine(150, kRate, 4 * kRate, 0.2);
    for (std::size_t i = 2 * kLoud; i < sound.size(); ++i) sound[i] *= 4.0F;
    const struct {
        const char* name;
        PlayRange before, after;
        double loudest;  // from the change on
        bool ends;
    } cases[] = {
        {"loop cleared", {kEnd, 0, true}, {kEnd, 0, false}, 0.25, true},
        {"end taken away", {kEnd, 0, true}, {kLoud, 0, false}, 0.25, false},
        {"end taken away, no loop", {kEnd, 0, false}, {kLoud, 0, false}, 0.25, false},
        {"loop set", {kEnd, 0, false}, {kEnd, kRate, true}, 0.25, false},
        {"loop point moved", {kEnd, 0, true}, {kEnd, kRate, true}, 0.25, false},
        {"end brought to the front", {kEnd, 0, false}, {kRate, kRate / 2, true}, 0.25, false},
    };
    for (const TempoParameters& to : {TempoParameters{10, 0, 1}, TempoParameters{-20, 0, 1.1}})
        for (const auto& c : cases)
            for (const std::uint64_t near : {1u, 70u, 300u, 700u, 2000u, 6000u}) {
                Player player(sound);
                player.tempo.setParameters(to);
                player.setRange(c.before);
                player.moveTo(kEnd - kRate / 2);
                while (player.tempo.sourceFrame() + near + 300 < kEnd) player.play(kBlock);
                while (player.tempo.sourceFrame() + near < kEnd && !player.over) player.play(8);
                if (player.over) continue;  // the last few milliseconds are counted in one
                const std::size_t at = player.heard.size() / 2;
                player.setRange(c.after);
                player.play(kRate / 2);
                const auto what = std::string(c.name) + ", " + std::to_string(near) + " frames before";
                EXPECT_EQ(player.over, c.ends) << what;
                double loudest = 0;
                for (std::size_t i = 2 * at; i < player.heard.size(); ++i)
                    loudest = std::max(loudest, std::fabs(double{player.heard[i]}));
                EXPECT_LT(loudest, c.loudest) << what;
                const double played = static_cast<double>(player.heard.size() / 2 - at) * to.speed();
                if (c.ends) {
                    EXPECT_NEAR(played, static_cast<double>(near), 0.015 * kRate) << what;
                    continue;
                }
                const double begin =
                    c.after.end < kEnd ? static_cast<double>(c.after.end) : static_cast<double>(kEnd - near);
                double place = begin + played;
                while (c.after.loop && place >= static_cast<double>(c.after.end))
                    place -= static_cast<double>(c.after.end - c.after.loopStart);
                EXPECT_NEAR(static_cast<double>(player.tempo.sourceFrame()), place, 0.012 * kRate) << what;
                EXPECT_TRUE(player.stretched()) << what;
                if (!c.after.loop) {
                    EXPECT_LT(test::roughness(player.heard, at, player.heard.size() / 2), 0.0015) << what;
                }
            }
}

/// Hz between two frames, by upward crossings of zero.
double pitchBetween(const std::vector<float>& stereo, std::size_t from, std::size_t to) {
    double first = 0, last = 0;
    int waves = -1;
    for (std::size_t i = std::max<std::size_t>(from, 1); i < to; ++i) {
        const double before = stereo[2 * i - 2], now = stereo[2 * i];
        if (before >= 0 || now < 0) continue;
        last = static_cast<double>(i) - now / (now - before);
        if (waves++ < 0) first = last;
    }
    return waves < 1 ? 0 : waves * kRate / (last - first);
}

TEST(TempoProcessor, SlidesGoTheirWayWithoutAStepAndKeepThePlace) {
    constexpr double kHz = 440;
    constexpr std::size_t kBegin = kRate / 2, kFrames = kRate * 3 / 2;
    const struct {
        const char* name;
        TempoParameters from;
        TempoPart part;
        double to;
        bool ratios;
    } cases[] = {
        {"tempo up", {}, TempoPart::Tempo, 60, false},
        {"tempo to neutral", {-30, 0, 1}, TempoPart::Tempo, 0, false},
        {"tempo in ratios", {-40, 0, 1}, TempoPart::Tempo, 50, true},
        {"pitch up", {}, TempoPart::Pitch, 12, false},
        {"pitch through neutral", {0, -5, 1}, TempoPart::Pitch, 5, false},
        {"pitch to neutral", {0, 7, 1}, TempoPart::Pitch, 0, false},
        {"rate down", {}, TempoPart::Rate, 0.5, true},
        {"rate through neutral", {0, 0, 1.5}, TempoPart::Rate, 0.8, false},
        {"rate under tempo", {25, 0, 1}, TempoPart::Rate, 1.3, false},
    };
    for (const auto& c : cases) {
        TempoCurve curve;
        const auto order = [&](auto&& to, std::uint64_t time, std::uint64_t frames) {
            curve.move(c.part, to, time, frames, c.ratios);
        };
        for (const auto& [part, value] :
             {std::pair{TempoPart::Tempo, c.from.tempo}, std::pair{TempoPart::Pitch, c.from.pitch},
              std::pair{TempoPart::Rate, c.from.rate}})
            curve.move(part, value, 0, 0, false);
        order(c.to, kBegin, kFrames);

        Player player(test::sine(kHz, kRate, 12 * kRate));
        player.tempo.setParameters(c.from);
        player.moveTo(0);
        player.play(kBegin);
        const std::uint64_t began = player.tempo.sourceFrame();
        player.tempo.slide(c.part, c.to, kFrames, c.ratios);
        EXPECT_TRUE(player.tempo.sliding(c.part)) << c.name;
        double expected = static_cast<double>(began), off = 0;
        std::vector<double> places(1, expected);
        for (std::size_t at = kBegin; at < kBegin + kFrames + kRate / 2; at += kBlock) {
            EXPECT_NEAR(player.tempo.parameters().speed(), curve.at(at).speed(), 1e-9) << c.name;
            player.play(kBlock);
            for (std::size_t i = 0; i < kBlock; ++i) expected += curve.at(at + i).speed();
            off = std::max(off, std::fabs(static_cast<double>(player.tempo.sourceFrame()) - expected));
        }
        EXPECT_FALSE(player.tempo.sliding(c.part)) << c.name;
        // What is counted: each crossing over looks up to 10 ms around for its place; and what passed at the
        // former speed before the slide was heard.
        const double late =
            0.035 * kRate * std::fabs(curve.at(kBegin + kRate / 28).speed() - curve.at(kBegin).speed());
        EXPECT_LT(off, 0.020 * kRate + late) << c.name;
        // What is heard: the pitch of each twentieth of a second.
        const std::size_t step = kRate / 20;
        for (std::size_t at = kBegin + step; at + step < player.heard.size() / 2; at += step) {
            const double hz = kHz * curve.at(at + step / 2).transposition();
            EXPECT_NEAR(pitchBetween(player.heard, at, at + step), hz, 0.02 * hz) << c.name << " at " << at;
        }
        const double most = std::max(curve.at(0).transposition(), curve.last().transposition());
        EXPECT_LT(test::roughness(player.heard, 450, player.heard.size() / 2),
                  2.5 * test::roughness(player.memory.sound, 0, kRate) * std::max(1.0, most * most))
            << c.name;
        EXPECT_EQ(player.stretched(), !curve.last().neutral()) << c.name;
    }
}

TEST(TempoProcessor, PositionIsThatOfWhatIsHeardWithinSlides) {
    for (const auto& [part, to] : {std::pair{TempoPart::Tempo, 80.0}, std::pair{TempoPart::Tempo, -40.0},
                                   std::pair{TempoPart::Pitch, -9.0}, std::pair{TempoPart::Rate, 1.6}}) {
        constexpr std::size_t kEvery = 9973;
        Player player(bursts(14 * kRate, 15000, kEvery));
        player.play(kRate / 4);
        player.tempo.slide(part, to, 5 * kRate, false);
        while (player.heard.size() / 2 < 6 * kRate) player.play(32);
        int found = 0;
        double sum = 0;
        for (std::size_t i = kRate / 2; i < player.heard.size() / 2; ++i) {
            if (std::fabs(player.heard[2 * i]) < 0.3f) continue;
            const double place = static_cast<double>(player.places[std::min(i, player.places.size() - 1)]);
            const double nearest = 15000 + std::round((place - 15000) / kEvery) * kEvery;
            // Within a sequence the sound runs at its own speed, ahead of the count and then behind it.
            EXPECT_NEAR(place, nearest, 0.030 * kRate) << to << " at " << i;
            sum += place - nearest;
            ++found;
            i += kEvery / 3;
        }
        EXPECT_GT(found, 18) << to;
        EXPECT_LT(std::fabs(sum / found), 0.010 * kRate) << to;
    }
}

TEST(TempoProcessor, ASlideThatIsReplacedGoesOnFromTheValueReachedAndRunsOnInSilence) {
    Player player(test::sine(440, kRate, 12 * kRate));
    player.tempo.slide(TempoPart::Pitch, 12, kRate, false);
    player.play(kRate / 4);
    EXPECT_NEAR(player.tempo.parameters().pitch, 3, 1e-9);
    player.tempo.slide(TempoPart::Pitch, -3, kRate / 2, false);
    player.play(kRate / 4);
    EXPECT_NEAR(player.tempo.parameters().pitch, 0, 1e-9);
    EXPECT_TRUE(player.stretched());
    player.tempo.idle(kRate / 8);
    EXPECT_NEAR(player.tempo.parameters().pitch, -1.5, 1e-3);
    const std::size_t at = player.heard.size() / 2;
    player.play(kRate / 2);  // a lane that stood meanwhile is made anew
    EXPECT_NEAR(pitchBetween(player.heard, at + kRate / 4, at + kRate / 2), 440 * std::exp2(-3 / 12.0), 4);
    player.tempo.setParameters({});
    player.play(kRate / 4);
    EXPECT_FALSE(player.stretched());
    EXPECT_LT(test::roughness(player.heard, 0, player.heard.size() / 2),
              4 * test::roughness(player.memory.sound, 0, kRate));
}

TEST(TempoProcessor, AKnobThatTurnsWithoutAPauseIsHeardMeanwhile) {
    Player player(test::sine(440, kRate, 12 * kRate));
    for (int i = 1; i <= 60; ++i) {  // an order every six milliseconds
        player.tempo.setParameters({0, 0.1 * i, 1});
        player.play(kBlock);
    }
    const std::size_t end = player.heard.size() / 2;
    EXPECT_NEAR(pitchBetween(player.heard, end - 3 * kBlock, end), 440 * std::exp2(5.0 / 12), 12);
}

TEST(TempoProcessor, WholeSoundHasItsLengthOverTheSpeed) {
    for (const Change& change : kChanges) {
        Player player(test::noise(2 * 3 * kRate, 5));
        player.tempo.setParameters(change.to);
        player.moveTo(0);
        player.play(10 * kRate);
        EXPECT_TRUE(player.over);
        EXPECT_NEAR(static_cast<double>(player.heard.size() / 2), 3 * kRate / change.to.speed(),
                    0.005 * kRate)
            << change.name;
    }
}

TEST(TempoProcessor, MovingDropsWhatIsHeld) {
    std::vector<float> sound(2 * 8 * kRate);
    for (std::size_t i = 4 * kRate; i < 8 * kRate; ++i) sound[2 * i] = sound[2 * i + 1] = 0.5f;
    Player player(sound);
    player.tempo.setParameters({10, 0, 1});
    player.moveTo(0);
    player.play(kRate);
    player.moveTo(5 * kRate);
    EXPECT_EQ(player.tempo.sourceFrame(), 5u * kRate);
    const std::size_t at = player.heard.size() / 2;
    player.play(kRate / 2);
    EXPECT_NEAR(player.heard[2 * at], 0.5f, 1e-3);
    EXPECT_TRUE(player.stretched());
    // Without being prepared it begins neutral and gets there by itself.
    player.position = kRate;
    player.tempo.restart(kRate);
    EXPECT_FALSE(player.stretched());
    player.play(kRate / 2);
    EXPECT_TRUE(player.stretched());
}

TEST(TempoProcessor, SenselessParametersAreCut) {
    Player player(test::noise(2 * kRate, 6));
    player.tempo.setParameters({std::nan(""), 1e9, -3});
    const TempoParameters p = player.tempo.parameters();
    EXPECT_EQ(p.tempo, 0);
    EXPECT_EQ(p.pitch, 60);
    EXPECT_EQ(p.rate, 0.05);
    for (const TempoParameters& extreme : {TempoParameters{-95, 0, 1}, TempoParameters{5000, 0, 1},
                                           TempoParameters{0, 60, 20}, TempoParameters{-95, -60, 0.05}}) {
        player.tempo.setParameters(extreme);
        player.moveTo(0);
        player.play(2000);
    }
}

TEST(TempoProcessor, AWorkerOfItsOwnMayDoTheWork) {
    Player player(test::sine(150, kRate, 4 * kRate));
    player.setRange({2 * kRate, kRate, true});
    std::atomic<bool> done{false};
    std::thread worker([&] {
        while (!done) {
            player.tempo.work();
            std::this_thread::yield();
        }
    });
    std::thread presenter([&] {
        for (int i = 0; !done; ++i) {
            player.tempo.setParameters({i % 3 == 0 ? 0.0 : 5.0 * (i % 7), i % 11 == 0 ? 2.0 : 0.0, 1});
            if (i % 5 == 0) player.tempo.prime(kRate / 2);
            std::this_thread::yield();
        }
    });
    std::vector<float> block(2 * kBlock);
    std::uint64_t frames = 0;
    for (int turn = 0; turn < 3000; ++turn) {
        if (turn % 500 == 499) player.tempo.restart(kRate / 2);
        if (player.tempo.neutral()) {
            const std::size_t n = std::min(kBlock, player.tempo.neutralRun());
            player.tempo.passed(n, (player.tempo.sourceFrame() + n) % (2 * kRate));
            frames += n;
        } else {
            frames += player.tempo.read(block);
        }
        EXPECT_LE(player.tempo.sourceFrame(), 2 * kRate + kRate / 2);
    }
    done = true;
    worker.join();
    presenter.join();
    EXPECT_GT(frames, 0u);
}

}  // namespace
}  // namespace zv::engine
