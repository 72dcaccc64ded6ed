// Tracker modules, written by the test itself.
#include <utility>

#include "tests/sound/workshop.h"

namespace zv::test {
namespace {

constexpr std::uint64_t rowFrames = 6 * 882;  // six ticks a row at 125 beats

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
        EXPECT_EQ(rows * rowFrames, *decoder->length()) << "the song and no fade behind it";

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

// Each tick is cut to whole frames: many tempos, whose ticks are whole at no rate but their own.
TEST(Modules, LengthCountsEachTick) {
    const Folder folder;
    constexpr std::size_t rows = 32, cells = 1084;
    auto bytes = tinyModule(rows);
    const auto tick = [](std::size_t tempo) { return 44'100 * 5 / (2 * tempo); };
    std::uint64_t expected = 0;
    std::size_t before = 125;
    for (std::size_t row = 0; row < rows; ++row) {
        const std::size_t tempo = 33 + 7 * row;
        char* second = bytes.data() + cells + row * 16 + 4;
        second[2] = 0x0F, second[3] = static_cast<char>(tempo);
        expected +=
            tick(std::exchange(before, tempo)) + 5 * tick(tempo);  // it holds from a row's second tick
    }
    writeBytes(folder / "tempos.mod", bytes);
    int error = -1;
    const auto decoder = makeFileDecoders()->openModule(folder / "tempos.mod", error);
    ASSERT_TRUE(decoder);
    EXPECT_EQ(expected, *decoder->length());
    const auto whole = readWhole(*decoder);
    EXPECT_GT(*std::max_element(whole.end() - 2000, whole.end()), 0.05F) << "it sounds to its end";
}

// Gone to by a seek, the end asks for nothing to be rendered: an hour would take seconds and a gigabyte.
TEST(Modules, AtTheEndOfAnHourThereIsNothingToDo) {
    const Folder folder;
    auto bytes = tinyModule(64);
    constexpr std::size_t positions = 950, lastCell = 1084 + 63 * 16;
    bytes[positions] = 127;                                  // all of the same pattern
    bytes[lastCell + 2] = 0x0F, bytes[lastCell + 3] = 0x1F;  // instead of the jump: 31 ticks a row
    writeBytes(folder / "long.mod", bytes);
    int error = -1;
    const auto decoder = makeFileDecoders()->openModule(folder / "long.mod", error);
    ASSERT_TRUE(decoder);
    ASSERT_GT(*decoder->length(), 44'100U * 1000);
    const std::clock_t before = std::clock();
    std::vector<float> some(2 * 100);
    EXPECT_TRUE(decoder->seek(*decoder->length()));
    EXPECT_EQ(0U, decoder->read(some));
    EXPECT_TRUE(decoder->ended());
    EXPECT_LT(static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC, 0.2);
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
