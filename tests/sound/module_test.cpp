// Tracker modules, written by the test itself.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "engine/bass.h"
#include "platform/file_decoders/file_decoders.h"
#include "tests/sound/workshop.h"

namespace zv::test {
namespace {

constexpr std::size_t headerBytes = 1084;
constexpr std::size_t patternBytes = 64 * 4 * 4;
constexpr std::size_t waveBytes = 64;
constexpr double rowSeconds = 6 * 2.5 / 125;  // six ticks a row at 125 beats

/// A four-channel module of one pattern: a looped wave, struck on every eighth row, and after `rows` rows a
/// jump back to the beginning, which would go on for ever.
std::vector<char> tinyModule(int rows) {
    std::vector<char> bytes(headerBytes + patternBytes + waveBytes, 0);
    std::memcpy(bytes.data(), "tiny", 4);
    char* sample = bytes.data() + 20;
    sample[23] = waveBytes / 2;  // length in words
    sample[25] = 64;             // volume
    sample[29] = waveBytes / 2;  // loop from 0, this many words
    bytes[950] = 1;              // one position
    bytes[951] = 127;
    std::memcpy(bytes.data() + 1080, "M.K.", 4);
    for (int row = 0; row < rows; row += 8) {
        char* cell = bytes.data() + headerBytes + row * 16;
        cell[0] = 0x01, cell[1] = static_cast<char>(0xAC);  // a middle note of sample 1
        cell[2] = 0x10;
    }
    char* last = bytes.data() + headerBytes + (rows - 1) * 16;
    last[2] = static_cast<char>((last[2] & 0xF0) | 0x0B), last[3] = 0;  // jump to position 0
    for (std::size_t i = 0; i < waveBytes; ++i)
        bytes[headerBytes + patternBytes + i] = static_cast<char>(
            std::lround(100 * std::sin(2 * 3.14159265 * static_cast<double>(i) / waveBytes)));
    return bytes;
}

TEST(Modules, ExactLengthExactSeeksNoEndlessRepeat) {
    const Folder folder;
    constexpr int rows = 32;
    for (const char* name : {"tiny.mod", "TINY.MOD", "misnamed.mp3"}) {
        writeBytes(folder / name, tinyModule(rows));
        int error = -1;
        const auto decoder = makeFileDecoders()->openModule(folder / name, error);
        ASSERT_TRUE(decoder) << name;
        EXPECT_EQ(0, error);
        EXPECT_EQ(44'100U, decoder->format().rate);
        EXPECT_NEAR(rows * rowSeconds * 44'100, static_cast<double>(*decoder->length()), 64);

        // A seek ahead of all that was rendered gives the same as a read from the start.
        const std::size_t ahead = *decoder->length() / 2 + 13;
        std::vector<float> part(2 * 500);
        ASSERT_TRUE(decoder->seek(ahead));
        ASSERT_EQ(500U, decoder->read(part));
        ASSERT_TRUE(decoder->seek(0));
        const auto whole = readWhole(*decoder);
        ASSERT_EQ(*decoder->length() * 2, whole.size());
        EXPECT_TRUE(decoder->ended());
        EXPECT_TRUE(
            std::equal(part.begin(), part.end(), whole.begin() + static_cast<std::ptrdiff_t>(ahead * 2)));
        EXPECT_GT(*std::max_element(whole.begin(), whole.end()), 0.05F);
        EXPECT_GT(*std::max_element(whole.end() - 2000, whole.end()), 0.05F) << "it sounds to its end";
        EXPECT_FALSE(decoder->seek(*decoder->length() + 1));
    }
}

TEST(Modules, WhatIsNoneIsRefused) {
    const Folder folder;
    const auto decoders = makeFileDecoders();
    int error = 0;
    EXPECT_FALSE(decoders->openModule(folder / "missing.mod", error));
    EXPECT_EQ(BASS_ERROR_FILEOPEN, error);
    writeWav(folder / "sound.mod", wanderingTones(44'100, 2, 1000), 44'100, 2);
    writeBytes(folder / "empty.mod", {});
    const auto whole = tinyModule(32);
    writeBytes(folder / "cut.mod", std::span(whole).first(500));
    for (const char* name : {"sound.mod", "empty.mod", "cut.mod"}) {
        EXPECT_FALSE(decoders->openModule(folder / name, error)) << name;
        EXPECT_EQ(BASS_ERROR_FILEFORM, error) << name;
    }
}

}  // namespace
}  // namespace zv::test
