// Files of every kind, as encoders, recorders and accidents leave them, each against an independent decoder or against
// what it was made from: length, every frame, seeks late and far, loops as the engine plays them, the end.

#include <array>
#include <cstring>
#include <map>
#include <set>

#include "platform/offline/offline_devices.h"
#include "tests/sound/workshop.h"
#include "tests/support/places.h"

namespace zv::test {
namespace {

constexpr const char* decoded = "ffmpeg -v quiet -i $f -f s16le -";
constexpr const char* layerTwo = "ffmpeg -v quiet -c:a mp2float -i $f -f s16le -";
constexpr const char* source = "tail -c +45 $s";
constexpr const char* exact = "sox -D $f -t raw -b 16 -e signed -";
constexpr const char* song = "ffmpeg -v quiet -f libopenmpt -sample_rate 44100 -i $f -f s16le -";
constexpr std::size_t fade = 44'100 * 60;  // frames that the reference adds to a song

/// Whether a file tells where its sound begins and ends: not a frame is before or behind it.
enum class Ends : bool { told, untold };
using enum Ends;

struct Kind {
    const char* name = "source.wav";  ///< its extension chooses the container
    /// Makes "$f" of "$s"; what begins with "-", or is nothing, are arguments to ffmpeg. "$v" adds a moving picture, "$p"
    /// one of 6 MB in front.
    const char* make = "";
    const char* reference = decoded;  ///< prints the sound as 16 bits
    Ends ends = told;
    std::size_t cut = 0;  ///< frames that the reference has more: padding that it does not take off
    std::uint32_t rate = 44'100, channels = 2;
    /// Part of the sound that damage took, in thousandths.
    std::array<std::size_t, 2> damaged{1000, 1000};
};

constexpr std::array<std::size_t, 2> kHole{342, 430}, kLongHole{342, 552};

const Kind kinds[] = {
    {"s16.wav", "", source},
    {"u8.wav", "-c:a pcm_u8", exact},
    {"s24.wav", "-c:a pcm_s24le", source},
    {"s32.wav", "-c:a pcm_s32le", source},
    {"f32.wav", "-c:a pcm_f32le", source},
    {"low.wav", "", source, told, 0, 8'000, 1},
    {"high.wav", "-c:a pcm_s24le", source, told, 0, 192'000},
    {"six.wav", "", source, told, 0, 44'100, 6},
    {"rf64.wav", "-rf64 always", source},
    {"chunks.wav", "cp chunks.made $f", source},
    {"behind.wav", "{ cat $s; printf 'LIST\\211\\023\\000\\000'; head -c 5002 /dev/zero; } >$f", source},
    {"odd.wav",
     "ffmpeg -v error -i $s -c:a pcm_u8 8.wav && { cat 8.wav; printf 'LIST\\004\\000\\000\\000abcd'; } >$f",
     exact, told, 0, 44'100, 1},
    {"adpcm.wav", "-c:a adpcm_ima_wav", decoded, untold},
    {"ms.wav", "-c:a adpcm_ms", decoded, untold},
    {"mp3.wav", "-c:a libmp3lame", decoded, untold},
    {"big.aiff", "", source},
    {"whole.flac", "", source},
    {"deep.flac", "-sample_fmt s32", source, told, 0, 96'000},
    {"picture.flac", "flac -s --picture='3|image/bmp||1400x1400x24|picture.bmp' $s -o $f 2>/dev/null",
     source},
    {"whole.m4a", "-c:a alac", source},
    {"picture.m4a", "$p -c:a alac", source},
    {"mono.ogg", "-c:a libvorbis", decoded, told, 0, 22'050, 1},
    {"vorbis.ogg", "cp a.ogg $f", "oggdec -Q -R -o - $f"},
    {"joined.ogg", "cat a.ogg b.ogg a.ogg >$f", "for k in a b a; do oggdec -Q -R -o - $k.ogg; done", untold},
    {"joined.oga", "flac -s --ogg $s -o one.oga 2>/dev/null; cat one.oga b.ogg >$f",
     "tail -c +45 $s; oggdec -Q -R -o - b.ogg", untold},
    {"long.oga", "flac -s --ogg $s -o $f 2>/dev/null", source},
    {"zeros_between.ogg", "(head -c 30000 a.ogg; head -c 137000 /dev/zero; tail -c +30001 a.ogg) >$f",
     "oggdec -Q -R -o - a.ogg", told, 0, 44'100, 2, kHole},
    {"zeros_over.ogg",
     "cp a.ogg $f; dd if=/dev/zero of=$f bs=1 seek=30000 count=10000 conv=notrunc status=none",
     "oggdec -Q -R -o - a.ogg", told, 0, 44'100, 2, kLongHole},
    {"music.opus", "-c:a libopus", decoded, told, 0, 48'000},
    {"speech.opus", "-c:a libopus -application voip -b:a 14k", decoded, untold, 0, 48'000},
    {"tag.mp3", "-b:a 128k"},
    {"variable.mp3", "-q:a 3"},
    {"low.mp3", "-b:a 32k", decoded, told, 0, 22'050, 1},
    {"picture.mp3", "$p"},
    {"untagged.mp3", "-b:a 128k -write_xing 0 -id3v2_version 0", decoded, untold},
    // The tag's last 12 bits: 2,300 frames of padding.
    {"padding.mp3",
     "ffmpeg -v error -i $s -b:a 128k $f && at=$(grep -abo -m1 Lavc $f | head -1 | cut -d: -f1) && "
     "printf '\\010\\374' | dd of=$f bs=1 seek=$((at+22)) conv=notrunc status=none",
     decoded, untold},
    {"old.mp2", "-c:a mp2", layerTwo, untold},
    {"broadcast.mp2", "ffmpeg -v error -i $s -b:a 256k $f && { printf TAG; head -c 125 /dev/zero; } >>$f",
     layerTwo, untold},
    {"lossy.m4a", "cp even.m4a $f", decoded, told, 933},
    {"jitter.m4a",
     "ffmpeg -v error -i even.m4a -c copy -bsf:a 'setts=pts=PTS+448*gt(N\\,300)-mod(N\\,3):"
     "dts=DTS+448*gt(N\\,300)-mod(N\\,3)' -use_editlist 0 $f",
     "ffmpeg -v quiet -i undated.m4a -f s16le -", untold, 485},
    {"cut.m4a", "ffmpeg -v error -ss 3 -i even.m4a -c copy $f", decoded, untold, 933},
    {"late.mov", "ffmpeg -v error -i even.m4a -c copy -bsf:a setts=pts=PTS+2048:dts=DTS+2048 $f", decoded,
     untold},
    {"parts.mp4",
     "ffmpeg -v error -i even.m4a -c copy -movflags frag_keyframe+empty_moov -frag_duration 2000000 $f",
     decoded, untold},
    {"phone.3gp", "-c:a aac -aac_pns 0", decoded, told, 933, 44'100, 1},
    {"stream.aac", "cp plain.aac $f", decoded, untold},
    // Whose upper bands the codec makes of what it holds: nothing of the end may sound at the start.
    {"bands.aac", "cp bands.made $f", decoded, untold},
    {"bands.m4a", "ffmpeg -v quiet -f aac -i bands.made -c copy $f", decoded, untold},
    {"two.wma", "-c:a wmav2", decoded, untold},
    {"one.asf", "-c:a wmav1", decoded, untold},
    {"film.mpg", "-c:a mp2", layerTwo, untold},
    {"film.avi", "-c:a libmp3lame", decoded, untold},
    {"plain.avi", "-c:a pcm_s16le", source},
    {"flac.mkv", "-c:a flac", source},
    {"vorbis.mkv", "ffmpeg -v error -i a.ogg -c copy $f", decoded, untold},
    {"opus.webm", "-c:a libopus", decoded, untold, 0, 48'000},
    {"seen.mkv", "ffmpeg -v error $v -i a.ogg -map 0 -map 1 -c:v mjpeg -c:a copy $f", decoded, untold},
    {"seen.mp4", "$v -map 0 -map 1 -c:v mpeg4 -c:a aac -aac_pns 0", decoded, told, 933},
    {"seen.mpg", "$v -map 0 -map 1 -c:a mp2", layerTwo, untold},
    {"seen.avi", "$v -map 0 -map 1 -c:a libmp3lame", decoded, untold},
    {"seen.wmv", "$v -map 0 -map 1", decoded, untold},
    {"seen.3gp", "$v -map 0 -map 1 -c:v mpeg4 -c:a aac -aac_pns 0", decoded, told, 933, 44'100, 1},
    {"brief.wma", "", decoded, untold},
    {"brief.mp3"},
    {"brief_untagged.mp3", "-write_xing 0", decoded, untold},
    {"brief.m4a", "-c:a aac -aac_pns 0", decoded, told, 396},
    {"brief.ogg", "-c:a libvorbis", "oggdec -Q -R -o - $f"},
    {"brief.opus", "-c:a libopus", decoded, told, 0, 48'000},
    {"brief.flac", "", source},
    {"brief.mp2", "", layerTwo, untold},
    {"brief.mkv", "-c:a libvorbis", decoded, untold},
    {"brief.aac", "-aac_pns 0", decoded, untold},
    {"voice.ogg", "-c:a libspeex", decoded, untold, 0, 32'000, 1},
    {"tiny.mod", "cp tiny.made $f", song, untold, fade},
    {"intro.xm", "cp /usr/share/games/heroes/mod/intro.xm $f", song, untold, fade},
};

constexpr float sixteenBit = 1.01F / 32768;

bool isBrief(const Kind& kind) { return std::string_view(kind.name).starts_with("brief"); }
bool isSong(const Kind& kind) { return kind.reference == song; }

/// Not a multiple of any codec's frame, but of a millisecond, to which some containers round. A long one is longer than what
/// is decoded whole at opening, a brief one is few packets.
std::size_t sourceFrames(const Kind& kind) { return kind.rate / 100 * (isBrief(kind) ? 20 : 1'203); }

std::string sourceName(const Kind& kind) {
    return std::to_string(sourceFrames(kind)) + "-" + std::to_string(kind.rate) + "-" +
           std::to_string(kind.channels) + ".wav";
}

const std::vector<float>& tonesOf(const Kind& kind) {
    static std::map<std::string, std::vector<float>> made;
    std::vector<float>& tones = made[sourceName(kind)];
    if (tones.empty()) tones = wanderingTones(kind.rate, kind.channels, sourceFrames(kind));
    return tones;
}

/// What the files are made from, once for all of them.
const Folder& corpus() {
    static const Folder folder;
    static const bool made = [] {
        writeWav(folder / sourceName({}), tonesOf({}), 44'100, 2);
        // Data behind a chunk of an odd size that is larger than what is probed.
        auto bytes = readBytes(folder / sourceName({}));
        std::vector<char> chunk(8 + 70'001 + 1, 'x');
        const std::uint32_t size = 70'001;
        std::memcpy(chunk.data(), "junk", 4);
        std::memcpy(chunk.data() + 4, &size, 4);
        bytes.insert(bytes.begin() + 36, chunk.begin(), chunk.end());
        writeBytes(folder / "chunks.made", bytes);
        writeBytes(folder / "tiny.made", tinyModule(60));
        // A picture of 1,400 x 1,400 points, three bytes each.
        std::vector<char> picture(54 + 3 * 1'400 * 1'400);
        std::mt19937 random(5);
        for (char& byte : picture) byte = static_cast<char>(random());
        const auto whole = static_cast<std::uint32_t>(picture.size());
        const std::uint32_t head[13] = {whole, 0, 54, 40, 1'400, 1'400, 24 << 16 | 1};
        picture[0] = 'B', picture[1] = 'M';
        std::memcpy(picture.data() + 2, head, sizeof head);
        writeBytes(folder / "picture.bmp", picture);
        return run("cd " + folder.path().string() + " && s=" + sourceName({}) +

                   " && ffmpeg -v error -i $s -c:a aac -aac_pns 0 even.m4a -ar 22050 -ac 1 -c:a aac -aac_pns "
                   "0 half.aac"
                   " && ffmpeg -v error -i even.m4a -c copy plain.aac -c copy -use_editlist 0 undated.m4a"
                   " && python3 " +
                   sourceDir() +
                   "/tests/sound/add_spectral_bands.py half.aac bands.made"
                   " && oggenc -Q -q 5 $s -o a.ogg && sox $s part.wav trim 3 5 && oggenc -Q part.wav -o "
                   "b.ogg") == 0;
    }();
    EXPECT_TRUE(made);
    return folder;
}

std::string inCorpus(std::string command, const Kind& kind) {
    const std::string name = sourceName(kind);
    if (command.empty() || command[0] == '-' || command.starts_with("$p") || command.starts_with("$v"))
        command = "ffmpeg -v error -i $s " + command + " $f";
    if (!std::filesystem::exists(corpus() / name))
        writeWav(corpus() / name, tonesOf(kind), kind.rate, kind.channels);
    return "cd " + corpus().path().string() + " && f=" + kind.name + " s=" + name +
           " v='-f lavfi -i testsrc=s=176x144:d=12:r=25' p='-i picture.bmp -map 0 -map 1 -c:v copy "
           "-disposition:v "
           "attached_pic' && { " +
           command + "; }";
}

bool isSeen(const Kind& kind) { return std::string_view(kind.make).starts_with("$v"); }
bool isPlain(const Kind& kind) { return kind.make[0] == '-' || kind.make[0] == 0 || isSeen(kind); }

/// All plain kinds of this one's source in one run, and decoded in another one: ffmpeg's start takes longer than either.
void makeTogether(const Kind& like) {
    static std::set<std::string> made;
    if (!made.insert(sourceName(like)).second) return;
    std::string make, in = "ffmpeg -v quiet", out;
    int inputs = 0;
    for (const Kind& kind : kinds) {
        const std::string name = kind.name;
        if (!isPlain(kind) || sourceName(kind) != sourceName(like)) continue;
        make += (isSeen(kind) ? std::string(kind.make).substr(2) : std::string(" -map 0 ") + kind.make) +
                ' ' + name;
        if (kind.reference != decoded && kind.reference != layerTwo) continue;
        in += std::string(kind.reference == layerTwo ? " -c:a mp2float" : "") + " -i " + name;
        out += " -map " + std::to_string(inputs++) + ":a -f s16le " + name + ".raw";
    }
    make = "ffmpeg -v error -i $s $v" + make;
    EXPECT_EQ(0, run(inCorpus(inputs > 0 ? make + " && " + in + out : make, like)));
}

/// Sound of a file from the reference, to be compared with any stretch of it.
class Reference {
  public:
    explicit Reference(const Kind& kind) : kind_(kind) {
        const std::string there = corpus() / (std::string(kind.name) + ".raw");
        const auto bytes =
            std::filesystem::exists(there) ? readBytes(there) : outputOf(inCorpus(kind.reference, kind));
        samples_.resize(bytes.size() / 2);
        std::memcpy(samples_.data(), bytes.data(), samples_.size() * 2);
    }
    std::size_t frames() const { return samples_.size() / kind_.channels; }
    /// Frame of the file that is heard as frame `k`, and of how many channels.
    template <class Place>
    void expectSame(std::span<const float> sound, std::size_t channels, Place place, const char* what) const {
        for (std::size_t i = 0; i < sound.size(); ++i) {
            const std::size_t at = place(i / channels);
            if (at >= frames() * kind_.damaged[0] / 1000 && at < frames() * kind_.damaged[1] / 1000) continue;
            const std::size_t channel = kind_.channels == 1 ? 0 : i % channels;
            const float wanted = samples_[at * kind_.channels + channel] / 32768.0F;
            if (!(std::abs(sound[i] - wanted) <= sixteenBit)) {
                ADD_FAILURE() << what << ": frame " << at << " is " << sound[i] << ", not " << wanted;
                return;
            }
        }
    }

  private:
    const Kind& kind_;
    std::vector<std::int16_t> samples_;
};

/// The loop from `from` to `to` as the engine plays it, from a little before its first wrap on.
void expectLoop(const Kind& kind, const Reference& reference, OfflineDevices& devices, std::size_t length,
                std::size_t from, std::size_t to) {
    constexpr std::size_t lead = 900, periods = 12, period = 441;
    const std::string path = corpus() / kind.name;
    const DWORD channel = isSong(kind) ? BASS_MusicLoad(false, path.c_str(), 0, 0, BASS_SAMPLE_LOOP, 0)
                                       : BASS_StreamCreateFile(false, path.c_str(), 0, 0, BASS_SAMPLE_LOOP);
    const std::size_t frameBytes = kind.channels * 2;
    EXPECT_EQ(length * frameBytes, BASS_ChannelGetLength(channel, BASS_POS_BYTE));
    EXPECT_TRUE(BASS_ChannelSetPosition(channel, from * frameBytes, BASS_POS_LOOP));
    EXPECT_TRUE(BASS_ChannelSetPosition(channel, to * frameBytes, BASS_POS_END));
    EXPECT_TRUE(BASS_ChannelSetPosition(channel, (to - lead) * frameBytes, BASS_POS_BYTE));
    EXPECT_TRUE(BASS_ChannelPlay(channel, false));
    devices.pull(periods * period, kind.rate);
    const auto heard = devices.takeSound("Main output");
    ASSERT_EQ(heard.size(), 2 * periods * period);
    const auto place = [&](std::size_t k) {
        return k < lead ? to - lead + k : from + (k - lead) % (to - from);
    };
    reference.expectSame(heard, 2, place, "loop");
    EXPECT_EQ(place(periods * period) * frameBytes, BASS_ChannelGetPosition(channel, BASS_POS_BYTE));
    EXPECT_TRUE(isSong(kind) ? BASS_MusicFree(channel) : BASS_StreamFree(channel));
}

class FileKinds : public testing::TestWithParam<Kind> {};

TEST_P(FileKinds, SoundAsTheReferenceHasThem) {
    const Kind& kind = GetParam();
    if (isPlain(kind)) {
        makeTogether(kind);
    } else {
        ASSERT_EQ(0, run(inCorpus(kind.make, kind)));
    }
    const Reference reference(kind);
    int error = -1;
    const auto decoders = makeFileDecoders();
    const std::string path = corpus() / kind.name;
    const auto decoder = isSong(kind) ? decoders->openModule(path, error) : decoders->openFile(path, error);
    ASSERT_TRUE(decoder) << error;
    EXPECT_EQ(0, error);
    EXPECT_EQ(kind.rate, decoder->format().rate);
    ASSERT_EQ(kind.channels, decoder->format().channels);
    const std::size_t length = *decoder->length();
    ASSERT_LE(length, reference.frames());
    EXPECT_EQ(isSong(kind) ? length : length + kind.cut, isSong(kind) ? length : reference.frames());
    EXPECT_EQ(kind.ends == told ? sourceFrames(kind) : length, length);

    std::vector<float> part(700 * kind.channels);
    // First of all a seek ahead. Then the ends, late, far, back, near, and the start once more.
    for (const std::size_t to : {length / 2, length - 700, std::size_t{0}, length - 1, length * 9 / 10,
                                 std::size_t{44'101}, length * 2 / 3, length * 2 / 3 + 9000, length / 7,
                                 length - 5000, std::size_t{1}, length, std::size_t{0}}) {
        if (to > length) continue;  // of a brief one
        ASSERT_TRUE(decoder->seek(to));
        const std::size_t got = decoder->read(part);
        ASSERT_EQ(std::min<std::size_t>(700, length - to), got);
        EXPECT_EQ(to + got == length, decoder->ended());
        reference.expectSame(
            std::span(part).first(got * kind.channels), kind.channels, [&](std::size_t k) { return to + k; },
            "after a seek");
    }
    EXPECT_FALSE(decoder->seek(length + 1));
    ASSERT_TRUE(decoder->seek(0));
    const auto whole = readWhole(*decoder);
    ASSERT_EQ(length * kind.channels, whole.size());
    EXPECT_TRUE(decoder->ended());
    reference.expectSame(
        whole, kind.channels, [](std::size_t k) { return k; }, "whole");
    EXPECT_EQ(0, kind.ends == told ? lagOf(whole, tonesOf(kind), kind.channels, 64) : 0);
    if (kind.channels > 2) return;
    const auto devices = makeOfflineDevices({});
    engine::engineControl()->install({decoders, devices});
    ASSERT_TRUE(BASS_Init(1, kind.rate, 0, nullptr, nullptr));
    expectLoop(kind, reference, *devices, length, 0, length);
    expectLoop(kind, reference, *devices, length, length - 1'500, length);
    expectLoop(kind, reference, *devices, length, length / 3, length / 3 + 1'777);
    engine::engineControl()->install({});
}

INSTANTIATE_TEST_SUITE_P(All, FileKinds, testing::ValuesIn(kinds), [](const auto& info) {
    std::string name = info.param.name;
    std::replace(name.begin(), name.end(), '.', '_');
    return name;
});

}  // namespace
}  // namespace zv::test
