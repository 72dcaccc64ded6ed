// Every kind of file: exact lengths, sound in its place, and seeks that land on the frame asked for.
#include <gmock/gmock.h>

#include <optional>

#include "tests/sound/workshop.h"

namespace zv::test {
namespace {

constexpr std::size_t seekTrials = 12;
constexpr std::size_t seekRead = 700;  // frames

struct FileKind {
    const char* name;       ///< of the file; its extension chooses the container
    const char* arguments;  ///< to ffmpeg, between source and file
    std::uint32_t rate = 44'100;
    std::uint32_t channels = 2;
    std::optional<int> late = 0;    ///< frames that the sound comes late; nothing: not looked at
    std::optional<int> longer = 0;  ///< frames more than the source; nothing: as many as a full decode gives
    float tolerance = 0;            ///< of a sample after a seek
    std::optional<float> exactness{};  ///< largest difference to the source
};

// Lossy sound may differ by rounding between a decode from the start and one entered in the middle.
constexpr float rounding = 2e-6F;
constexpr float sixteenBit = 1.1F / 32768;

const FileKind kinds[] = {
    {.name = "u8.wav", .arguments = "-c:a pcm_u8", .exactness = 1.1F / 128},
    {.name = "s16.wav", .arguments = "", .exactness = sixteenBit},
    {.name = "s24.wav", .arguments = "-c:a pcm_s24le", .exactness = sixteenBit},
    {.name = "s32.wav", .arguments = "-c:a pcm_s32le", .exactness = sixteenBit},
    {.name = "f32.wav", .arguments = "-c:a pcm_f32le", .exactness = sixteenBit},
    {.name = "low.wav", .arguments = "-c:a pcm_s16le", .rate = 8'000, .channels = 1, .exactness = sixteenBit},
    {.name = "high.wav", .arguments = "-c:a pcm_s24le", .rate = 192'000, .exactness = sixteenBit},
    {.name = "six.wav", .arguments = "-c:a pcm_s16le", .channels = 6, .exactness = sixteenBit},
    {.name = "adpcm.wav", .arguments = "-c:a adpcm_ima_wav", .longer = std::nullopt},
    {.name = "ms.wav", .arguments = "-c:a adpcm_ms", .longer = std::nullopt},
    {.name = "mp3.wav",
     .arguments = "-c:a libmp3lame",
     .late = std::nullopt,
     .longer = std::nullopt,
     .tolerance = rounding},
    {.name = "big.aiff", .arguments = "", .exactness = sixteenBit},
    {.name = "whole.flac", .arguments = "", .exactness = sixteenBit},
    {.name = "deep.flac", .arguments = "-sample_fmt s32", .rate = 96'000, .exactness = sixteenBit},
    {.name = "whole.m4a", .arguments = "-c:a alac", .exactness = sixteenBit},
    {.name = "vorbis.ogg", .arguments = "-c:a libvorbis", .tolerance = rounding},
    {.name = "mono.ogg", .arguments = "-c:a libvorbis", .rate = 22'050, .channels = 1, .tolerance = rounding},
    {.name = "speech.opus", .arguments = "-c:a libopus", .rate = 48'000, .tolerance = 2e-4F},
    {.name = "tag.mp3", .arguments = "-b:a 128k", .tolerance = rounding},
    {.name = "variable.mp3", .arguments = "-q:a 3", .tolerance = rounding},
    {.name = "untagged.mp3",
     .arguments = "-b:a 128k -write_xing 0 -id3v2_version 0",
     .late = 1105,
     .longer = std::nullopt,
     .tolerance = rounding},
    {.name = "low.mp3", .arguments = "-b:a 32k", .rate = 22'050, .channels = 1, .tolerance = rounding},
    {.name = "old.mp2",
     .arguments = "-c:a mp2",
     .late = std::nullopt,
     .longer = std::nullopt,
     .tolerance = rounding},
    {.name = "lossy.m4a", .arguments = "-c:a aac -aac_pns 0", .tolerance = rounding},
    {.name = "phone.3gp", .arguments = "-c:a aac -aac_pns 0", .channels = 1, .tolerance = rounding},
    {.name = "stream.aac",
     .arguments = "-c:a aac -aac_pns 0",
     .late = std::nullopt,
     .longer = std::nullopt,
     .tolerance = rounding},
    {.name = "two.wma",
     .arguments = "-c:a wmav2",
     .late = std::nullopt,
     .longer = std::nullopt,
     .tolerance = rounding},
    {.name = "one.asf",
     .arguments = "-c:a wmav1",
     .late = std::nullopt,
     .longer = std::nullopt,
     .tolerance = rounding},
    {.name = "film.mpg",
     .arguments = "-c:a mp2",
     .late = std::nullopt,
     .longer = std::nullopt,
     .tolerance = rounding},
    {.name = "film.avi",
     .arguments = "-c:a libmp3lame",
     .late = std::nullopt,
     .longer = std::nullopt,
     .tolerance = rounding},
    {.name = "plain.avi", .arguments = "-c:a pcm_s16le", .exactness = sixteenBit},
    {.name = "film.mkv",
     .arguments = "-c:a libvorbis",
     .late = std::nullopt,
     .longer = std::nullopt,
     .tolerance = rounding},
    {.name = "film.webm",
     .arguments = "-c:a libopus",
     .rate = 48'000,
     .late = std::nullopt,
     .longer = std::nullopt,
     .tolerance = 2e-4F},
};

class FileFormats : public testing::TestWithParam<FileKind> {};

TEST_P(FileFormats, LengthPlaceAndSeeksAreExact) {
    const FileKind& kind = GetParam();
    const Folder folder;
    // Not a multiple of any codec's frame, but of a millisecond, to which some containers round.
    const std::size_t frames = kind.rate / 100 * 503;
    const auto source = wanderingTones(kind.rate, kind.channels, frames);
    writeWav(folder / "source.wav", source, kind.rate, kind.channels);
    const std::string path = folder / kind.name;
    ASSERT_EQ(0, run("ffmpeg -v error -y -i " + (folder / "source.wav") + " " + kind.arguments + " " + path));

    int error = -1;
    const auto decoder = makeFileDecoders()->openFile(path, error);
    ASSERT_TRUE(decoder) << error;
    EXPECT_EQ(0, error);
    EXPECT_EQ(kind.rate, decoder->format().rate);
    EXPECT_EQ(kind.channels, decoder->format().channels);
    std::size_t expected = frames + static_cast<std::size_t>(kind.longer.value_or(0));
    if (!kind.longer) {
        const auto bytes = outputOf("ffmpeg -v quiet -i " + path + " -f f32le -");
        expected = bytes.size() / sizeof(float) / kind.channels;
    }
    EXPECT_EQ(expected, decoder->length());

    const auto whole = readWhole(*decoder);
    ASSERT_EQ(expected * kind.channels, whole.size());
    EXPECT_TRUE(decoder->ended());
    if (kind.late) {
        EXPECT_EQ(*kind.late, lagOf(whole, source, kind.channels, 2500));
    }
    if (kind.exactness) {
        float worst = 0;
        for (std::size_t i = 0; i < source.size(); ++i)
            worst = std::max(worst, std::abs(whole[i] - source[i]));
        EXPECT_LE(worst, *kind.exactness);
    }

    std::mt19937 random(7);
    std::vector<float> part(seekRead * kind.channels);
    for (std::size_t trial = 0; trial < seekTrials; ++trial) {
        // The ends, steps back and forth, and anywhere.
        const std::size_t to = trial == 0   ? 0
                               : trial == 1 ? expected - 1
                               : trial == 2 ? 1
                               : trial == 3 ? expected / 2
                               : trial == 4 ? expected / 2 + 100
                                            : random() % expected;
        ASSERT_TRUE(decoder->seek(to));
        const std::size_t got = decoder->read(part);
        ASSERT_EQ(std::min(seekRead, expected - to), got) << "from " << to;
        float worst = 0;
        for (std::size_t i = 0; i < got * kind.channels; ++i)
            worst = std::max(worst, std::abs(part[i] - whole[to * kind.channels + i]));
        EXPECT_LE(worst, kind.tolerance) << "from " << to;
    }
    EXPECT_FALSE(decoder->seek(expected + 1));
}

INSTANTIATE_TEST_SUITE_P(All, FileFormats, testing::ValuesIn(kinds), [](const auto& info) {
    std::string name = info.param.name;
    std::replace(name.begin(), name.end(), '.', '_');
    return name;
});

// A video's picture is no hindrance, and its sound is found behind it.
TEST(FileFormatsOfVideos, SoundBesideAPicture) {
    const Folder folder;
    for (const char* name : {"a.mp4", "a.mpg", "a.avi", "a.wmv", "a.3gp"}) {
        const std::string path = folder / name;
        const std::string audio = std::string(name) == "a.3gp" ? "-c:v mpeg4 -c:a aac -ac 1 " : "";
        ASSERT_EQ(0, run("ffmpeg -v error -y -f lavfi -i testsrc=s=176x144:d=2:r=25 -f lavfi -i "
                         "sine=500:d=2:r=44100 " +
                         audio + path));
        int error = -1;
        const auto decoder = makeFileDecoders()->openFile(path, error);
        ASSERT_TRUE(decoder) << name << error;
        EXPECT_NEAR(2.0, static_cast<double>(*decoder->length()) / decoder->format().rate, 0.1) << name;
        EXPECT_EQ(*decoder->length(), readWhole(*decoder).size() / decoder->format().channels) << name;
    }
}

}  // namespace
}  // namespace zv::test
