// Outputs with clocks of their own: they follow one another, go and come back, and rest while nothing sounds.
#include <array>
#include <chrono>
#include <cstdio>

#include "tests/engine/show.h"

namespace zv::engine::test {
namespace {

constexpr double rate = 44100;
constexpr double pitchLimit = 0.0005;  ///< 0.05 %
constexpr double lagLimitMs = 100;

/// 100 Hz, of which a turn is 441 frames: every gap shows as a corner.
class Tone {
  public:
    static constexpr std::uint64_t turn = 441;
    static constexpr double hz = rate / turn;
    Tone() {
        for (std::size_t f = 0; f < turn; ++f) {
            const double angle = 2 * std::numbers::pi * static_cast<double>(f) / turn;
            wave[f] = sine(f, hz, rate, 0.5);
            cosines[f] = std::cos(angle);
            sines[f] = std::sin(angle);
        }
    }
    float sample(std::uint64_t frame) const { return wave[frame % turn]; }

    /// Where in its turn the tone stands at the first frame, in frames; with how much strength.
    double phase(const std::vector<float>& sound, double& strength) const {
        double re = 0, im = 0;
        const std::size_t n = sound.size() / 2 / turn * turn;
        for (std::size_t f = 0; f < n; ++f) {
            re += sound[f * 2] * cosines[f % turn];
            im += sound[f * 2] * sines[f % turn];
        }
        strength = std::hypot(re, im) / static_cast<double>(n) * 2;
        return std::atan2(re, im) / (2 * std::numbers::pi) * turn;
    }
    /// The first frame from `from` on at which the tone has a corner; none: the size.
    static std::size_t corner(const std::vector<float>& sound, std::size_t from = 0) {
        for (std::size_t f = from + 2; f < sound.size() / 2; ++f) {
            const double bend = sound[f * 2] - 2.0 * sound[(f - 1) * 2] + sound[(f - 2) * 2];
            if (!(std::abs(bend) < 2e-4)) return f;
        }
        return sound.size() / 2;
    }
    static std::size_t onset(const std::vector<float>& sound) {
        std::size_t f = 0;
        while (f < sound.size() / 2 && std::abs(sound[f * 2]) < 1e-3F) ++f;
        return f;
    }

    std::array<float, turn> wave{};
    std::array<double, turn> cosines{}, sines{};
};

class Clocks : public Show {
  protected:
    /// A tone for ever on both outputs, which run by so many parts per million too fast.
    void playTone(double main, double aux, OfflineOptions options = {}) {
        begin(std::move(options));
        decoders->sounds["tone"] = {.length = Tone::turn * 6000,
                                    .sample = [this](auto frame, auto) { return tone.sample(frame); }};
        devices->setClockError(kMainName, main);
        devices->setClockError(kAuxName, aux);
        studio.emplace();
        const DWORD source = file("tone");
        jingle = studio->jingle(source);
        BASS_ChannelFlags(source, BASS_SAMPLE_LOOP, BASS_SAMPLE_LOOP);
        pull(4410);
        take();
        take(kAuxName);
        BASS_ChannelPlay(jingle, false);
    }
    const Tone tone;
    std::optional<Topology> studio;
    DWORD jingle = 0;
};

constexpr int kDriftSeconds = 240;

class Drift : public Clocks, public testing::WithParamInterface<std::pair<double, double>> {};

TEST_P(Drift, TheAuxiliaryFollowsWithoutGapOrLag) {
    playTone(GetParam().first, GetParam().second);
    double mainFrames = 0;  // what the main output has given of the tone
    double lag = 0, leastLag = 1e9, mostLag = 0, worstPitch = 0, lastPhase = 0, lastSpan = 0;
    std::size_t mainAt = 0;
    for (int second = 0; second < kDriftSeconds; ++second) {
        pull(44100);
        std::vector<float> main = take(), aux = take(kAuxName);
        if (second == 0) {
            // It begins on both within this second.
            const std::size_t began = Tone::onset(main), followed = Tone::onset(aux);
            lag = static_cast<double>(followed) - static_cast<double>(began);
            ASSERT_LT(lag / rate * 1000, lagLimitMs);
            while (mainAt < Tone::turn && tone.wave[mainAt] != main[began * 2]) ++mainAt;
            ASSERT_LT(mainAt, Tone::turn);
            mainFrames = static_cast<double>(followed - began + mainAt) + Tone::turn;
            main.erase(main.begin(), main.begin() + static_cast<std::ptrdiff_t>(began) * 2);
            aux.erase(aux.begin(), aux.begin() + static_cast<std::ptrdiff_t>(followed + Tone::turn) * 2);
        }
        // The main output is the file itself, to the bit, whatever the clocks do.
        for (std::size_t f = 0; f < main.size() / 2; ++f, ++mainAt)
            if (main[f * 2] != tone.wave[mainAt % Tone::turn])
                FAIL() << "main at " << second << " s, frame " << f;
        // The auxiliary: the tone without a corner, of the right pitch by its own clock.
        const std::size_t corner = Tone::corner(aux);
        if (corner < aux.size() / 2) FAIL() << "a gap at " << second << " s, frame " << corner;
        double strength = 0;
        const double phase = tone.phase(aux, strength);
        ASSERT_GT(strength, 0.49);
        if (second > 0) {
            const double turned = std::remainder(phase - lastPhase - lastSpan, Tone::turn);
            worstPitch = std::max(worstPitch, std::abs(turned) / lastSpan);
            ASSERT_LT(worstPitch, pitchLimit) << second;
        }
        // How far it is behind: of all the turns that have this phase the one that is nearest to the last
        // lag.
        lag += std::remainder(mainFrames - phase - lag, Tone::turn);
        leastLag = std::min(leastLag, lag / rate * 1000);
        mostLag = std::max(mostLag, lag / rate * 1000);
        ASSERT_LT(mostLag, lagLimitMs) << second;
        ASSERT_GT(leastLag, 0) << second;
        lastPhase = phase;
        lastSpan = static_cast<double>(aux.size() / 2);
        mainFrames =
            second == 0 ? static_cast<double>(mainAt) : mainFrames + static_cast<double>(main.size() / 2);
    }
    EXPECT_EQ(engineControl()->statistics(kAux).sourceUnderruns, 0U);
    std::printf("%d s: lag %.1f to %.1f ms, pitch within %.4f %%\n", kDriftSeconds, leastLag, mostLag,
                worstPitch * 100);
}

INSTANTIATE_TEST_SUITE_P(Clocks, Drift, testing::Values(std::pair{200.0, 0.0}, std::pair{100.0, -100.0}));
INSTANTIATE_TEST_SUITE_P(SlowClocks, Drift,
                         testing::Values(std::pair{-200.0, 0.0}, std::pair{100.0, 0.0},
                                         std::pair{-100.0, 0.0}, std::pair{0.0, 0.0}));

}  // namespace
}  // namespace zv::engine::test
