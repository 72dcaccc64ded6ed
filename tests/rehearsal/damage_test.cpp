// Files that are not what they should be.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "show.h"

namespace zv::test {
namespace {

TEST(Damage, BadSoundFilesShowOnTheirButtonsAndDisturbNothing) {
    Show show;
    show.tone("good.wav", 1);
    show.convert("good.wav", "good.mp3", "-c:a libmp3lame");
    const auto samples = show.home() / "Audio_Sample";
    show.write("Audio_Sample/empty.wav", "");
    show.write("Audio_Sample/text.ogg", "This is no sound at all, whatever its name says.\n");
    show.write("Audio_Sample/cut.wav", contents(samples / "good.wav").substr(0, 44 + 44100));
    show.write("Audio_Sample/head.mp3", contents(samples / "good.mp3").substr(0, 60));
    std::filesystem::copy(samples / "good.mp3", samples / "misnamed.wav");
    show.write("palette.ini",
               "[Test]\r\nPath_0=Audio_Sample\\gone.wav\r\nPath_1=Audio_Sample\\empty.wav\r\nPath_2=Audio_"
               "Sample\\text.ogg\r\n"
               "Path_3=Audio_Sample\\cut.wav\r\nPath_4=Audio_Sample\\head.mp3\r\nPath_5=Audio_"
               "Sample\\misnamed.wav\r\n"
               "Path_6=Audio_Sample\\good.wav\r\nPath_7=Audio_Sample\\notes.txt\r\n");
    const int status = show.perform(
        "at 0 expect J(0).MissingFile -1\n"
        "at 0 expect b_Jingle(0).toolTip != \"\"\n"
        "at 100 expect b_Jingle(0).foreColor 255\n"
        "at 0100 expect J(1).Unplayable -1\n"
        "at 100 expect J(1).BassErr != 0\n"
        "at 100 expect b_Jingle(1).toolTip != \"\"\n"
        "at 100 expect J(2).Unplayable -1\n"
        "at 100 expect J(3).Unplayable 0\n"
        "at 100 expect J(3).Duration 0.25\n"
        "at 100 expect J(5).Unplayable 0\n"
        "at 100 expect J(6).Kind 1\n"
        "at 100 expect J(7).Path \"\"\n"
        "at 200 press 1\n"
        "at 210 press 2\n"
        "at 220 press 4\n"
        "at 230 press 7\n"
        "at 240 press 29\n"
        "at 400 expect J(1).State 0\n"
        "at 500 press 3\n"
        "at 1000 press 5\n"
        "at 1100 press 6\n"
        "at 1200 expect J(5).State 1\n"
        "at 1200 expect J(6).State 1\n"
        "at 1600 end\n");
    EXPECT_EQ(status, 0) << show.messages() << show.result("events.log");
    EXPECT_EQ(show.result("events.log").find("\treport\t"), std::string::npos) << show.result("events.log");
    const Sound heard = show.heard();
    EXPECT_EQ(peak(heard, 0, framesOf(220)), 0) << "nothing bad makes a noise";
    EXPECT_GT(peak(heard, framesOf(550), framesOf(740)), 0.4F) << "what there is of a cut file is played";
    EXPECT_EQ(peak(heard, framesOf(780), framesOf(1000)), 0);
    EXPECT_GT(peak(heard, framesOf(1050), framesOf(1590)), 0.4F);
}

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
