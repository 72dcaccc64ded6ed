#include <gtest/gtest.h>

#include "engine/dsp/level_meter.h"
#include "engine/dsp/mix.h"
#include "engine/dsp/peak_eq.h"
#include "engine/dsp/resampler.h"
#include "engine/dsp/reverb.h"
#include "engine/dsp/stretcher.h"
#include "tests/engine/dsp_signals.h"

namespace zv::engine::dsp {
namespace {

using test::noise;

class WidePath : public testing::Test {
  protected:
    void TearDown() override { setWidePath(true); }
};

TEST(DspMix, AddsEverySourceInTurn) {
    for (std::size_t count : {0u, 1u, 2u, 3u, 4u, 5u, 11u, 120u})
        for (const bool mono : {false, true})
            for (const bool plain : {false, true}) {
                const std::size_t frames = 131;
                std::vector<std::vector<float>> sounds;
                std::vector<MixSource> sources;
                for (unsigned k = 0; k < count; ++k) sounds.push_back(noise(2 * frames, k));
                for (unsigned k = 0; k < count; ++k) {
                    sources.push_back({sounds[k].data(), 1, {k % 3 == 0 ? 1.0 : 0.1 * (k % 5), 0, 0}});
                    if (!plain && k % 4 != 1) sources[k].gain.step = 1e-3 * k, sources[k].gain.at = 7 * k;
                    if (!plain && k % 4 == 2) sources[k].before = 0.3f;
                }
                std::vector<float> out = noise(2 * frames, 99), expected = out;
                for (const MixSource& s : sources)
                    for (std::size_t i = 0; i < expected.size(); ++i)
                        expected[i] += s.frames[mono ? i / 2 : i] * s.before * s.gain.value(i / 2);
                mono ? mixMono(out.data(), sources, frames) : mixStereo(out.data(), sources, frames);
                EXPECT_EQ(out, expected) << count << (mono ? " mono" : "") << (plain ? " plain" : "");
            }
}

TEST_F(WidePath, GivesTheSameBitsAsThePlainOne) {
    if (!usesWidePath()) GTEST_SKIP() << "this machine has no wide path";
    const std::size_t frames = 1003;
    const std::vector<float> a = noise(2 * frames, 1), gains = noise(frames, 2);
    const auto everything = [&] {
        std::vector<float> out = noise(2 * frames, 3), all;
        const auto keep = [&] { all.insert(all.end(), out.begin(), out.end()); };
        mixStereo(out.data(), a.data(), frames, 0.3f), keep();
        mixStereo(out.data(), a.data(), frames, GainRamp{0.9, -1e-4 / 3, 77}), keep();
        mixStereo(out.data(), a.data(), frames, gains.data()), keep();
        const MixSource set[] = {{a.data(), 0.5f, {1, -1e-3, 9}},
                                 {a.data() + 2, 1, {0.3, 0, 0}},
                                 {a.data() + 1, 1, {0, 1e-4, 5}},
                                 {a.data(), 0.7f, {1, 0, 0}},
                                 {a.data() + 3, 1, {0.2, 1e-5, 1}}};
        mixStereo(out.data(), set, frames - 3), keep();
        mixMono(out.data(), set, frames), keep();
        GainCurve curve{{}, {}, 1.01};
        std::copy_n(a.begin(), curve.fine.size(), curve.fine.begin());
        std::copy_n(a.begin(), curve.coarse.size(), curve.coarse.begin());
        curveGains(out.data(), curve, 0.77, 13, frames), keep();
        scaleStereo(out.data(), out.data(), frames, GainRamp{0.1, 1e-3 / 7, 3}), keep();
        scaleStereo(out.data(), out.data(), frames, gains.data()), keep();
        scale(out.data(), out.data(), 2 * frames, 1.7f), keep();
        PeakEq eq(44100);
        for (std::size_t k = 0; k < 7; ++k) eq.setBand(k, {100.0 * static_cast<double>(k + 1), 5, 2.5, 0});
        eq.process(out.data(), frames / 2);
        eq.setBand(3, {800, -7, 1, 0});
        eq.process(out.data() + frames / 2 * 2, frames - frames / 2), keep();
        Reverb reverb(44100);
        reverb.set({0, -3, 800, 0.5});
        reverb.process(out.data(), frames / 2);
        reverb.set({-2, -9, 300, 0.5});
        reverb.process(out.data() + frames / 2 * 2, frames - frames / 2), keep();
        Resampler rates(44100, 48000);
        rates.setCorrection(100);
        std::vector<float> in(2 * rates.inputNeeded(frames));
        std::copy_n(a.begin(), std::min(in.size(), a.size()), in.begin());
        rates.process(in, out), keep();
        Stretcher stretcher(2000, 2);
        stretcher.put(a);
        while (stretcher.make() > 0) stretcher.take(out), keep();
        LevelMeter meter(44100, 0.1);
        meter.feed(out.data(), frames, 0.9f);
        all.push_back(meter.peak(0.1).left);
        all.push_back(meter.rms(0.1).right);
        return all;
    };
    const auto wide = everything();
    setWidePath(false);
    EXPECT_EQ(wide, everything());
}

TEST(DspMix, FoldsChannelsDown) {
    constexpr float h = 0.70710678f;
    const struct {
        std::uint32_t channels;
        std::vector<float> left, right;  // what each channel gives
    } cases[] = {
        {1, {1}, {1}},
        {2, {1, 0}, {0, 1}},
        {3, {1, 0, h}, {0, 1, h}},
        {4, {1, 0, h, 0}, {0, 1, 0, h}},
        {5, {1, 0, h, h, 0}, {0, 1, h, 0, h}},
        {6, {1, 0, h, 0, h, 0}, {0, 1, h, 0, 0, h}},
        {8, {1, 0, h, 0, h, 0, h, 0}, {0, 1, h, 0, 0, h, 0, h}},
    };
    for (const auto& c : cases) {
        for (std::uint32_t channel = 0; channel < c.channels; ++channel) {
            std::vector<float> in(3 * c.channels);
            in[c.channels + channel] = 0.5f;  // in the second of three frames
            std::vector<float> out(6, 9.0f);
            foldToStereo(out.data(), in.data(), 3, c.channels);
            EXPECT_EQ(out, (std::vector<float>{0, 0, 0.5f * c.left[channel], 0.5f * c.right[channel], 0, 0}))
                << c.channels << " channels, " << channel;
        }
    }
}

TEST(DspMix, SixteenBitsAreRoundedAndCut) {
    const float hard[] = {1.0f, 2e9f, -1e30f, std::nanf(""), 0.5f / 32768, 1.5f / 32768, -0.5f / 32768, 1};
    std::vector<std::int16_t> cut(8, 9);
    toInt16(cut.data(), hard, 7);
    EXPECT_EQ(cut, (std::vector<std::int16_t>{32767, 32767, -32768, 0, 0, 2, 0, 9}));
}

TEST(DspLevelMeter, PeakAndRmsOfWhatWasHeardLast) {
    LevelMeter meter(44100, 0.5);
    const auto loud = test::sine(1000, 44100, 44100, 0.8);
    meter.feed(loud.data(), 44100, 0.5f);
    meter.feedSilence(441);  // a quarter of the window
    EXPECT_NEAR(meter.rms(0.04).left, 0.4 / std::numbers::sqrt2 * std::sqrt(0.75), 0.01);
    EXPECT_NEAR(meter.peak(0.04).left, 0.4, 0.001);
    meter.feedSilence(2000);
    EXPECT_EQ(meter.peak(0.04).left, 0);
    EXPECT_GT(meter.peak(0.4).left, 0.39);
    meter.feed(loud.data(), 99);
    meter.reset();
    EXPECT_EQ(meter.peak(9).left, 0);
    const float mono[] = {0.5F, 0, -1};
    EXPECT_EQ(measureMono(mono, 3).peakLeft, 1);
    EXPECT_EQ(measureMono(mono, 3).powerRight, 1.25F);
}

}  // namespace
}  // namespace zv::engine::dsp
