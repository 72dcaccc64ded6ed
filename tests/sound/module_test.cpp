// Tracker modules, written by the test itself and as they are published.
#include <fstream>
#include <libopenmpt/libopenmpt.hpp>
#include <sstream>

#include "tests/sound/workshop.h"
#include "tests/support/places.h"

namespace zv::test {
namespace {

/// Frames of a song that is played to the end of its last row.
std::uint64_t framesPlayed(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream log;
    openmpt::module played(file, log, {{"load.skip_samples", "1"}});
    played.ctl_set_text("play.at_end", "stop");
    std::vector<float> unheard(4096);
    std::uint64_t frames = 0;
    while (const std::size_t more = played.read(44'100, unheard.size(), unheard.data())) frames += more;
    return frames;
}

TEST(Modules, LengthIsThatOfTheSongPlayed) {
    const Folder folder;
    std::mt19937 random(9);
    for (int k = 0; k < 40; ++k) {  // every command, tempos among them, in ever more cells
        auto bytes = tinyModule(64);
        bytes[950] = static_cast<char>(1 + k % 3);  // positions
        for (std::size_t cell = 1084; cell < 1084 + 64 * 16; cell += 4) {
            if (static_cast<int>(random() % 80) > k) continue;
            bytes[cell + 2] = static_cast<char>((bytes[cell + 2] & 0xF0) | (random() & 0x0F));
            bytes[cell + 3] = random() % 3 == 0 ? '\x20' : static_cast<char>(random());  // the least tempo
        }
        writeBytes(folder / ("chance" + std::to_string(k) + ".mod"), bytes);
    }
    writeBytes(folder / "TINY.MOD", tinyModule(32));
    writeBytes(folder / "misnamed.mp3", tinyModule(32));
    ASSERT_EQ(0, run("cd " + folder.path().string() +
                     " && cp /usr/share/games/heroes/mod/*.xm . && python3 " + sourceDir() +
                     "/tools/make_sound_seeds.py seeds modules && for k in seeds/*; do tail -c +2 $k "
                     ">${k#*/}.seed; done"));
    int songs = 0;
    for (const auto& file : std::filesystem::directory_iterator(folder.path())) {
        if (file.is_directory()) continue;
        ++songs;
        int error = -1;
        const auto decoder = makeFileDecoders()->openModule(file.path(), error);
        ASSERT_TRUE(decoder) << file.path();
        EXPECT_EQ(0, error);
        EXPECT_EQ(framesPlayed(file.path()), *decoder->length()) << file.path();
    }
    EXPECT_EQ(40 + 2 + 13 + 5, songs);
}

// An endless one is cut after an hour. Gone to by a seek, its end asks for nothing to be rendered, which would take seconds
// and a gigabyte.
TEST(Modules, AtTheEndOfAnHourThereIsNothingToDo) {
    const Folder folder;
    for (const char ticks : {'\x1F', '\x20'}) {  // 31 a row, or the slowest tempo
        auto bytes = tinyModule(64);
        constexpr std::size_t positions = 950, lastCell = 1084 + 63 * 16;
        bytes[positions] = 127;                                   // all of the same pattern
        bytes[lastCell + 2] = 0x0F, bytes[lastCell + 3] = ticks;  // instead of the jump
        writeBytes(folder / "long.mod", bytes);
        int error = -1;
        const auto decoder = makeFileDecoders()->openModule(folder / "long.mod", error);
        ASSERT_TRUE(decoder);
        EXPECT_EQ(44'100U * 3'600, *decoder->length());
        const std::clock_t before = std::clock();
        std::vector<float> some(2 * 100);
        EXPECT_TRUE(decoder->seek(*decoder->length()));
        EXPECT_EQ(0U, decoder->read(some));
        EXPECT_TRUE(decoder->ended());
        EXPECT_LT(static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC, 0.2);
    }
}

}  // namespace
}  // namespace zv::test
