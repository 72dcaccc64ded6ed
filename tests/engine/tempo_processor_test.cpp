// What a tempo channel plays: played by the engine itself on an offline output, one channel alone.

#include "engine/tempo/curve.h"
#include "tests/engine/show.h"

namespace zv::engine::test {
namespace {

constexpr std::uint32_t kRate = 44100;
constexpr std::size_t kPiece = 256;  ///< frames from one look at the position to the next

class TempoProcessor : public Show {
  protected:
    TempoProcessor() {
        engineControl()->install({decoders, devices});
        openMain();
    }

    /// A tempo channel over a sound of its own, on the output, from its beginning to its end.
    class Player {
      public:
        Player(TempoProcessor& show, std::vector<float> stereo) : sound(std::move(stereo)), show_(show) {
            range = {frames(), 0, false};
            show.decoders->sounds["own"] = {.length = frames(), .sample = [this](auto frame, auto side) {
                                                return sound[2 * frame + side];
                                            }};
            channel = BASS_FX_TempoCreate(file("own"), BASS_FX_FREESOURCE);
            show.take();
        }
        ~Player() { BASS_StreamFree(channel); }
        void setRange(const PlayRange& wanted) {
            range = wanted;
            BASS_ChannelSetPosition(channel, bytes(range.end), BASS_POS_END);
            BASS_ChannelSetPosition(channel, bytes(range.loopStart), BASS_POS_LOOP);
            BASS_ChannelFlags(channel, range.loop ? BASS_SAMPLE_LOOP : 0, BASS_SAMPLE_LOOP);
        }
        void moveTo(std::uint64_t frame) { BASS_ChannelSetPosition(channel, bytes(frame), BASS_POS_BYTE); }
        void setParameters(const TempoParameters& to) {
            BASS_ChannelSetAttribute(channel, BASS_ATTRIB_TEMPO, static_cast<float>(to.tempo));
            BASS_ChannelSetAttribute(channel, BASS_ATTRIB_TEMPO_PITCH, static_cast<float>(to.pitch));
            BASS_ChannelSetAttribute(channel, BASS_ATTRIB_TEMPO_FREQ, static_cast<float>(to.rate * kRate));
        }
        TempoParameters parameters() const { return inside().parameters(); }
        void slide(TempoPart part, double to, std::uint64_t frames, bool ratios) {
            constexpr DWORD attributes[] = {BASS_ATTRIB_TEMPO, BASS_ATTRIB_TEMPO_PITCH,
                                            BASS_ATTRIB_TEMPO_FREQ};
            BASS_ChannelSlideAttribute(
                channel, attributes[static_cast<std::size_t>(part)] | (ratios ? BASS_SLIDE_LOG : 0),
                static_cast<float>(part == TempoPart::Rate ? to * kRate : to),
                static_cast<DWORD>(frames * 1000 / kRate));
        }
        bool sliding(TempoPart part) const { return inside().sliding(part); }
        /// Appends up to `count` frames to `heard`.
        void play(std::size_t count) {
            BASS_ChannelPlay(channel, false);
            const std::size_t until = heard.size() / 2 + count;
            while (heard.size() / 2 < until && !over) {
                const std::size_t frames = std::min(kPiece, until - heard.size() / 2);
                show_.devices->setPeriod(static_cast<std::uint32_t>(frames));
                show_.pull(frames);
                const std::vector<float> piece = show_.take();
                heard.insert(heard.end(), piece.begin(), piece.end());
                over = BASS_ChannelIsActive(channel) == BASS_ACTIVE_STOPPED;
            }
            while (over && heard.size() > 2 && heard.back() == 0 && heard[heard.size() - 2] == 0)
                heard.resize(heard.size() - 2);
        }
        std::uint64_t place() const { return BASS_ChannelGetPosition(channel, BASS_POS_BYTE) / 4; }
        std::uint64_t frames() const { return sound.size() / 2; }
        bool stretched() const { return Engine::instance().find(channel)->audio.stretched; }

        std::vector<float> sound;
        DWORD channel = 0;
        PlayRange range;
        std::vector<float> heard;
        bool over = false;

      private:
        static QWORD bytes(std::uint64_t frame) { return frame * 4; }
        const engine::TempoProcessor& inside() const { return *Engine::instance().find(channel)->tempo; }
        TempoProcessor& show_;
    };
};

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

TEST_F(TempoProcessor, AChangeOfLoopOrEndGovernsTheNextWrapHoweverNear) {
    // A second of silence, one of the sound played, and one more that only an end taken away lets through;
    // the loop returns to a fourth, far louder one.
    constexpr std::uint64_t kEnd = 2 * kRate, kLoud = 3 * kRate;
    std::vector<float> sound = sine(150.0, kRate, std::size_t{4} * kRate, 0.2);
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
                Player player(*this, sound);
                player.setParameters(to);
                player.setRange(c.before);
                player.moveTo(kEnd - kRate / 2);
                while (player.place() + near + 300 < kEnd) player.play(kPiece);
                while (player.place() + near < kEnd && !player.over) player.play(8);
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
                EXPECT_NEAR(static_cast<double>(player.place()), place, 0.012 * kRate) << what;
                EXPECT_TRUE(player.stretched()) << what;
                if (!c.after.loop) {
                    EXPECT_LT(roughness(player.heard, at, player.heard.size() / 2), 0.0015) << what;
                }
            }
}

TEST_F(TempoProcessor, SlidesGoTheirWayWithoutAStepAndKeepThePlace) {
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
        const auto command = [&](auto&& to, std::uint64_t time, std::uint64_t frames) {
            curve.move(c.part, to, time, frames, c.ratios);
        };
        for (const auto& [part, value] :
             {std::pair{TempoPart::Tempo, c.from.tempo}, std::pair{TempoPart::Pitch, c.from.pitch},
              std::pair{TempoPart::Rate, c.from.rate}})
            curve.move(part, value, 0, 0, false);
        command(c.to, kBegin, kFrames);

        Player player(*this, sine(kHz, kRate, 12 * kRate));
        player.setParameters(c.from);
        player.moveTo(0);
        player.play(kBegin);
        const std::uint64_t began = player.place();
        player.slide(c.part, c.to, kFrames, c.ratios);
        EXPECT_TRUE(player.sliding(c.part)) << c.name;
        double expected = static_cast<double>(began), off = 0;
        std::vector<double> places(1, expected);
        for (std::size_t at = kBegin; at < kBegin + kFrames + kRate / 2; at += kPiece) {
            EXPECT_NEAR(player.parameters().speed(), curve.at(at).speed(), 1e-9) << c.name;
            player.play(kPiece);
            for (std::size_t i = 0; i < kPiece; ++i) expected += curve.at(at + i).speed();
            off = std::max(off, std::fabs(static_cast<double>(player.place()) - expected));
        }
        EXPECT_FALSE(player.sliding(c.part)) << c.name;
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
        EXPECT_LT(roughness(player.heard, 450, player.heard.size() / 2),
                  2.5 * roughness(player.sound, 0, kRate) * std::max(1.0, most * most))
            << c.name;
        EXPECT_EQ(player.stretched(), !curve.last().neutral()) << c.name;
    }
}

TEST_F(TempoProcessor, AKnobThatTurnsWithoutAPauseIsHeardMeanwhile) {
    Player player(*this, sine(440, kRate, 12 * kRate));
    for (int i = 1; i <= 60; ++i) {  // a command every six milliseconds
        player.setParameters({0, 0.1 * i, 1});
        player.play(kPiece);
    }
    const std::size_t end = player.heard.size() / 2;
    EXPECT_NEAR(pitchBetween(player.heard, end - 3 * kPiece, end), 440 * std::exp2(5.0 / 12), 12);
}

TEST_F(TempoProcessor, LengthIsRightWithinATenthOfAPercentAndPitchWithinTwoCents) {
    const struct {
        double tempo, pitch, rate;
    } cases[] = {{-30, 0, 1}, {25, 0, 1}, {0, 3, 1}, {0, -12, 1}, {0, 0, 0.85}, {10, -4, 1.05}};
    constexpr double kHz = 150, kSeconds = 20;
    for (const auto& c : cases) {
        Player player(*this, sine(kHz, kRate, static_cast<std::size_t>(kSeconds * kRate)));
        player.setParameters({c.tempo, c.pitch, c.rate});
        player.play(static_cast<std::size_t>(2 * kSeconds * kRate));
        const double speed = (1 + c.tempo / 100) * c.rate;
        const std::size_t frames = player.heard.size() / 2;
        EXPECT_NEAR(static_cast<double>(frames) / kRate * speed / kSeconds, 1, 0.001)
            << c.tempo << ' ' << c.pitch << ' ' << c.rate;
        const double hz = kHz * c.rate * std::exp2(c.pitch / 12);
        const double heard = pitchBetween(player.heard, kRate / 5, frames - kRate / 5);
        EXPECT_NEAR(1200 * std::log2(heard / hz), 0, 2) << c.tempo << ' ' << c.pitch << ' ' << c.rate;
    }
}

}  // namespace
}  // namespace zv::engine::test
