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
        const DWORD play = BASS_FX_TempoCreate(file("one"), BASS_FX_FREESOURCE);
        BASS_ChannelPlay(play, false);
        take();
        EXPECT_EQ(pullAndTake(441)[0], gain);
        BASS_SetConfig(BASS_CONFIG_GVOL_STREAM, 2500);
        const std::vector<float> sound = pullAndTake(882);
        EXPECT_NEAR(sound[440], (gain + 0.25F) / 2, 0.01);
        EXPECT_EQ(sound.back(), 0.25F);
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

/// Whatever way a sound takes: its level is that of what went out last, to the grain of the meter.
TEST_F(Contract, LevelsAreThoseOfWhatWentOut) {
    constexpr std::size_t grain = 128;
    for (const char* way : {"pages", "loop", "tiny loop", "effect", "another rate", "mono"}) {
        begin({.period = 64});
        const std::uint32_t rate = *way == 'a' ? 48000 : 44100, channels = *way == 'm' ? 1 : 2;
        decoders->sounds["waves"] = {
            .format = {rate, channels, 16}, .length = 441000, .sample = [](std::uint64_t f, std::uint32_t c) {
                return sine(f, c == 0 ? 400 : 700, 44100, 0.1 + 0.8 * static_cast<double>(f / 900 % 10) / 10);
            }};
        // Of another rate: the peaks of the file stand for those of the conversion, which overshoots at a jump.
        const float near = *way == 'a' ? 0.15F : 1e-6F;
        const Topology studio;
        const DWORD source = file("waves");
        const DWORD jingle = studio.jingle(source);
        if (std::string(way).ends_with("loop")) {
            BASS_ChannelFlags(source, BASS_SAMPLE_LOOP, BASS_SAMPLE_LOOP);
            BASS_ChannelSetPosition(source, (*way == 't' ? 40 : 3000) * 4, BASS_POS_END);
        }
        const BASS_BFX_VOLUME half{BASS_BFX_CHANALL, 0.5F};
        if (*way == 'e') BASS_FXSetParameters(BASS_ChannelSetFX(jingle, BASS_FX_BFX_VOLUME, 20), &half);
        BASS_ChannelSetAttribute(jingle, BASS_ATTRIB_VOL, 0.75F);
        pull(640);
        take();
        BASS_ChannelPlay(jingle, false);
        std::vector<float> sound(std::size_t{46000} * 2);
        const auto level = [&](float seconds, DWORD flags, std::size_t side) {
            float levels[2]{};
            EXPECT_TRUE(BASS_Mixer_ChannelGetLevelEx(jingle, levels, seconds, flags));
            return levels[side];
        };
        constexpr DWORD heard = BASS_LEVEL_STEREO | BASS_LEVEL_VOLPAN;
        std::mt19937 random(3);
        for (int turn = 0; turn < 50; ++turn) {
            if (turn % 10 == 9 && *way != 't')
                BASS_ChannelSetPosition(jingle, random() % 200000 * channels * 2, BASS_POS_BYTE);
            const std::vector<float> more = pullAndTake(64 * (1 + random() % 60));
            sound.insert(sound.end(), more.begin(), more.end());
            for (const float seconds : {0.005F, 0.04F, 1.0F}) {
                // So many passes as a second has of it are not remembered.
                if (*way == 't' && (seconds == 1 || turn < 5)) continue;
                const auto window = static_cast<std::size_t>(std::ceil(seconds * 44100));
                for (const std::size_t side : {0U, 1U}) {
                    float peak = 0, wider = 0;
                    double power = 0;
                    for (std::size_t i = 0; i < window + grain; ++i) {
                        const float sample = std::abs(sound[sound.size() - 2 * (i + 1) + side]);
                        wider = std::max(wider, sample);
                        if (i >= window) continue;
                        power += sample * sample;
                        peak = std::max(peak, sample);
                    }
                    const std::string where = way + (", turn " + std::to_string(turn));
                    ASSERT_GE(level(seconds, heard, side), peak - near) << where << ", " << seconds << " s";
                    ASSERT_LE(level(seconds, heard, side), wider + near) << where << ", " << seconds << " s";
                    ASSERT_NEAR(level(seconds, heard | BASS_LEVEL_RMS, side),
                                std::sqrt(power / static_cast<double>(window)),
                                0.01 + grain * 0.9 / static_cast<double>(window))
                        << where << ", " << seconds << " s";
                }
            }
        }
        // Before VOL, and of both sides in one.
        for (const DWORD kind : {DWORD{0}, BASS_LEVEL_RMS}) {
            const float left = level(0.04F, kind | heard, 0), right = level(0.04F, kind | heard, 1);
            EXPECT_NEAR(level(0.04F, kind | BASS_LEVEL_STEREO, 1), right / 0.75F, 1e-6);
            EXPECT_NEAR(level(0.04F, kind | BASS_LEVEL_VOLPAN, 0),
                        kind == 0 ? std::max(left, right) : std::hypot(left, right) / std::numbers::sqrt2,
                        1e-6);
        }
    }
}

TEST_F(Contract, ARecordingIsPulledLikeAFile) {
    const Topology studio;
    std::vector<float> voice(88200 * 2);
    for (std::size_t f = 0; f < 88200; ++f) voice[f * 2] = voice[f * 2 + 1] = ramp(f, 0);
    EXPECT_TRUE(BASS_RecordInit(-1));
    const DWORD mic = BASS_FX_TempoCreate(BASS_RecordStart(44100, 2, 0, nullptr, nullptr),
                                          BASS_STREAM_DECODE | BASS_FX_FREESOURCE);
    BASS_ChannelSlideAttribute(studio.micSplit[0], BASS_ATTRIB_VOLDSP, 0, 10);
    EXPECT_TRUE(BASS_Mixer_StreamAddChannel(studio.micMixer, mic, BASS_MIXER_CHAN_BUFFER));
    pull(4410);
    take();
    take(kAuxName);
    devices->feedInput(kMicName, voice, 44100);
    pull(44100);
    const std::vector<float> main = take(), aux = take(kAuxName);
    for (const float sample : main) ASSERT_EQ(sample, 0);
    // What was said is there to the bit, a period later.
    for (std::size_t f = 1000; f < 44100; ++f) ASSERT_EQ(frameOf(aux[f * 2]), static_cast<double>(f) - 441);
    // Closed and opened again while it sounds, by a clock that is too fast.
    devices->setClockError(kMicName, 300);
    EXPECT_TRUE(BASS_RecordFree());
    pull(882);
    EXPECT_EQ(take(kAuxName).back(), 0);
    EXPECT_TRUE(BASS_RecordInit(0));
    const DWORD again = BASS_RecordStart(48000, 2, 0, nullptr, nullptr);
    EXPECT_TRUE(BASS_Mixer_StreamAddChannel(studio.micMixer, again, 0));
    pull(4410);
    const std::vector<float> heard = take(kAuxName);
    EXPECT_GT(heard.back(), heard[4410]) << "the voice goes on";
    // A period and a half and 6 ms behind, answered firmly.
    pull(44100 * 4);
    const auto& input = dynamic_cast<RecordInput&>(*Engine::instance().find(again)->live);
    EXPECT_NEAR(input.bridge.target(), 1.5 * 441 / 48 + 6, 1e-6);
    EXPECT_NEAR(input.bridge.correction(), 185.6, 0.1);
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
    // It goes on from there, here and in a mixer.
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
}

TEST(WebStream, StoresMoreEachTimeItRanDryUpToThreeSeconds) {
    constexpr std::size_t piece = 2048;  // 0.2 s here; what is there to be had at a time
    const Made made{.format = {5 * piece, 1, 0}, .length = 53 * piece, .sample = ramp, .dryEvery = 2};
    UrlInput url(std::make_unique<MadeDecoder>(made), true);
    std::vector<float> out(64 * piece);
    std::vector<std::size_t> pieces;
    while (!url.ended()) {
        url.fillNow();
        const AudioSection audio;
        if (const std::size_t count = url.read(out) / piece) pieces.push_back(count), url.read(out);
    }
    EXPECT_EQ(pieces, (std::vector<std::size_t>{2, 6, 12, 15, 15, 3}));
    // Little memory, whatever a stream says of itself; it begins with a store that is short for it.
    const Made wide{.format = {768'000, 32, 24}, .length = 8'000'000, .sample = ramp, .endless = true};
    UrlInput broad(std::make_unique<MadeDecoder>(wide), true);
    broad.fillNow();
    EXPECT_LE(broad.filled() * 32 * sizeof(float), 16U << 20);
    const AudioSection audio;
    EXPECT_GT(broad.read(out), 0U);
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
