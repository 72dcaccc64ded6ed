// What a sound looks like and how loud it is, against signals whose values are known.

#include <numbers>

#include "platform/loudness.h"
#include "platform/waveform.h"
#include "tests/sound/workshop.h"

namespace zv::test {
namespace {

constexpr std::uint32_t rate = 48'000;

struct Stretch {
    double decibels;  ///< of the tone's peak, under full scale
    double seconds;
};
struct Programme {
    const char* what;
    std::uint32_t channels;
    double hertz, phase;
    std::vector<Stretch> stretches;
    double loudness, peak;  ///< LUFS, dBTP
};

TEST(LoudnessMeter, SignalsOfKnownLoudness) {
    const double quarter = rate / 4.0, between = std::numbers::pi / 4;  // no sample falls on the crest
    const Programme table[] = {
        {"a tone", 2, 1000, 0, {{-23, 5}}, -23, -23},
        {"one channel is heard on both sides", 1, 1000, 0, {{-23, 5}}, -23, -23},
        {"what is far quieter does not count", 2, 1000, 0, {{-36, 4}, {-23, 24}, {-36, 4}}, -23, -23},
        {"what is nearly as loud does", 2, 1000, 0, {{-26, 8}, {-20, 8.04}, {-26, 8}}, -23, -20},
        {"crests between samples", 2, quarter, between, {{-6, 5}}, NAN, -6},
        {"silence", 2, 1000, 0, {{-300, 3}}, -INFINITY, -300},
    };
    for (const Programme& programme : table) {
        const auto meter = makeLoudnessMeter(rate, programme.channels);
        ASSERT_TRUE(meter);
        std::vector<float> piece;
        std::size_t at = 0, pieceFrames = 1;
        for (const auto& [decibels, seconds] : programme.stretches) {
            for (const std::size_t end = at + static_cast<std::size_t>(seconds * rate); at < end; ++at) {
                const double turn = 2 * std::numbers::pi * programme.hertz * static_cast<double>(at) / rate;
                const auto sample =
                    static_cast<float>(std::pow(10, decibels / 20) * std::sin(turn + programme.phase));
                piece.insert(piece.end(), programme.channels, sample);
                if (piece.size() < pieceFrames * programme.channels) continue;
                meter->add(piece);
                piece.clear();
                pieceFrames = pieceFrames * 5 % 9973 + 1;
            }
        }
        meter->add(piece);
        const Loudness measured = meter->result();
        if (std::isinf(programme.loudness)) {
            EXPECT_EQ(programme.loudness, measured.integrated) << programme.what;
        } else if (!std::isnan(programme.loudness)) {
            EXPECT_NEAR(programme.loudness, measured.integrated, 0.1) << programme.what;
        }
        EXPECT_NEAR(programme.peak, measured.truePeak, 0.4) << programme.what;
    }
    EXPECT_FALSE(makeLoudnessMeter(0, 2));
    EXPECT_FALSE(makeLoudnessMeter(rate, 0));
}

class Work : public JobWork {
  public:
    explicit Work(int until) : until_(until) {}
    bool cancelled() override { return until_-- == 0; }
    void progress(int percent, std::string) override {
        EXPECT_GE(percent, percent_);
        percent_ = percent;
    }
    int percent_ = 0;

  private:
    int until_;
};

TEST(Waveforms, EveryLevelIsTheOutlineOfItsFrames) {
    const Folder folder;
    constexpr std::size_t frames = 700'001;
    const auto sound = wanderingTones(rate, 2, frames);
    writeWav(folder / "a.wav", sound, rate, 2);
    int error = 0;
    const auto decoder = makeFileDecoders()->openFile(folder / "a.wav", error);
    ASSERT_TRUE(decoder);
    Work work(-1);
    std::uint64_t before = 0;
    int parts = 0;
    const Waveform whole = readWaveform(*decoder, work, [&](const Waveform& part) {
        EXPECT_GT(part.frames, before);
        before = part.frames;
        ++parts;
    });
    EXPECT_EQ(frames, whole.frames);
    EXPECT_EQ(100, work.percent_);
    EXPECT_GE(parts, 5);
    for (std::size_t level = 0; level < Waveform::levels; ++level) {
        const std::size_t size = Waveform::framesPerBin(level);
        for (std::size_t side = 0; side < 2; ++side) {
            const auto& bins = whole.bins[level][side];
            ASSERT_EQ((frames + size - 1) / size, bins.size()) << level;
            for (const std::size_t k : {std::size_t{0}, bins.size() / 2, bins.size() - 1}) {
                float low = 1, high = -1;
                double squares = 0;
                const std::size_t end = std::min(frames, (k + 1) * size);
                for (std::size_t i = k * size; i < end; ++i) {
                    const float sample = sound[i * 2 + side];
                    low = std::min(low, sample), high = std::max(high, sample);
                    squares += static_cast<double>(sample) * sample;
                }
                EXPECT_NEAR(low, bins[k].low, 1e-4) << level;
                EXPECT_NEAR(high, bins[k].high, 1e-4) << level;
                EXPECT_NEAR(std::sqrt(squares / static_cast<double>(end - k * size)), bins[k].rms, 1e-4)
                    << level;
            }
        }
    }
    Work cancelled(3);
    const Waveform cut = readWaveform(*decoder, cancelled, nullptr);
    EXPECT_GT(cut.frames, 0U);
    EXPECT_LT(cut.frames, frames);
    Waveform longSound;
    longSound.length = Waveform::longSound + 1;
    EXPECT_EQ(0U, whole.levelFor(10));
    EXPECT_EQ(1U, longSound.levelFor(10));
    EXPECT_EQ(1U, whole.levelFor(600));
    EXPECT_EQ(Waveform::levels - 1, whole.levelFor(1e9));
}

}  // namespace
}  // namespace zv::test
