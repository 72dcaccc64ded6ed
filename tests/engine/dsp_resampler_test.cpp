#include <gtest/gtest.h>

#include "engine/dsp/resampler.h"
#include "tests/engine/dsp_signals.h"

namespace zv::engine::dsp {
namespace {

using test::decibels;

/// All of `in`, followed by silence, in calls of `size` frames.
std::vector<float> convert(Resampler& resampler, const std::vector<float>& in, std::size_t outFrames,
                           std::size_t size) {
    std::vector<float> out(2 * outFrames), part;
    for (std::size_t done = 0, fed = 0; done < outFrames; done += size) {
        const std::size_t n = std::min(size, outFrames - done);
        part.assign(2 * resampler.inputNeeded(n), 0.0f);
        for (std::size_t i = 0; i < part.size(); ++i)
            if (fed + i < in.size()) part[i] = in[fed + i];
        fed += part.size();
        resampler.process(part, std::span(out).subspan(2 * done, 2 * n));
    }
    return out;
}

struct Rates {
    std::uint32_t in, out;
};

const Rates kRates[] = {{44100, 48000}, {48000, 44100},  {8000, 44100},  {11025, 44100}, {22050, 48000},
                        {96000, 44100}, {192000, 44100}, {44100, 96000}, {44100, 11025}, {44101, 47999}};

TEST(DspResampler, KeepsThePassbandAndNothingElse) {
    for (const Rates& rates : kRates) {
        const double lower = std::min(rates.in, rates.out);
        for (double part : {0.01, 0.1, 0.3, 0.4, 0.45}) {
            const double hz = part * lower;
            const std::size_t frames = rates.out / 4;
            Resampler resampler(rates.in, rates.out);
            const auto in = test::sine(hz, rates.in, rates.in, 0.5);
            const auto out = convert(resampler, in, frames, 512);
            const std::size_t settled = frames / 4;  // behind the beginning, which is cut out of silence
            const auto tone = test::tone(out, hz, rates.out, settled, frames, 1);
            EXPECT_NEAR(decibels(tone.size / 0.5), 0, 0.1) << rates.in << ' ' << rates.out << ' ' << hz;
            EXPECT_LT(decibels(tone.rest / (0.5 / std::numbers::sqrt2)), -90)
                << rates.in << " to " << rates.out << ", " << hz << " Hz";
            for (std::size_t i = settled; i < frames; ++i)  // frames lie where they belong
                ASSERT_NEAR(out[2 * i],
                            tone.size * std::sin(2 * std::numbers::pi * hz * double(i) / rates.out), 1e-4);
            EXPECT_NEAR(resampler.position(), double(frames) * rates.in / rates.out, 1e-6);
        }
    }
}

}  // namespace
}  // namespace zv::engine::dsp
