// Handles, errors, arguments without sense, states, devices, levels, recordings, web streams.
#include <future>
#include <limits>

#include "tests/engine/show.h"

namespace zv::engine::test {
namespace {

using Contract = Show;

TEST_F(Contract, ATempoChannelFreesItsSourceWhenItIsTold) {
    for (const DWORD flag : {DWORD{0}, DWORD{BASS_FX_FREESOURCE}}) {
        const DWORD source = file("ramp");
        EXPECT_TRUE(BASS_StreamFree(BASS_FX_TempoCreate(source, BASS_STREAM_DECODE | flag)));
        EXPECT_TRUE(flag != 0 || !Engine::instance().find(source)->audio.user);
        EXPECT_EQ(BASS_StreamFree(source), flag == 0);
    }
    // Nothing is left of what was taken away.
    const Topology studio;
    const DWORD source = file("ramp"), jingle = studio.jingle(source);
    const HFX effect = BASS_ChannelSetFX(jingle, BASS_FX_DX8_REVERB, 0);
    Engine& e = Engine::instance();
    const std::weak_ptr sound = e.find(source)->sound;
    const std::weak_ptr play = e.find(jingle);
    const std::weak_ptr reverb = e.effects[effect];
    const std::weak_ptr meter = e.find(jingle)->control.meter;
    pull(441);
    BASS_ChannelRemoveFX(jingle, effect);
    BASS_Mixer_ChannelRemove(jingle);
    BASS_Mixer_StreamAddChannel(studio.mainMixer, jingle, 0);
    pull(441);
    BASS_ErrorGetCode(), BASS_ChannelStop(jingle);
    EXPECT_TRUE(reverb.expired() && meter.expired());
    BASS_StreamFree(jingle);
    pull(441);
    BASS_ChannelStop(jingle);
    EXPECT_TRUE(play.expired() && sound.expired());
}

TEST_F(Contract, ConversionsAreExact) {
    decoders->sounds["mono"] = {.format = {8000, 1, 8}, .length = 8000, .sample = ramp};
    const DWORD mono = file("mono");
    const DWORD floats = file("ramp", BASS_STREAM_DECODE | BASS_SAMPLE_FLOAT);
    for (std::uint64_t frame = 0; frame < 441000; frame += 997)
        ASSERT_EQ(BASS_ChannelSeconds2Bytes(floats, BASS_ChannelBytes2Seconds(floats, frame * 8)), frame * 8);
    std::vector<std::int16_t> data(100);
    EXPECT_EQ(BASS_ChannelGetData(mono, data.data(), 200), 200U);
    BASS_ChannelSetFX(mono, BASS_FX_BFX_VOLUME,
                      0);  // from here on through the graph, where the file was left
    EXPECT_EQ(BASS_ChannelGetData(mono, data.data(), 200), 200U);
    EXPECT_EQ(BASS_ChannelGetPosition(mono, BASS_POS_BYTE), 400U);
    EXPECT_TRUE(BASS_ChannelSetPosition(floats, 440990 * 8, BASS_POS_BYTE));
    std::vector<float> rest(100);
    EXPECT_EQ(BASS_ChannelGetData(floats, rest.data(), 400), 80U);
    EXPECT_EQ(frameOf(rest[0]), 440990);
    EXPECT_EQ(BASS_ChannelGetData(floats, rest.data(), 400), ~DWORD{0});
    EXPECT_EQ(BASS_ErrorGetCode(), BASS_ERROR_ENDED);
    EXPECT_EQ(BASS_ChannelIsActive(floats), BASS_ACTIVE_STOPPED);
}

TEST_F(Contract, GainsOnGainsStayNumbers) {
    const Topology studio;
    const DWORD jingle = studio.jingle(file("sine"));
    const BASS_BFX_VOLUME most{BASS_BFX_CHANALL, 1000};
    for (int n = 0; n < 16; ++n)
        EXPECT_TRUE(BASS_FXSetParameters(BASS_ChannelSetFX(jingle, BASS_FX_BFX_VOLUME, 0), &most));
    BASS_ChannelSetAttribute(jingle, BASS_ATTRIB_VOL, 1000);
    BASS_ChannelPlay(jingle, false);
    for (const float sample : pullAndTake(4410)) ASSERT_TRUE(std::isfinite(sample));
    for (const DWORD flags : {BASS_LEVEL_STEREO, BASS_LEVEL_RMS, BASS_LEVEL_RMS | BASS_LEVEL_VOLPAN}) {
        float levels[2]{};
        ASSERT_TRUE(BASS_Mixer_ChannelGetLevelEx(jingle, levels, 0.02F, flags));
        EXPECT_TRUE(std::isfinite(levels[0]) && levels[0] > 1000) << flags;
    }
}

TEST_F(Contract, TheGainOfAllOutputsIsThereAtTheStartAndGlides) {
    for (const float gain : {0.5F, 1.0F}) {
        begin({});
        openMain();
        if (gain < 1) BASS_SetConfig(BASS_CONFIG_GVOL_STREAM, 5000);
        if (gain < 1) pull(441);
        const DWORD play = BASS_FX_TempoCreate(file("one"), BASS_FX_FREESOURCE | BASS_STREAM_AUTOFREE);
        BASS_ChannelPlay(play, false);
        take();
        EXPECT_EQ(pullAndTake(441)[0], gain);
        BASS_SetConfig(BASS_CONFIG_GVOL_STREAM, 2500);
        const std::vector<float> sound = pullAndTake(882);
        EXPECT_NEAR(sound[440], (gain + 0.25F) / 2, 0.01);
        EXPECT_EQ(sound.back(), 0.25F);
        BASS_ChannelPause(play);
        EXPECT_EQ(pullAndTake(441).back(), 0);
        EXPECT_TRUE(BASS_ChannelStop(play));
        EXPECT_FALSE(BASS_ChannelStop(play)) << "freed by itself";
    }
}

TEST_F(Contract, AMixerWithoutSoundStallsUnlessItIsToldNotTo) {
    const Topology studio;
    const DWORD jingle = studio.jingle(file("one"));
    const DWORD plain = BASS_Mixer_StreamCreate(44100, 2, BASS_STREAM_DECODE);
    const DWORD nonstop = BASS_Mixer_StreamCreate(44100, 2, BASS_STREAM_DECODE | BASS_MIXER_NONSTOP);
    BASS_Mixer_ChannelRemove(jingle);
    for (const DWORD mixer : {plain, nonstop}) BASS_Mixer_StreamAddChannel(studio.mainMixer, mixer, 0);
    BASS_Mixer_StreamAddChannel(plain, jingle, 0);
    for (const bool sounds : {false, true, false}) {
        sounds ? BASS_ChannelPlay(jingle, false) : BASS_ChannelStop(jingle);
        const QWORD before = BASS_ChannelGetPosition(plain, BASS_POS_BYTE);
        take();
        EXPECT_EQ(pullAndTake(4410).back(), sounds ? 1.0F : 0.0F);
        EXPECT_EQ(BASS_ChannelIsActive(plain), sounds ? BASS_ACTIVE_PLAYING : BASS_ACTIVE_STALLED);
        EXPECT_EQ(BASS_ChannelGetPosition(plain, BASS_POS_BYTE) - before, sounds ? 4410U * 4 : 0U);
        EXPECT_EQ(BASS_ChannelIsActive(nonstop), BASS_ACTIVE_PLAYING);
    }
    EXPECT_EQ(BASS_ChannelGetPosition(nonstop, BASS_POS_BYTE), 3 * 4410U * 4);
}

/// Whatever way a sound takes: its level is that of what went out last. It grows in the middle; the sides differ.
TEST_F(Contract, LevelsAreThoseOfWhatWentOut) {
    for (const char* way : {"pages", "tiny loop", "effect", "another rate", "mono", "six"}) {
        begin({.period = 64});
        const std::uint32_t rate = *way == 'a' ? 22050 : 44100, channels = *way == 'm'   ? 1
                                                                           : *way == 's' ? 6
                                                                                         : 2;
        decoders->sounds["waves"] = {
            .format = {rate, channels, 16}, .length = 20 * rate, .sample = [=](std::uint64_t f, auto side) {
                return side > 1 ? 0
                                : sine(f, 1000, rate, (f < rate / 2 && *way != 't' ? 0.2 : 0.8) / (side + 1));
            }};
        const Topology studio;
        const DWORD source = file("waves"), jingle = studio.jingle(source);
        if (*way == 't') {
            BASS_ChannelFlags(source, BASS_SAMPLE_LOOP, BASS_SAMPLE_LOOP);
            BASS_ChannelSetPosition(source, 441 * 4, BASS_POS_END);
        }
        const BASS_BFX_VOLUME half{BASS_BFX_CHANALL, 0.5F};
        if (*way == 'e') BASS_FXSetParameters(BASS_ChannelSetFX(jingle, BASS_FX_BFX_VOLUME, 20), &half);
        BASS_ChannelSetAttribute(jingle, BASS_ATTRIB_VOL, 0.75F);
        BASS_ChannelPlay(jingle, false);
        pull(22050 + 4410);
        const double left = *way == 'e' ? 0.4 : 0.8, right = *way == 'm' ? left : left / 2;
        const auto are = [&](float seconds, DWORD flags, double first, double second) {
            float levels[2]{-1, -1};
            EXPECT_TRUE(BASS_Mixer_ChannelGetLevelEx(jingle, levels, seconds, flags));
            EXPECT_NEAR(levels[0], first, 0.02 * first) << way << ' ' << seconds << ' ' << flags;
            EXPECT_NEAR(levels[1], second, 0.02 * std::abs(second)) << way << ' ' << seconds << ' ' << flags;
        };
        constexpr DWORD both = BASS_LEVEL_STEREO, rms = BASS_LEVEL_RMS;
        const double root = std::numbers::sqrt2;
        for (const float seconds : {0.005F, 0.09F, 0.11F, 0.3F}) {
            // Silence before its beginning counts, of the loop only what is remembered.
            const double part =
                *way == 't' || seconds < 0.1F ? 1 : std::sqrt((0.1 + (seconds - 0.1) / 16) / seconds);
            are(seconds, both, left, right);
            are(seconds, both | rms, left / root * part, right / root * part);
        }
        are(0.04F, both | BASS_LEVEL_VOLPAN, 0.75 * left, 0.75 * right);
        are(0.04F, 0, left, -1);
        are(0.04F, rms, std::hypot(left, right) / 2, -1);
    }
}

/// A period and a half and 6 ms behind, by a clock that is too fast, which is answered firmly.
TEST_F(Contract, ARecordingIsHeardALittleLater) {
    const Topology studio;
    devices->setClockError(kMicName, 300);
    EXPECT_TRUE(BASS_RecordInit(-1));
    const DWORD mic = BASS_RecordStart(48000, 2, 0, nullptr, nullptr);
    BASS_ChannelSlideAttribute(studio.micSplit[0], BASS_ATTRIB_VOLDSP, 0, 10);
    EXPECT_TRUE(BASS_Mixer_StreamAddChannel(studio.micMixer, mic, BASS_MIXER_CHAN_BUFFER));
    devices->feedInput(kMicName, std::vector<float>(44100 * 20, 0.5F), 44100);
    pull(44100 * 4);
    const auto& input = dynamic_cast<RecordInput&>(*Engine::instance().find(mic)->live);
    EXPECT_NEAR(input.bridge.target(), 1.5 * 441 / 48 + 6, 1e-6);
    EXPECT_NEAR(input.bridge.correction(), 187.2, 0.1);
    EXPECT_EQ(take().back(), 0);
    EXPECT_NEAR(take(kAuxName).back(), 0.5, 1e-3);
    EXPECT_TRUE(BASS_RecordFree());
    pull(882);
    EXPECT_EQ(take(kAuxName).back(), 0);
}

TEST_F(Contract, AFileThatPlaysNowhereIsReadWithoutTheGraphAndWithoutTheLock) {
    const Topology studio;
    std::atomic<bool> hangs{false}, inside{false};
    decoders->sounds["slow disk"] = {.length = 1'000'000, .sample = [&](std::uint64_t f, std::uint32_t c) {
                                         inside = hangs.load();
                                         while (hangs) std::this_thread::yield();
                                         return ramp(f, c);
                                     }};
    const DWORD lone = file("slow disk", BASS_STREAM_DECODE | BASS_SAMPLE_FLOAT),
                jingle = studio.jingle(file("one"));
    BASS_ChannelSetPosition(lone, 500'000 * 8, BASS_POS_BYTE);
    std::vector<float> data(2 * 10'000);
    Engine::instance().graph.acquire();  // a callback is under way and does not end
    hangs = true;
    auto reading = std::async(std::launch::async, [&] {
        return BASS_ChannelGetData(lone, data.data(), static_cast<DWORD>(data.size() * sizeof(float)));
    });
    const auto soon = [] { return std::chrono::steady_clock::now() + std::chrono::seconds(2); };
    for (const auto until = soon(); !inside && std::chrono::steady_clock::now() < until;)
        std::this_thread::yield();
    auto stopping = std::async(std::launch::async, [&] { return BASS_ChannelStop(jingle); });
    EXPECT_EQ(stopping.wait_until(soon()), std::future_status::ready) << "STOP waits for the disk";
    hangs = false;
    EXPECT_EQ(reading.wait_until(soon()), std::future_status::ready) << "the read waits for the graph";
    Engine::instance().graph.release();
    EXPECT_EQ(reading.get(), data.size() * sizeof(float));
    for (std::uint64_t f = 0; f < 10'000; ++f) ASSERT_EQ(data[f * 2 + 1], ramp(500'000 + f, 1)) << f;
    EXPECT_EQ(BASS_ChannelGetPosition(lone, BASS_POS_BYTE), 510'000U * 8);
    EXPECT_TRUE(BASS_Mixer_StreamAddChannel(studio.mainMixer, lone, 0));
    take();
    EXPECT_EQ(pullAndTake(441)[0], ramp(510'000, 0));
    BASS_ChannelSetPosition(lone, 900'000 * 8, BASS_POS_BYTE);
    EXPECT_EQ(pullAndTake(441)[0], ramp(900'000, 0)) << "and where it is moved to";
    BASS_ChannelStop(lone);
    BASS_SetDevice(kMain);
    const DWORD other = file("ramp");
    BASS_ChannelGetData(other, data.data(), 1000 * 4);
    BASS_ChannelPlay(BASS_FX_TempoCreate(other, BASS_FX_FREESOURCE), false);
    EXPECT_EQ(pullAndTake(441)[0], ramp(1000, 0)) << "and in a tempo channel";
    const DWORD far = file("slow disk", BASS_STREAM_DECODE | BASS_SAMPLE_FLOAT);
    BASS_ChannelSetFX(far, BASS_FX_BFX_VOLUME, 0);
    BASS_ChannelSetPosition(far, 700'000 * 8, BASS_POS_BYTE);
    EXPECT_EQ(BASS_ChannelGetData(far, data.data(), 8 * 9000), 8U * 9000) << "through the graph";
    EXPECT_EQ(data[2 * 8999], ramp(708'999, 0));
}

#if !defined(NDEBUG) && !defined(_WIN32) && !defined(__SANITIZE_THREAD__)
TEST_F(Contract, EveryEntryKnowsItsThread) {
    const auto dies = [](const char* what, ThreadKind kind, auto call) {
        const auto onIt = [&] {
            const ThreadSection section(kind);
            call();
        };
        EXPECT_DEATH(onIt(), "ThreadKind") << what;
    };
    Engine& e = Engine::instance();
    RenderCount renders{0};
    PagedSound sound(std::make_unique<MadeDecoder>(Made{.sample = ramp}), 44100, renders);
    UrlInput url(std::make_unique<MadeDecoder>(Made{.sample = ramp}), true);
    Bridge bridge({});
    Trash trash;
    std::vector<float> some(8);
    struct Something : Garbage {};
    // What may take long is asked by the program only.
    dies("init", ThreadKind::Sync, [] { BASS_Init(0, 44100, 0, nullptr, nullptr); });
    dies("file", ThreadKind::Worker, [] { file("ramp"); });
    dies("install", ThreadKind::Worker, [] { engineControl()->install({}); });
    // What waits or frees is not for a callback.
    dies("any operation", ThreadKind::Audio, [] { BASS_ChannelIsActive(1); });
    dies("graph", ThreadKind::Audio, [&] { e.graph.acquire(); });
    dies("block", ThreadKind::Audio, [&] { e.workers.serveBlock(); });
    dies("trash", ThreadKind::Audio, [&] { trash.empty(); });
    dies("garbage", ThreadKind::Audio, [] { Something(); });
    dies("pages", ThreadKind::Audio, [&] { sound.service(); });
    dies("page", ThreadKind::Audio, [&] { sound.ensure(0, 1); });
    dies("frames", ThreadKind::Audio, [&] { sound.readAt(0, some); });
    dies("tidied", ThreadKind::Audio, [&] { sound.tidy(); });
    dies("network", ThreadKind::Audio, [&] { url.fillNow(); });
    const auto tempo = e.find(BASS_FX_TempoCreate(file("ramp"), BASS_STREAM_DECODE))->tempo;
    dies("stretched", ThreadKind::Audio, [&] { tempo->work(); });
    dies("primed", ThreadKind::Audio, [&] { tempo->prime(0); });
    // What belongs to the callback is for nobody else.
    dies("rendered", ThreadKind::Caller, [&] { e.graph.renderBlock(1); });
    dies("heard", ThreadKind::Caller, [&] { e.graph.applyCommands(); });
    dies("thrown away", ThreadKind::Caller, [&] { trash.add(nullptr); });
    dies("bridge", ThreadKind::Worker, [&] { bridge.read(some); });
    dies("its other side", ThreadKind::Worker, [&] { bridge.write(some); });
    dies("stream", ThreadKind::Worker, [&] { url.read(some); });
}
#endif

}  // namespace
}  // namespace zv::engine::test
