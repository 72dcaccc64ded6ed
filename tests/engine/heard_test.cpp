// What is heard at the edges: fades of other rates, tails, effects that come and go, streams that run dry, clocks
// that step.

#include "tests/engine/show.h"

namespace zv::engine::test {
namespace {

using Heard = Show;

float loudest(const std::vector<float>& sound, std::size_t from = 0, std::size_t to = SIZE_MAX) {
    float most = 0;
    for (std::size_t i = 2 * from; i < std::min(sound.size(), to == SIZE_MAX ? to : 2 * to); ++i)
        most = std::max(most, std::abs(sound[i]));
    return most;
}

/// A conversion has read a few milliseconds ahead of the gain in front of it.
TEST_F(Heard, AFadeInFrontOfAConversionTakesItsTime) {
    for (const SoundFormat& format : {SoundFormat{22050, 1, 16}, SoundFormat{48000, 2, 16}})
        for (const bool logarithmic : {false, true}) {
            begin({.period = 147});
            decoders->sounds["ones"] = {
                .format = format, .length = format.rate / 2, .sample = [](auto, auto) { return 0.5F; }};
            const Topology studio;
            const DWORD jingle = studio.jingle(file("ones"));
            int ends = 0;
            BASS_ChannelSetSync(
                jingle, BASS_SYNC_POS, QWORD{format.rate} / 2 * 2 * format.channels,
                [](HSYNC, DWORD, DWORD, void* user) { ++*static_cast<int*>(user); }, &ends);
            BASS_ChannelPlay(jingle, false);
            pull(4410);
            take();
            const DWORD attribute = BASS_ATTRIB_VOLDSP | (logarithmic ? BASS_SLIDE_LOG : 0);
            BASS_ChannelSlideAttribute(jingle, attribute, 0.125F, 200);
            const std::vector<float> sound = pullAndTake(13230);
            for (const std::size_t at : {1000U, 4410U, 8000U, 8700U, 8950U, 12000U}) {
                const double part = std::min(1.0, static_cast<double>(at) / 8820);
                const double gain = logarithmic ? std::pow(0.125, part) : 1 - 0.875 * part;
                EXPECT_NEAR(sound[2 * at], 0.5 * gain, 0.02) << format.rate << " Hz, frame " << at;
            }
            pull(8820);
            EXPECT_EQ(ends, 1);
        }
}

TEST_F(Heard, AStopOvertakesItsOwnPlay) {
    const Topology studio;
    const DWORD jingle = studio.jingle(file("one")), other = studio.jingle(file("one"));
    pull(441);
    // So many commands wait that a play must wait outside the ring. The stop goes ahead of it, and still ends it.
    for (std::size_t i = 0; i < CommandQueue::kCapacity; ++i)
        BASS_ChannelSlideAttribute(other, BASS_ATTRIB_VOLDSP, 0.5F, 10);
    BASS_ChannelPlay(jingle, false);
    BASS_ChannelSlideAttribute(jingle, BASS_ATTRIB_VOL, -1, 0);
    for (int i = 0; i < 5; ++i) {
        pull(441);
        BASS_ChannelSetAttribute(jingle, BASS_ATTRIB_VOL, 1);
    }
    take();
    EXPECT_EQ(loudest(pullAndTake(4410)), 0);
    // The same where it would begin because it comes into a mixer.
    BASS_Mixer_ChannelRemove(jingle);
    for (std::size_t i = 0; i < CommandQueue::kCapacity; ++i)
        BASS_ChannelSlideAttribute(other, BASS_ATTRIB_VOLDSP, 0.5F, 10);
    BASS_ChannelSlideAttribute(other, BASS_ATTRIB_VOLDSP, 0.25F, 10);
    BASS_Mixer_StreamAddChannel(studio.mainMixer, jingle, 0);
    BASS_ChannelPlay(jingle, false);
    BASS_ChannelStop(jingle);
    for (int i = 0; i < 5; ++i) {
        pull(441);
        BASS_ChannelIsActive(jingle);
    }
    take();
    EXPECT_EQ(loudest(pullAndTake(4410)), 0);
    float gain = 0;
    BASS_ChannelGetAttribute(other, BASS_ATTRIB_VOLDSP, &gain);
    EXPECT_EQ(gain, 0.25F) << "what waited outside was obeyed";
    EXPECT_GT(engineControl()->statistics(kMain).commandOverflows, 0U);
    // So does the gain of an output's branch.
    BASS_ChannelPlay(jingle, false);
    pull(441);
    for (std::size_t i = 0; i < CommandQueue::kCapacity; ++i)
        BASS_ChannelSlideAttribute(other, BASS_ATTRIB_VOLDSP, 0.5F, 10);
    BASS_ChannelSetAttribute(studio.mainSplit[0], BASS_ATTRIB_VOLDSP, 0);
    take();
    EXPECT_EQ(loudest(pullAndTake(441)), 0);
}

/// A stream that gives as much as it is allowed to.
struct Faucet final : Decoder, DecoderSource {
    std::shared_ptr<std::size_t> frames = std::make_shared<std::size_t>(0);
    Faucet() = default;
    explicit Faucet(std::shared_ptr<std::size_t> from) : frames(std::move(from)) {}
    SoundFormat format() const override { return {44100, 2, 16}; }
    std::optional<std::uint64_t> length() const override { return std::nullopt; }
    std::size_t read(std::span<float> out) override {
        const std::size_t n = std::min(out.size() / 2, *frames);
        *frames -= n;
        std::fill_n(out.begin(), n * 2, 0.5F);
        return n;
    }
    bool seek(std::uint64_t) override { return false; }
    bool ended() const override { return false; }
    std::unique_ptr<Decoder> openFile(const std::string&, int&) override { return nullptr; }
    std::unique_ptr<Decoder> openModule(const std::string&, int&) override { return nullptr; }
    std::unique_ptr<Decoder> openUrl(const std::string&, std::uint32_t, int&) override {
        return std::make_unique<Faucet>(frames);
    }
};

TEST_F(Heard, AStreamThatRanDryFillsUpFirstAndFadesOutMeanwhile) {
    const auto web = std::make_shared<Faucet>();
    engineControl()->install({web, devices});
    const Topology studio;
    const DWORD live = BASS_StreamCreateURL("x", 0, BASS_STREAM_DECODE, nullptr, nullptr);
    BASS_Mixer_StreamAddChannel(studio.mainMixer, live, 0);
    const auto hears = [&](std::size_t frames, double pulled) {
        *web->frames += frames;
        take();
        const std::vector<float> sound = pullAndTake(static_cast<std::uint64_t>(pulled * 44100));
        return static_cast<double>(std::ranges::count(sound, 0.5F)) / 2 / 44100;
    };
    EXPECT_EQ(hears(13230, 0.5), 0) << "0.3 s are not enough to begin with";
    EXPECT_NEAR(hears(13230, 2), 0.6, 0.01) << "0.6 s are";
    EXPECT_EQ(BASS_ChannelIsActive(live), BASS_ACTIVE_STALLED);
    float level = 1;
    EXPECT_TRUE(BASS_Mixer_ChannelGetLevelEx(live, &level, 0.02F, 0));
    EXPECT_EQ(level, 0);
    EXPECT_EQ(hears(13230, 0.5), 0) << "nor to go on with";
    EXPECT_NEAR(hears(88200, 1), 1, 0.01);
    EXPECT_EQ(BASS_ChannelIsActive(live), BASS_ACTIVE_PLAYING);
    // A fade to the stop runs on while it is dry, and ends in its time.
    pull(88200);
    EXPECT_EQ(hears(101'000, 0.5), 0) << "2.3 s are not enough the second time";
    EXPECT_EQ(BASS_ChannelIsActive(live), BASS_ACTIVE_STALLED);
    BASS_ChannelSlideAttribute(live, BASS_ATTRIB_VOL, -1, 500);
    pull(22050 - 441);
    EXPECT_EQ(BASS_ChannelIsActive(live), BASS_ACTIVE_STALLED);
    pull(882);
    EXPECT_EQ(BASS_ChannelIsActive(live), BASS_ACTIVE_STOPPED);
}

TEST_F(Heard, AReaderOfASplitThatLagsGoesOnWithThePresent) {
    const Topology studio;
    const DWORD source = file("ramp");
    const DWORD first = BASS_Split_StreamCreate(source, BASS_STREAM_DECODE, nullptr),
                second = BASS_Split_StreamCreate(source, BASS_STREAM_DECODE, nullptr);
    BASS_Mixer_StreamAddChannel(studio.outMixer[0], first, 0);
    BASS_Mixer_StreamAddChannel(studio.outMixer[1], second, 0);
    pull(4410);
    // It stood still for a second, out of its mixer for another: each time it goes on with what the other gives.
    for (const bool out : {false, true}) {
        out ? BASS_Mixer_ChannelRemove(second) : BASS_ChannelStop(second);
        pull(44100);
        if (out) BASS_Mixer_StreamAddChannel(studio.outMixer[1], second, 0);
        if (!out) BASS_ChannelPlay(second, false);
        take(), take(kAuxName);
        pull(4410);
        EXPECT_EQ(take(), take(kAuxName)) << out;
    }
    // A mixer that is freed under its splits leaves silence, and nothing that hangs.
    BASS_ChannelPlay(studio.jingle(file("one")), false);
    pull(441);
    BASS_StreamFree(studio.mainMixer);
    BASS_StreamFree(source);
    pull(882);
    take();
    EXPECT_EQ(loudest(pullAndTake(4410)), 0);
    EXPECT_EQ(BASS_ChannelIsActive(first) + BASS_ChannelIsActive(studio.mainSplit[0]), BASS_ACTIVE_STOPPED);
    EXPECT_TRUE(BASS_StreamFree(first) && BASS_StreamFree(second) && BASS_StreamFree(studio.mainSplit[0]));
    pull(441);
}

}  // namespace
}  // namespace zv::engine::test
