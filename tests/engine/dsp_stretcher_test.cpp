#include <gtest/gtest.h>

#include "engine/dsp/stretcher.h"
#include "tests/engine/dsp_signals.h"

namespace zv::engine::dsp {
namespace {

constexpr double kTempos[] = {0.01, 0.5, 0.9, 1.1, 2, 40};

/// What it makes of `in`, which comes in pieces of `piece` frames; the lengths of the sequences to `lengths`.
std::vector<float> stretched(const std::vector<float>& in, std::uint32_t rate, std::size_t channels,
                             double tempo, std::size_t piece, std::vector<std::size_t>* lengths = nullptr) {
    Stretcher stretcher(rate, static_cast<std::uint32_t>(channels));
    std::vector<float> out, room(channels * 100);
    // What was held and made before is forgotten.
    stretcher.setTempo(3);
    stretcher.put(std::vector<float>(channels * rate, 0.9F));
    stretcher.make();
    stretcher.clear();
    stretcher.setTempo(tempo);
    for (std::size_t at = 0; at < in.size();) {
        const std::size_t lacking = stretcher.lacking(), made = stretcher.make();
        EXPECT_EQ(made == 0, lacking > 0);
        if (made > 0 && lengths) lengths->push_back(made);
        while (const std::size_t got = stretcher.take(room))
            out.insert(out.end(), room.begin(), room.begin() + static_cast<std::ptrdiff_t>(got * channels));
        if (made > 0) continue;
        const std::size_t count = std::min({piece, lacking, in.size() / channels - at / channels});
        stretcher.put({in.data() + at, count * channels});
        at += count * channels;
    }
    return out;
}

/// Of a sound that tells its frames' numbers and is nowhere alike, each sequence lies in its place within the search.
TEST(DspStretcher, SequencesLieInTheirPlacesAndGoOnByThemselves) {
    constexpr std::uint32_t kRate = 8000;
    constexpr std::size_t kOverlap = 64, kWidestSearch = 160;
    for (const double tempo : kTempos)
        for (const std::size_t channels : {1U, 2U, 3U}) {
            const auto frames = static_cast<std::size_t>(kRate * std::max(1.0, 2 * tempo));
            std::vector<float> in(frames * channels);
            for (std::size_t i = 0; i < in.size(); ++i)
                in[i] = static_cast<float>(i / channels) * (i % channels == 2 ? -1.0F : 1.0F);
            std::vector<std::size_t> lengths;
            const std::vector<float> out = stretched(in, kRate, channels, tempo, 997, &lengths);
            EXPECT_EQ(out, stretched(in, kRate, channels, tempo, 1)) << tempo;
            ASSERT_GT(lengths.size(), 4U) << tempo;
            std::size_t at = 0;  // of the output
            for (std::size_t k = 0; k < lengths.size(); at += lengths[k++]) {
                EXPECT_EQ(lengths[k], lengths[1] - (k == 0 ? kOverlap : 0));
                const std::size_t fade = k == 0 ? 0 : kOverlap;
                const double begins = out[(at + fade) * channels] - static_cast<double>(fade);
                EXPECT_NEAR(begins, static_cast<double>(at) * tempo, kWidestSearch / 2 + 1)
                    << tempo << ' ' << k;
                for (std::size_t i = fade; i < lengths[k]; ++i)
                    for (std::size_t c = 0; c < channels; ++c)
                        ASSERT_EQ(out[(at + i) * channels + c],
                                  (begins + static_cast<double>(i)) * (c == 2 ? -1 : 1));
            }
        }
}

/// Waves go on as waves: what is not the tone lies 35 dB below it, and on both sides where they differ.
TEST(DspStretcher, FindsWhereTheSoundGoesOn) {
    constexpr std::uint32_t kRate = 44100;
    for (const double tempo : {0.7, 0.9, 1.1, 1.3, 1.7})
        for (const double hz : {110.0, 220.0, 1000.0}) {
            const auto out = stretched(test::sine(hz, kRate, 4 * kRate), kRate, 2, tempo, 512);
            for (const std::size_t side : {0U, 1U}) {
                // The phase wanders by less than a sample at each sequence: looked at over two of them.
                const auto heard = test::tone(out, hz, kRate, kRate, kRate + kRate / 8, side);
                EXPECT_NEAR(heard.size, 0.5, 0.02) << hz << ' ' << tempo;
                EXPECT_LT(test::decibels(heard.rest / heard.size), -20) << hz << ' ' << tempo;
            }
            EXPECT_LT(test::roughness(out, 2, out.size() / 2),
                      1.5 * test::roughness(test::sine(hz, kRate, kRate), 2, kRate))
                << hz << ' ' << tempo;
        }
}

}  // namespace
}  // namespace zv::engine::dsp
