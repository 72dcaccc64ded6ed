// One channel under commands at random, beside a model that computes every frame one by one.

#include "tests/engine/show.h"

namespace zv::engine::test {
namespace {

constexpr std::uint64_t kLength = 60000, kOpen = ~std::uint64_t{0};
constexpr double kMs = 44.1;  // frames

/// A gain as the words of the header have it: frame n of a slide lies n parts of the way.
struct ModelSlide {
    double from = 1, to = 1;
    std::uint64_t at = 0, length = 0;
    bool logarithmic = false, stops = false;

    double value() const {
        if (length == 0) return to;
        const double part = static_cast<double>(at) / static_cast<double>(length);
        if (!logarithmic) return from + (to - from) * part;
        const double low = std::max(from, to * 0.001), high = std::max(to, low * 0.001);
        return low * std::pow(high / low, part);
    }
    void begin(double target, std::uint64_t frames, bool log, bool stop) {
        from = value();
        to = target;
        at = 0;
        length = frames;
        logarithmic = log && (from > 0 || to > 0);
        stops = stop;
    }
    /// One frame passes; true at the end of a slide that stops.
    bool step() {
        if (length == 0 || ++at < length) return false;
        length = 0;
        return stops;
    }
};

struct Model {
    std::uint64_t position = 0, loopStart = 0, end = kOpen, sync = kOpen, seen = 0;
    bool playing = false, loop = false;
    int fired = 0;
    ModelSlide volume, dsp;

    std::uint64_t last() const { return std::min(end, kLength); }
    std::uint64_t returnsTo() const { return loopStart < last() ? loopStart : 0; }
    /// The next frame, left side.
    double frame() {
        double sample = 0;
        if (playing && position >= last()) {
            fired += sync == last();
            position = loop ? returnsTo() : last();
            playing = loop;
            seen = position;
        }
        if (playing) {
            fired += sync == position;
            sample = static_cast<double>(ramp(position++, 0)) * dsp.value() * volume.value();
            seen = position < last() ? position : loop ? returnsTo() : last();
        }
        dsp.step();
        if (volume.step()) playing = false;
        return sample;
    }
};

void count(HSYNC, DWORD, DWORD, void* user) { ++*static_cast<int*>(user); }

class Commands : public Show, public testing::WithParamInterface<std::uint32_t> {};

TEST_P(Commands, EveryFrameIsWhereTheModelHasIt) {
    for (unsigned seed = 1; seed <= 4; ++seed) {
        SCOPED_TRACE(seed);
        begin({.period = GetParam()});
        decoders->sounds["model"] = {.length = kLength, .sample = ramp};
        const Topology studio;
        const DWORD source = file("model");
        const DWORD jingle = studio.jingle(source);
        int fired = 0;
        std::mt19937 random(seed);
        const auto somewhere = [&] { return random() % (kLength + 1); };
        Model model;
        model.sync = 1 + random() % 3000;
        BASS_ChannelSetSync(jingle, BASS_SYNC_POS, model.sync * 4, count, &fired);
        pull(GetParam() * 100);
        take();
        for (int turn = 0; turn < 400; ++turn) {
            const std::uint64_t to = random() % 3 == 0 ? random() % 3000 : somewhere();
            const auto ms = static_cast<DWORD>(random() % 3 == 0 ? 0 : random() % 60);
            const auto frames = static_cast<std::uint64_t>(std::llround(ms * kMs));
            const double gain = static_cast<double>(static_cast<float>(random() % 11) / 10);
            const DWORD log = random() % 2 == 0 ? BASS_SLIDE_LOG : 0;
            switch (random() % 14) {
                case 0:
                case 1:
                    ASSERT_TRUE(BASS_ChannelSetPosition(jingle, to * 4, BASS_POS_BYTE));
                    model.position = model.seen = to;
                    [[fallthrough]];
                case 2:
                    ASSERT_TRUE(BASS_ChannelPlay(jingle, false));
                    model.playing = true;
                    break;
                case 3:
                    ASSERT_TRUE(BASS_ChannelStop(jingle));
                    model.playing = false;
                    break;
                case 4:
                    model.loop = random() % 4 != 0;
                    BASS_ChannelFlags(source, model.loop ? BASS_SAMPLE_LOOP : 0, BASS_SAMPLE_LOOP);
                    break;
                case 5:
                    ASSERT_TRUE(BASS_ChannelSetPosition(source, to * 4, BASS_POS_LOOP));
                    model.loopStart = to;
                    break;
                case 6: {
                    const std::uint64_t end = random() % 3 == 0 ? kLength : 1 + random() % 4000;
                    ASSERT_TRUE(BASS_ChannelSetPosition(source, end * 4, BASS_POS_END));
                    model.end = end == kLength ? kOpen : end;
                    break;
                }
                case 7:
                    BASS_ChannelSlideAttribute(jingle, BASS_ATTRIB_VOL | log, -1, ms);
                    model.volume.begin(0, frames, log != 0, true);
                    if (ms == 0) model.playing = false;
                    break;
                case 8:
                case 9:
                    BASS_ChannelSlideAttribute(jingle, BASS_ATTRIB_VOL | log, static_cast<float>(gain), ms);
                    model.volume.begin(gain, frames, log != 0, false);
                    break;
                case 10:
                    BASS_ChannelSlideAttribute(jingle, BASS_ATTRIB_VOLDSP | log, static_cast<float>(gain),
                                               ms);
                    model.dsp.begin(gain, frames, log != 0, false);
                    break;
                default:
                    break;
            }
            ASSERT_EQ(BASS_ChannelIsActive(jingle), DWORD{model.playing}) << "turn " << turn;
            ASSERT_EQ(BASS_ChannelGetPosition(jingle, BASS_POS_BYTE), model.seen * 4) << "turn " << turn;
            const std::uint64_t pulled = GetParam() * (1 + random() % std::max(2U, 4000 / GetParam()));
            const std::vector<float> sound = pullAndTake(pulled);
            ASSERT_EQ(sound.size(), pulled * 2);
            for (std::uint64_t f = 0; f < pulled; ++f)
                ASSERT_NEAR(static_cast<double>(sound[f * 2]), model.frame(), 1e-9 + 2e-7 * 0.004)
                    << "turn " << turn << ", frame " << f;
            ASSERT_EQ(BASS_ChannelIsActive(jingle), DWORD{model.playing}) << "turn " << turn;
            ASSERT_EQ(BASS_ChannelGetPosition(jingle, BASS_POS_BYTE), model.seen * 4) << "turn " << turn;
            float volume = -1, dsp = -1;
            BASS_ChannelGetAttribute(jingle, BASS_ATTRIB_VOL, &volume);
            BASS_ChannelGetAttribute(jingle, BASS_ATTRIB_VOLDSP, &dsp);
            ASSERT_NEAR(static_cast<double>(volume), model.volume.value(), 1e-6) << "turn " << turn;
            ASSERT_NEAR(static_cast<double>(dsp), model.dsp.value(), 1e-6) << "turn " << turn;
            ASSERT_EQ(fired, model.fired) << "turn " << turn;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Periods, Commands, testing::Values(32U, 441U, 512U, 997U));

}  // namespace
}  // namespace zv::engine::test
