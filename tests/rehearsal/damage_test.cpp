// Files that are not what they should be.

#include "show.h"

namespace zv::test {
namespace {

TEST(Damage, APaletteFileOfRandomBytesOpensAsAnEmptyList) {
    for (const unsigned seed : {1U, 2U, 3U}) {
        Show show;
        std::mt19937 chance(seed);
        std::string bytes(20000, '\0');
        for (char& c : bytes) c = static_cast<char>(chance());
        show.write("palette.ini", bytes);
        const int status = show.perform(
            "at 0 expect lstPal.items \"\"\n"
            "at 0 press 0\n"
            "at 100 press 5\n"
            "at 200 expect J(0).Path \"\"\n"
            "at 300 end\n");
        EXPECT_EQ(status, 0) << seed << ": " << show.messages();
        EXPECT_EQ(contents(show.home() / "palette.ini"), bytes)
            << "a file that is not understood is left alone";
    }
}

TEST(Damage, WithoutAnySoundOutputTheShowGoesOnAndTheDisplaySaysSo) {
    Show show;
    show.tone("tone.wav", 5);
    show.write("palette.ini", "[Test]\r\nPath_0=Audio_Sample\\tone.wav\r\n");
    const int status = show.perform(
        "at 100 expect lblDate No sound output: silent\n"
        "at 500 press 0\n"
        "at 600 expect J(0).State 1\n"
        "at 2000 expect lblPosSecU 3\n"
        "at 6000 expect J(0).State 0\n"
        "at 6000 end\n",
        "--outputs 0");
    EXPECT_EQ(status, 0) << show.messages() << show.result("events.log");
    EXPECT_EQ(peak(show.heard(), 0, framesOf(6000)), 0);
}

}  // namespace
}  // namespace zv::test
