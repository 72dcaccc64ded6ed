#include <gtest/gtest.h>

#include <complex>
#include <utility>

#include "engine/dsp/peak_eq.h"
#include "engine/dsp/reverb.h"
#include "tests/engine/dsp_signals.h"

namespace zv::engine::dsp {
namespace {

using test::decibels;
using test::inBlocks;
using test::noise;
using test::roughness;
using test::sine;

constexpr double kRate = 44100;

/// What the cookbook's peak filter makes of a sine of `hz`.
double transfer(const PeakBand& b, double hz, double rate) {
    if (b.centreHz >= rate / 2) return 1;
    const double w0 = 2 * std::numbers::pi * b.centreHz / rate, sine = std::sin(w0),
                 middle = -2 * std::cos(w0);
    const double a = std::pow(10, b.gainDb / 40),
                 alpha = b.q > 0 ? sine / (2 * b.q)
                                 : sine * std::sinh(std::numbers::ln2 / 2 * b.octaves * w0 / sine);
    const std::complex<double> z = std::polar(1.0, -2 * std::numbers::pi * hz / rate);
    return std::abs((1 + alpha * a + middle * z + (1 - alpha * a) * z * z) /
                    (1 + alpha / a + middle * z + (1 - alpha / a) * z * z));
}

TEST(DspPeakEq, SevenBandsMeasuredAgainstTheProductOfTheirFormulas) {
    const double centres[] = {60, 150, 400, 1000, 2400, 6000, 15000};
    const double gains[] = {9, -6, 3, -10, 10, 5, -7};
    for (double rate : {22050.0, 44100.0, 48000.0, 96000.0}) {
        for (double hz : {40.0, 60.0, 200.0, 400.0, 1000.0, 3000.0, 6000.0, 10000.0}) {
            PeakEq eq(rate, 9);
            double expected = 1;
            const auto frames = static_cast<std::size_t>(rate);
            auto sound = sine(hz, rate, frames, 0.1);
            for (std::size_t k = 0; k < 7; ++k) {
                const PeakBand band{centres[k], gains[k], 2.5, k == 3 ? 2.0 : 0};
                eq.setBand(2 * k + k % 2, {centres[k] / 2, -gains[k], 1, 0});
                eq.process(sound.data() + 2 * k, 1);  // on their way the bands move
                eq.setBand(2 * k + k % 2, band);
                expected *= transfer(band, hz, rate);
            }
            eq.process(sound.data() + 2 * 7, frames - 7);
            const auto left = test::tone(sound, hz, rate, frames / 2, frames, 0);
            const auto right = test::tone(sound, hz, rate, frames / 2, frames, 1);
            EXPECT_NEAR(decibels(left.size / 0.1), decibels(expected), 0.02) << hz << " at " << rate;
            EXPECT_NEAR(decibels(right.size / 0.1), decibels(expected), 0.02);
            EXPECT_LT(decibels(left.rest / left.size), -110) << hz << " at " << rate;
        }
    }
}

TEST(DspPeakEq, FlatBandsChangeNoBit) {
    const auto sound = noise(2000, 5);
    for (const PeakBand& band : {PeakBand{1000, 0, 2.5, 0}, PeakBand{22050, 6, 2.5, 0},
                                 PeakBand{50000, 6, 1, 0}, PeakBand{-5, 6, 1, 0}, PeakBand{1000, 6, 0, 0}}) {
        PeakEq eq(kRate);
        eq.setBand(0, band);
        EXPECT_TRUE(eq.bypassed());
        auto out = sound;
        eq.process(out.data(), 1000);
        EXPECT_EQ(out, sound);
        eq.setBand(1, band);
        EXPECT_TRUE(eq.bypassed()) << "while sound passes";
    }
    for (const double centre : {1.0, 22049.0}) {
        PeakEq eq(kRate);
        eq.setBand(0, {centre, 6, 2.5, 0});
        auto out = sound;
        eq.process(out.data(), 1000);
        EXPECT_LT(*std::ranges::max_element(out), 10) << centre;
        EXPECT_FALSE(eq.bypassed()) << centre;
    }
}

TEST(DspPeakEq, LiveChangesDoNotClickAndEndInBypass) {
    const std::size_t frames = 88200;
    const auto sound = sine(100, kRate, frames);
    PeakEq eq(kRate);
    std::size_t turn = 0;
    const double gains[] = {0, 10, -10, 10, 5, 0};
    const auto out = inBlocks(sound, 11025, [&](float* block, std::size_t n) {
        if (turn < 6) eq.setBand(0, {110, gains[turn], 2.5, 0});
        if (turn == 2) eq.setBand(1, {3000, 10, 2.5, 0});
        if (turn == 4) eq.setBand(1, {3000, 0, 2.5, 0});
        if (++turn == 4) {  // another centre while the old gain leaves
            eq.setBand(0, {110, 0, 2.5, 0});
            eq.process(block, 100);
            eq.setBand(0, {400, 10, 2.5, 0});
            block += 200, n -= 100;
        }
        eq.process(block, n);
    });
    const double boost = std::pow(10, 10.0 / 20);
    EXPECT_LT(roughness(out, 0, frames), roughness(sound, 0, frames) * boost * 2);
    EXPECT_TRUE(eq.bypassed());
    for (std::size_t i = 2 * 80000; i < 2 * frames; ++i) ASSERT_EQ(out[i], sound[i]);
}

// ---- reverb

/// T60 by backward integration and a line through -5..-35 dB.
double decaySeconds(const std::vector<float>& stereo, std::size_t side, double rate) {
    const std::size_t frames = stereo.size() / 2;
    std::vector<double> energy(frames);
    double sum = 0;
    for (std::size_t i = frames; i-- > 0;)
        energy[i] = sum += double(stereo[2 * i + side]) * stereo[2 * i + side];
    double n = 0, t = 0, d = 0, tt = 0, td = 0;
    for (std::size_t i = 0; i < frames; ++i) {
        const double level = 10 * std::log10(energy[i] / sum + 1e-30), time = static_cast<double>(i) / rate;
        if (level > -5 || level < -35) continue;
        ++n, t += time, d += level, tt += time * time, td += time * level;
    }
    return -60 / ((n * td - t * d) / (n * tt - t * t));
}

/// What follows an impulse.
std::vector<float> tail(double rate, double ms, double high) {
    Reverb reverb(rate);
    reverb.set({0, 0, ms, high});
    std::vector<float> out(2 * static_cast<std::size_t>(rate * 2.5 * ms / 1000));
    out[0] = 1, out[1] = 0.5f;
    reverb.process(out.data(), out.size() / 2);
    out[0] = out[1] = 0;
    return out;
}

TEST(DspReverb, FallsBySixtyDecibelsInItsTime) {
    for (double rate : {22050.0, 44100.0, 48000.0, 96000.0}) {
        for (double high : {0.001, 0.5, 0.999}) {
            for (double ms : {200.0, 300.0, 500.0, 1000.0, 2000.0, 3000.0}) {
                const auto sound = tail(rate, ms, high);
                for (std::size_t side : {0u, 1u})
                    EXPECT_NEAR(decaySeconds(sound, side, rate) * 1000, ms, 0.1 * ms)
                        << rate << " Hz, " << ms << " ms, " << high << ", side " << side;
            }
        }
    }
}

TEST(DspReverb, HighFrequenciesDieSoonerAsTold) {
    const auto highDecay = [](double ratio) {
        auto sound = tail(kRate, 1500, ratio);
        for (int pass = 0; pass < 4; ++pass)  // what is left is above 8 kHz
            for (std::size_t i = sound.size(); i-- > 2;) sound[i] = (sound[i] - sound[i - 2]) * 0.5f;
        return decaySeconds(sound, 0, kRate);
    };
    EXPECT_NEAR(highDecay(0.999), 1.5, 0.1);
    EXPECT_LT(highDecay(0.5), 0.75 * highDecay(0.999));
}

TEST(DspReverb, TheDrySoundStaysAndTheWetIsAdded) {
    for (double mix : {-20.0, -6.0, 0.0}) {
        for (double ms : {300.0, 600.0, 1000.0, 3000.0}) {
            Reverb reverb(kRate);
            const double in = mix / 2, gain = std::pow(10, in / 20);
            reverb.set({in, mix, ms, 0.999});
            const std::size_t frames = 44100 * 6, untilFirst = 870;  // the shortest line
            const auto dry = noise(2 * frames, 3, 0.3f);
            auto sound = dry;
            reverb.process(sound.data(), frames);
            for (std::size_t i = 0; i < 2 * untilFirst; ++i)
                ASSERT_FLOAT_EQ(sound[i], static_cast<float>(gain) * dry[i])
                    << mix << " dB, " << ms << " ms, sample " << i;
            double before = 0, after = 0;
            for (std::size_t i = frames; i < 2 * frames; ++i) {
                before += double(dry[i]) * dry[i];
                after += std::pow(sound[i] - gain * dry[i], 2);
            }
            EXPECT_NEAR(10 * std::log10(after / before), mix + in, 1) << mix << " dB, " << ms << " ms";
        }
    }
}

void put(Reverb& unit, const ReverbSettings& wish) { unit.set(wish); }
void put(PeakEq& unit, const PeakBand& wish) { unit.setBand(3, wish); }

/// While `on` rings: off and on again, and from then on silence in gives silence out; and reset on its way to each wish it sounds as
/// a new unit that was given the wish's equal.
template <typename Unit, typename Wish>
void bringsNothingOld(const Wish& on, const Wish& off, const std::vector<std::pair<Wish, Wish>>& wishes) {
    Unit unit(kRate);
    std::vector<float> meanwhile = noise(2 * 22050, 6), after(2 * 4410);
    auto burst = sine(300, kRate, 4410);
    put(unit, on);
    unit.process(burst.data(), 4410);
    put(unit, off);
    unit.process(meanwhile.data(), 22050);
    put(unit, on);
    unit.process(after.data(), 4410);
    EXPECT_EQ(after, std::vector<float>(2 * 4410));
    for (const auto& [wish, equal] : wishes) {
        put(unit, on);
        unit.process(burst.data(), 4410);
        put(unit, wish);
        unit.process(burst.data(), 100);
        unit.reset();
        Unit fresh(kRate);
        put(fresh, equal);
        auto again = noise(2 * 4410, 4), expected = again;
        unit.process(again.data(), 4410);
        fresh.process(expected.data(), 4410);
        EXPECT_EQ(again, expected) << &wish - &wishes[0].first;
        EXPECT_EQ(unit.bypassed(), fresh.bypassed());
    }
}

TEST(DspEffects, ThatGoAndComeBackBringNothingOld) {
    bringsNothingOld<Reverb, ReverbSettings>({0, 0, 3000, 0.5}, {0, -96, 3000, 0.5},
                                             {{{-3, -3, 800, 0.9}, {-3, -3, 800, 0.9}},
                                              {{1, 1, 20001, 1}, {0, 0, 20000, 0.999}},
                                              {{-97, -95, 0.5, 0}, {-96, -95, 1, 0.001}},
                                              {{0, -97, 800, 0.9}, {}}});
    bringsNothingOld<PeakEq, PeakBand>({300, 15, 0.3, 0}, {300, 0, 0.3, 0},
                                       {{{900, -6, 1, 0}, {900, -6, 1, 0}},
                                        {{900, 121, 1, 0}, {900, 120, 1, 0}},
                                        {{900, -121, 1, 0}, {900, -120, 1, 0}},
                                        {{900, 6, 5, 2}, {900, 6, 1, 2}},
                                        {{-900, 6, 1, 0}, {}}});
}

TEST(DspReverb, LiveChangesDoNotClick) {
    const std::size_t frames = 88200;
    const auto sound = sine(100, kRate, frames, 0.25);
    Reverb reverb(kRate);
    const ReverbSettings steps[] = {
        {0, -96, 1000, 0.5}, {0, -3, 1000, 0.5}, {0, 0, 3000, 0.5}, {-6, -10, 200, 0.9}, {0, -96, 200, 0.9}};
    std::size_t turn = 0;
    const auto out = inBlocks(sound, 16000, [&](float* block, std::size_t n) {
        if (turn == 2) {  // off, and on again on the way
            reverb.set(steps[0]);
            reverb.process(block, 300);
            block += 600, n -= 300;
        }
        EXPECT_EQ(reverb.bypassed(), turn < 2 || turn > 4) << turn;
        if (turn < 5) reverb.set(steps[turn]);
        ++turn;
        reverb.process(block, n);
    });
    // The tail adds up in resonances of the lines: loudness may rise, but nothing may jump.
    EXPECT_LT(roughness(out, 0, frames), 8 * roughness(sound, 0, frames));
    EXPECT_TRUE(reverb.bypassed());
    for (std::size_t i = 2 * 70000; i < 2 * frames; ++i) ASSERT_EQ(out[i], sound[i]);
}

}  // namespace
}  // namespace zv::engine::dsp
