// Files that are not what they seem: an error or as much sound as there is, never a crash or a wait.

#include <chrono>
#include <fstream>

#include "tests/sound/workshop.h"
#include "tests/support/places.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace zv::test {
namespace {

constexpr auto patience = std::chrono::seconds(3);

const char* const extensions[] = {"wma",  "wav", "ogg",  "mpa", "mp3", "mp2", "mp1", "m4a",
                                  "flac", "aif", "mod",  "mo3", "s3m", "xm",  "it",  "mtm",
                                  "mp4",  "mpg", "mpeg", "avi", "wmv", "3gp", "asf", "asx"};

std::vector<char> randomBytes(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<char> bytes(count);
    for (char& byte : bytes) byte = static_cast<char>(random());
    return bytes;
}

/// Opens, reads a little everywhere, and returns the error.
int handle(const std::string& path) {
    const auto begin = std::chrono::steady_clock::now();
    int error = -99;
    if (const auto decoder = makeFileDecoders()->openFile(path, error)) {
        EXPECT_EQ(BASS_OK, error) << path;
        EXPECT_GT(*decoder->length(), 0U) << path;
        std::vector<float> some(decoder->format().channels * 3000);
        for (const std::uint64_t part : {0U, 1U, 2U, 3U}) {
            const std::uint64_t from = *decoder->length() * part / 4;
            EXPECT_TRUE(decoder->seek(from)) << path;
            EXPECT_EQ(std::min<std::uint64_t>(3000, *decoder->length() - from), decoder->read(some)) << path;
            for (const float sample : some) EXPECT_LE(std::abs(sample), 16) << path;
        }
    } else {
        EXPECT_GT(error, 0) << path;
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, patience) << path;
    return error;
}

TEST(DamagedFiles, WhatIsNoSoundIsRefusedUnderEveryName) {
    const Folder folder;
    const auto song = tinyModule(32);
    const struct {
        const char* what;
        std::vector<char> bytes;
    } contents[] = {{"empty", {}},
                    {"one byte", {'R'}},
                    {"zeros", std::vector<char>(100'000, 0)},
                    {"random", randomBytes(40'000, 3)},
                    {"random, short", randomBytes(300, 4)},
                    {"text", std::vector<char>(20'000, 'a')},
                    {"song, cut", {song.begin(), song.begin() + 500}},
                    {"list of other files", {}}};
    for (const char* extension : extensions) {
        const std::string path = folder / (std::string("file.") + extension);
        for (const auto& content : contents) {
            writeBytes(path, content.bytes);
            if (std::string_view(content.what) == "list of other files")
                std::ofstream(path) << "#EXTM3U\n#EXTINF:10,\nother.wav\n";
            EXPECT_EQ(BASS_ERROR_FILEFORM, handle(path)) << content.what;
            int error = 0;
            EXPECT_FALSE(makeFileDecoders()->openModule(path, error)) << content.what;
            EXPECT_EQ(BASS_ERROR_FILEFORM, error) << content.what;
        }
    }
}

TEST(DamagedFiles, PathsThatAreNoFiles) {
    const Folder folder;
    int error = 0;
    EXPECT_FALSE(makeFileDecoders()->openModule(folder / "missing.mod", error));
    EXPECT_EQ(BASS_ERROR_FILEOPEN, error);
    EXPECT_EQ(BASS_ERROR_FILEOPEN, handle(folder / "missing.wav"));
    EXPECT_EQ(BASS_ERROR_FILEOPEN, handle(folder.path().string()));
    EXPECT_EQ(BASS_ERROR_FILEOPEN, handle("/dev/zero"));
    EXPECT_EQ(BASS_ERROR_FILEOPEN, handle(""));
    ASSERT_EQ(0, run("mkfifo " + (folder / "pipe.wav")));
    EXPECT_EQ(BASS_ERROR_FILEOPEN, handle(folder / "pipe.wav"));
    ASSERT_EQ(
        0, run("ffmpeg -v error -y -f lavfi -i testsrc=s=64x64:d=1 -c:v mpeg4 " + (folder / "silent.mp4")));
    EXPECT_EQ(BASS_ERROR_NOTAUDIO, handle(folder / "silent.mp4"));
    // Names of other alphabets, and one that looks like an address.
    writeWav(folder / "Größe – ελ 音.wav", wanderingTones(44'100, 2, 5000), 44'100, 2);
    writeWav(folder / "http:x.wav", wanderingTones(44'100, 2, 5000), 44'100, 2);
    EXPECT_EQ(BASS_OK, handle(folder / "Größe – ελ 音.wav"));
    EXPECT_EQ(BASS_OK, handle(folder / "http:x.wav"));
}

// A WAV whose header promises more than the file holds, or nothing at all, as recorders leave it after a
// power cut.
TEST(DamagedFiles, WavHeadersThatLie) {
    const Folder folder;
    const std::string path = folder / "a.wav";
    writeWav(path, wanderingTones(44'100, 2, 10'000), 44'100, 2);
    const auto whole = readBytes(path);
    for (const std::uint32_t claimed : {0U, 0xFFFFFFFFU, 0x7FFFFFFFU, 30'000U}) {
        auto bytes = whole;
        for (int i = 0; i < 4; ++i)
            bytes[static_cast<std::size_t>(40 + i)] = static_cast<char>(claimed >> (8 * i));
        writeBytes(path, bytes);
        int error = 0;
        const auto decoder = makeFileDecoders()->openFile(path, error);
        ASSERT_TRUE(decoder) << claimed;
        EXPECT_EQ(claimed == 30'000U ? 7'500U : 10'000U, *decoder->length()) << claimed;
        EXPECT_EQ(*decoder->length() * 2, readWhole(*decoder).size()) << claimed;
    }
}

/// What a fuzzer found once goes its way through the fuzzer's own target, which ends the program where one fails.
TEST(DamagedFiles, WhatWasFoundHolds) {
    const std::filesystem::path found = sourceDir() + "/tests/fuzz/found/decoder_fuzz";
    ASSERT_FALSE(std::filesystem::is_empty(found));
    for (const auto& entry : std::filesystem::directory_iterator(found)) {
        const std::vector<char> bytes = readBytes(entry.path());
        EXPECT_EQ(LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()),
                  0);
    }
}

}  // namespace
}  // namespace zv::test
