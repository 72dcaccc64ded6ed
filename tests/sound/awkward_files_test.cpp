// Files as encoders, recorders and accidents leave them, each against an independent decoder or against what it was made
// from: length, every frame, seeks late and far, the wrap of a loop.

#include <array>
#include <cstring>

#include "platform/offline/offline_devices.h"
#include "tests/sound/workshop.h"

namespace zv::test {
namespace {

constexpr std::uint32_t rate = 44'100;
constexpr std::size_t sourceFrames = rate * 17 + 311;  // longer than what is decoded whole at opening
constexpr float sixteenBit = 1.01F / 32768;

struct Awkward {
    const char* name;
    const char*
        make;  ///< makes the file "$f"; source.wav, even.m4a, a.ogg, b.ogg, whole.ogg, picture.png are there
    const char* reference;  ///< prints it as 16 bits
    std::size_t cut = 0;    ///< frames that the reference may have more: padding that it does not take off
    /// Part of the sound that damage took, in hundredths.
    std::array<std::size_t, 2> damaged{100, 100};
};

constexpr const char* decoded = "ffmpeg -v quiet -i $f -f s16le -";
constexpr const char* source = "sox source.wav -t raw -";

const Awkward files[] = {
    {.name = "jitter.m4a",
     .make = "ffmpeg -v error -i even.m4a -c copy -bsf:a 'setts=pts=PTS+448*gt(N\\,300)-mod(N\\,3):"
             "dts=DTS+448*gt(N\\,300)-mod(N\\,3)' -use_editlist 0 $f",
     .reference = "ffmpeg -v quiet -i undated.m4a -f s16le -",
     .cut = 1023},
    {.name = "late.mov",
     .make = "ffmpeg -v error -i even.m4a -c copy -bsf:a setts=pts=PTS+2048:dts=DTS+2048 $f",
     .reference = decoded},
    {.name = "cut.m4a",
     .make = "ffmpeg -v error -ss 3 -i even.m4a -c copy $f",
     .reference = decoded,
     .cut = 1023},
    // The tag's last 12 bits: 2,300 frames of padding.
    {.name = "padding.mp3",
     .make = "ffmpeg -v error -i source.wav -b:a 128k $f && at=$(grep -abo -m1 Lavc $f | head -1 | cut -d: "
             "-f1) && "
             "printf '\\010\\374' | dd of=$f bs=1 seek=$((at+22)) conv=notrunc status=none",
     .reference = decoded},
    {.name = "picture.mp3",
     .make = "ffmpeg -v error -i source.wav -i picture.png -map 0 -map 1 -c:v copy $f",
     .reference = decoded},
    {.name = "picture.flac",
     .make = "flac -s --picture=picture.png source.wav -o $f 2>/dev/null",
     .reference = source},
    {.name = "long.oga", .make = "flac -s --ogg source.wav -o $f 2>/dev/null", .reference = source},
    {.name = "joined.ogg",
     .make = "cat a.ogg b.ogg a.ogg >$f",
     .reference = "for k in a b a; do oggdec -Q -R -o - $k.ogg; done"},
    {.name = "joined.oga",
     .make = "flac -s --ogg source.wav -o one.oga 2>/dev/null; cat one.oga b.ogg >$f",
     .reference = "sox source.wav -t raw -; oggdec -Q -R -o - b.ogg"},
    {.name = "zeros_between.ogg",
     .make = "(head -c 30000 a.ogg; head -c 137000 /dev/zero; tail -c +30001 a.ogg) >$f",
     .reference = "oggdec -Q -R -o - a.ogg",
     .damaged = {25, 40}},
    {.name = "zeros_over.ogg",
     .make = "cp a.ogg $f; dd if=/dev/zero of=$f bs=1 seek=30000 count=10000 conv=notrunc status=none",
     .reference = "oggdec -Q -R -o - a.ogg",
     .damaged = {25, 50}},
    {.name = "speech.opus",
     .make = "ffmpeg -v error -i source.wav -c:a libopus -application voip -b:a 14k -ac 2 $f",
     .reference = decoded},
    {.name = "vorbis.mkv", .make = "ffmpeg -v error -i a.ogg -c copy $f", .reference = decoded, .cut = 4096},
    {.name = "opus.webm", .make = "ffmpeg -v error -i source.wav -c:a libopus $f", .reference = decoded},
    {.name = "broadcast.mp2",
     .make = "ffmpeg -v error -i source.wav -b:a 256k $f && head -c 128 /dev/zero | tr '\\0' x | sed "
             "'s/^xxx/TAG/' >>$f",
     .reference = "ffmpeg -v quiet -c:a mp2float -i $f -f s16le -"},
    {.name = "alac.m4a", .make = "ffmpeg -v error -i source.wav -c:a alac $f", .reference = source},
    {.name = "parts.mp4",
     .make =
         "ffmpeg -v error -i even.m4a -c copy -movflags frag_keyframe+empty_moov -frag_duration 2000000 $f",
     .reference = decoded,
     .cut = 1023},
    {.name = "flac.mkv", .make = "ffmpeg -v error -i source.wav -c:a flac $f", .reference = source},
    {.name = "film.mkv",
     .make = "ffmpeg -v error -f lavfi -i testsrc=s=64x64:r=25:d=17 -i a.ogg -map 0 -map 1 -c:v mjpeg -c:a "
             "copy $f",
     .reference = decoded,
     .cut = 4096},
    {.name = "chunks.wav", .make = "cp chunks.made $f", .reference = source},
};

/// What the files are made from, once for all of them.
const Folder& corpus() {
    static const Folder folder;
    static const bool made = [] {
        writeWav(folder / "source.wav", wanderingTones(rate, 2, sourceFrames), rate, 2);
        // Data behind a chunk of an odd size that is larger than what is probed.
        auto bytes = readBytes(folder / "source.wav");
        std::vector<char> chunk(8 + 70'001 + 1, 'x');
        const std::uint32_t size = 70'001;
        std::memcpy(chunk.data(), "junk", 4);
        std::memcpy(chunk.data() + 4, &size, 4);
        bytes.insert(bytes.begin() + 36, chunk.begin(), chunk.end());
        writeBytes(folder / "chunks.made", bytes);
        return run("cd " + folder.path().string() +
                   " && ffmpeg -v error -i source.wav -c:a aac -aac_pns 0 even.m4a"
                   " && ffmpeg -v error -i even.m4a -c copy -use_editlist 0 undated.m4a"
                   " && oggenc -Q -q 5 source.wav -o a.ogg && sox source.wav part.wav trim 3 5 && oggenc -Q "
                   "part.wav -o b.ogg"
                   " && ffmpeg -v error -f lavfi -i "
                   "\"nullsrc=s=900x900,geq=r='random(1)*255':g='random(2)*255':"
                   "b='random(3)*255'\" -frames:v 1 picture.png") == 0;
    }();
    EXPECT_TRUE(made);
    return folder;
}

std::string inCorpus(std::string command, const std::string& name) {
    for (std::size_t at = 0; (at = command.find("$f", at)) != std::string::npos;)
        command.replace(at, 2, name);
    return "cd " + corpus().path().string() + " && { " + command + "; }";
}

class AwkwardFiles : public testing::TestWithParam<Awkward> {};

TEST_P(AwkwardFiles, SoundAsTheReferenceHasThem) {
    const Awkward& kind = GetParam();
    ASSERT_EQ(0, run(inCorpus(kind.make, kind.name)));
    const auto bytes = outputOf(inCorpus(kind.reference, kind.name));
    std::vector<std::int16_t> reference(bytes.size() / 2);
    std::memcpy(reference.data(), bytes.data(), reference.size() * 2);
    const std::size_t frames = reference.size() / 2;
    ASSERT_GT(frames, rate * 10U);

    int error = -1;
    const auto decoder = makeFileDecoders()->openFile(corpus() / kind.name, error);
    ASSERT_TRUE(decoder) << error;
    const std::size_t length = *decoder->length();
    EXPECT_LE(length, frames);
    EXPECT_GE(length + kind.cut, frames);
    const auto agree = [&](std::size_t from, std::span<const float> sound) {
        for (std::size_t i = 0; i < sound.size(); ++i) {
            const std::size_t at = from + i / 2;
            if (at >= frames * kind.damaged[0] / 100 && at < frames * kind.damaged[1] / 100) continue;
            ASSERT_NEAR(reference[from * 2 + i] / 32768.0F, sound[i], sixteenBit) << "frame " << at;
        }
    };
    const auto whole = readWhole(*decoder);
    ASSERT_EQ(length * 2, whole.size());
    ASSERT_NO_FATAL_FAILURE(agree(0, whole));
    std::vector<float> part(2 * 700);
    // The wrap of a loop: to the last frame, then the first. Then late, far, back, and near.
    for (const std::size_t to :
         {length - 700, std::size_t{0}, length - 1, length / 2, length * 9 / 10, rate + 1UL, length * 2 / 3,
          length * 2 / 3 + 9000, length / 7, length - 5000}) {
        ASSERT_TRUE(decoder->seek(to));
        const std::size_t got = decoder->read(part);
        ASSERT_EQ(std::min<std::size_t>(700, length - to), got);
        ASSERT_NO_FATAL_FAILURE(agree(to, std::span(part).first(got * 2))) << "from " << to;
    }
    // The wrap as it is heard: the last frame, then at once the loop's first.
    const std::size_t loop = length / 3, before = 900;
    const std::uint32_t fileRate = decoder->format().rate;
    const auto devices = makeOfflineDevices({});
    engine::engineControl()->install({makeFileDecoders(), nullptr, devices});
    BASS_Init(1, fileRate, 0, nullptr, nullptr);
    const HSTREAM channel =
        BASS_StreamCreateFile(false, (corpus() / kind.name).c_str(), 0, 0, BASS_SAMPLE_LOOP);
    EXPECT_TRUE(BASS_ChannelSetPosition(channel, loop * 4, BASS_POS_LOOP));
    EXPECT_TRUE(BASS_ChannelSetPosition(channel, (length - before) * 4, BASS_POS_BYTE));
    EXPECT_TRUE(BASS_ChannelPlay(channel, false));
    devices->pull(3 * before, fileRate);
    const auto heard = devices->takeSound("Main output");
    engine::engineControl()->install({});
    ASSERT_EQ(heard.size(), 6 * before);
    ASSERT_NO_FATAL_FAILURE(agree(length - before, std::span(heard).first(2 * before)));
    ASSERT_NO_FATAL_FAILURE(agree(loop, std::span(heard).subspan(2 * before)));
}

INSTANTIATE_TEST_SUITE_P(All, AwkwardFiles, testing::ValuesIn(files), [](const auto& info) {
    std::string name = info.param.name;
    std::replace(name.begin(), name.end(), '.', '_');
    return name;
});

}  // namespace
}  // namespace zv::test
