// Loops in files of every kind, longer than what stays in memory: each frame is the one that a plain decode
// has there, whatever is changed while it sounds.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "engine/bass.h"
#include "platform/file_decoders/file_decoders.h"
#include "platform/offline/offline_devices.h"
#include "tests/sound/workshop.h"

namespace zv::test {
namespace {

struct LoopedFile {
    const char* name;
    const char* arguments;  ///< to ffmpeg; nothing: a tracker module
    std::uint32_t rate = 44'100, channels = 2;
    float tolerance = 0;
};

const LoopedFile files[] = {
    {"s16.wav", ""},
    {"mono.wav", "-c:a pcm_u8", 8'000, 1},
    {"six.wav", "-c:a pcm_s24le", 48'000, 6},
    {"whole.flac", ""},
    {"constant.mp3", "-b:a 128k", 44'100, 2, 2e-6F},
    {"variable.mp3", "-q:a 3", 44'100, 2, 2e-6F},
    {"vorbis.ogg", "-c:a libvorbis", 44'100, 2, 2e-6F},
    {"lossy.m4a", "-c:a aac -aac_pns 0", 44'100, 2, 2e-6F},
    {"speech.opus", "-c:a libopus", 48'000, 2, 2e-4F},
    {"two.wma", "-c:a wmav2", 44'100, 2, 2e-6F},
    {"song.mod", nullptr},
};

class Loops : public testing::TestWithParam<LoopedFile> {};

TEST_P(Loops, EveryFrameIsTheOneOfAPlainDecode) {
    const LoopedFile& kind = GetParam();
    const Folder folder;
    const std::string path = folder / kind.name;
    if (kind.arguments) {
        const std::size_t frames = kind.rate / 100 * 1317;
        writeWav(folder / "source.wav", wanderingTones(kind.rate, kind.channels, frames), kind.rate,
                 kind.channels);
        ASSERT_EQ(
            0, run("ffmpeg -v error -y -i " + (folder / "source.wav") + " " + kind.arguments + " " + path));
    } else {
        writeBytes(path, tinyModule(64));
    }
    int error = 0;
    const auto decoders = makeFileDecoders();
    const auto decoder = kind.arguments ? decoders->openFile(path, error) : decoders->openModule(path, error);
    ASSERT_TRUE(decoder);
    const std::vector<float> whole = readWhole(*decoder);

    engine::engineControl()->install({makeFileDecoders(), nullptr, makeOfflineDevices()});
    constexpr DWORD flags = BASS_STREAM_DECODE | BASS_SAMPLE_FLOAT;
    const DWORD source = kind.arguments ? BASS_StreamCreateFile(false, path.c_str(), 0, 0, flags)
                                        : BASS_MusicLoad(false, path.c_str(), 0, 0, flags, 0);
    const DWORD play = BASS_FX_TempoCreate(source, flags | BASS_FX_FREESOURCE);
    ASSERT_NE(play, 0U) << BASS_ErrorGetCode();
    const std::uint64_t frame = kind.channels * sizeof(float);
    const std::uint64_t length = BASS_ChannelGetLength(play, BASS_POS_BYTE) / frame;
    ASSERT_EQ(length * kind.channels, whole.size());

    std::mt19937 random(5);
    std::uint64_t at = 0, start = 0, end = length;
    bool loop = false;
    std::vector<float> part;
    for (int turn = 0; turn < 200; ++turn) {
        const std::uint64_t somewhere = random() % length, near = random() % 200;
        switch (random() % 8) {
            case 0:
                at = somewhere;
                ASSERT_TRUE(BASS_ChannelSetPosition(play, at * frame, BASS_POS_BYTE));
                break;
            case 1:
                start = random() % 2 == 0 ? somewhere : near;
                ASSERT_TRUE(BASS_ChannelSetPosition(source, start * frame, BASS_POS_LOOP));
                break;
            case 2:  // just ahead of what is heard, or at the end of the file
            case 3:
                end = random() % 2 == 0 ? length : std::min(length, at + 1 + near);
                ASSERT_TRUE(BASS_ChannelSetPosition(source, end * frame, BASS_POS_END));
                break;
            case 4:  // a moment before the wrap
                at = end - std::min(end, 1 + near);
                ASSERT_TRUE(BASS_ChannelSetPosition(play, at * frame, BASS_POS_BYTE));
                break;
            default:
                loop = random() % 4 != 0;
                BASS_ChannelFlags(source, loop ? BASS_SAMPLE_LOOP : 0, BASS_SAMPLE_LOOP);
        }
        part.resize((1 + random() % 6000) * kind.channels);
        const DWORD got =
            BASS_ChannelGetData(play, part.data(), static_cast<DWORD>(part.size() * sizeof(float)));
        std::size_t frames = 0;
        for (; frames < part.size() / kind.channels; ++frames, ++at) {
            if (at >= end) {
                at = loop ? (start < end ? start : 0) : end;
                if (!loop) break;
            }
            for (std::size_t c = 0; c < kind.channels; ++c)
                ASSERT_NEAR(part[frames * kind.channels + c], whole[at * kind.channels + c], kind.tolerance)
                    << "turn " << turn << ", frame " << at;
        }
        ASSERT_EQ(got == ~DWORD{0} ? 0 : got / frame, frames) << "turn " << turn;
        if (frames < part.size() / kind.channels) {
            at = 0;
            ASSERT_TRUE(BASS_ChannelSetPosition(play, 0, BASS_POS_BYTE));
        }
    }
    BASS_StreamFree(play);
    engine::engineControl()->install({});
}

INSTANTIATE_TEST_SUITE_P(Files, Loops, testing::ValuesIn(files), [](const auto& info) {
    std::string name = info.param.name;
    std::replace(name.begin(), name.end(), '.', '_');
    return name;
});

}  // namespace
}  // namespace zv::test
