// What a press does, heard on the outputs.

#include <cmath>

#include "show.h"

namespace zv::test {
namespace {

constexpr std::size_t kFadeFrames = 441;    // 10 ms
constexpr std::size_t kPeriodFrames = 441;  // of the devices

TEST(Press, SoundsWithinOnePeriodInEveryFormatRightAfterThePaletteWasOpened) {
    Show show;
    show.tone("tone.wav", 2);
    show.convert("tone.wav", "tone.flac");
    show.convert("tone.wav", "tone.ogg", "-c:a libvorbis -q:a 6");
    show.convert("tone.wav", "tone.mp3", "-c:a libmp3lame -b:a 192k");
    show.convert("tone.wav", "tone.m4a", "-c:a aac -b:a 192k");
    std::filesystem::copy(test::sourceDir() + "/data/Audio_Sample/Jazz Bed.mod",
                          show.home() / "Audio_Sample/tone.mod");
    const std::string formats[] = {"wav", "flac", "ogg", "mp3", "m4a", "mod"};
    std::string palettes = "[Test]\r\nThis_palette_is_empty=Yes\r\n", script;
    int at = 0;
    for (const std::string& format : formats) {
        palettes += "[" + format + "]\r\nPath_0=Audio_Sample\\tone." + format + "\r\n";
        // Off the devices' period, so that the press has to wait for the next one.
        const std::string time = "at " + std::to_string(at + 503) + " ";
        script += time + "pick " + format + "\n" + time + "press 0\n" + "at " + std::to_string(at + 903) +
                  " click btStop\n";
        at += 1000;
    }
    show.write("palette.ini", palettes);
    ASSERT_EQ(show.perform(script + "at " + std::to_string(at) + " end\n"), 0) << show.messages();

    const Sound outputs[] = {show.heard("main.wav"), show.heard("aux.wav")};
    for (std::size_t f = 0; f < std::size(formats); ++f) {
        const Sound file = decoded(show.home() / "Audio_Sample" / ("tone." + formats[f]));
        const std::size_t pressed = framesOf(static_cast<double>(f) * 1000 + 503);
        const std::size_t start = framesOf(static_cast<double>(f) * 1000 + 510);
        for (const Sound& output : outputs) {
            EXPECT_EQ(peak(output, start - kPeriodFrames, start), 0) << formats[f] << ": silence before";
            const std::size_t first = firstSound(output, start, 1e-6F);
            EXPECT_LE(first, pressed + kPeriodFrames) << formats[f];
            // From the end of the fade-in to the stop: not a bit of the file is changed, so there is no gap
            // either.
            const std::size_t length = framesOf(390) - kFadeFrames;
            EXPECT_EQ(sameBits(output, start + kFadeFrames, file, kFadeFrames, length), length) << formats[f];
        }
    }
}

TEST(Press, OfAStartBeyondTheEndPlaysFromTheBeginningAndSaysSo) {
    Show show;
    show.tone("tone.wav", 2, 1000, 0.5);
    show.write(
        "palette.ini",
        "[Test]\r\nPath_0=Audio_Sample\\tone.wav\r\nCueStart_0=999999\r\nPath_1=Audio_Sample\\tone.wav\r\n");
    EXPECT_EQ(show.perform(
                  "at 500 expect b_Jingle(0).toolTip \"Start beyond the end: from 0\"\n"
                  "at 500 expect b_Jingle(1).toolTip \"\"\nat 500 press 1\nat 600 expect lblQuiet \"\"\n"
                  "at 700 click btStop\nat 1000 press 0\n"
                  "at 1100 expect lblQuiet \"Start beyond the end: from 0\"\nat 5000 expect lblQuiet \"\"\n"
                  "at 6000 end\n"),
              0)
        << show.messages();
    const Sound output = show.heard("main.wav");
    EXPECT_GT(peak(output, framesOf(1020), framesOf(2980)), 0.4F) << "all of it";
    EXPECT_EQ(peak(output, framesOf(3050), framesOf(5900)), 0) << "once";
}

TEST(Press, ArrivesAtItsOwnLevelOnBothOutputs) {
    Show show;
    show.tone("tone.wav", 2, 1000, 0.5);
    show.write("palette.ini", "[Test]\r\nPath_0=Audio_Sample\\tone.wav\r\n");
    ASSERT_EQ(show.perform("at 100 press 0\nat 1500 end\n"), 0) << show.messages();
    for (const char* name : {"main.wav", "aux.wav"}) {
        const Sound output = show.heard(name);
        double sum = 0;
        const std::size_t from = framesOf(200), to = framesOf(1200);
        for (std::size_t i = from; i < to; ++i) sum += static_cast<double>(output.left(i)) * output.left(i);
        const double level = 10 * std::log10(2 * sum / static_cast<double>(to - from) / 0.25);
        EXPECT_NEAR(level, 0, 0.01) << name;
    }
}

TEST(Press, ASecondOneStopsAndTheCounterRunsDown) {
    Show show;
    show.tone("ten.wav", 10);
    show.tone("short.wav", 0.5);
    show.write("palette.ini", "[Test]\r\nPath_0=Audio_Sample\\ten.wav\r\nPath_1=Audio_Sample\\short.wav\r\n");
    const int status = show.perform(
        "at 0 expect J(0).State 0\n"
        "at 0 expect J(0).Duration 10\n"
        "at 5 press 0\n"
        "at 100 expect J(0).State 1\n"
        "at 100 expect J(0).Playing -1\n"
        "at 100 expect b_Jingle(0).backColor 12648384\n"  // PlayingColor
        "at 1000 expect lblPosSecU 9\n"
        "at 3000 expect lblPosSecU 7\n"
        "at 5000 expect lblPosSecU 5\n"
        "at 5003 press 0\n"
        "at 5200 expect J(0).State 0\n"
        "at 5200 expect J(0).Playing 0\n"
        "at 5200 expect lblPosSecU 0\n"
        "at 6000 press 1\n"
        "at 6300 expect J(1).State 1\n"
        "at 6800 expect J(1).State 0\n"  // its end was noticed
        "at 7000 end\n");
    EXPECT_EQ(status, 0) << show.messages();
    const Sound heard = show.heard();
    EXPECT_GT(peak(heard, framesOf(4980), framesOf(5000)), 0.49F);
    EXPECT_EQ(peak(heard, framesOf(5020), framesOf(6000)), 0);
    EXPECT_NEAR(static_cast<double>(firstSound(heard, framesOf(5020))), static_cast<double>(framesOf(6000)),
                20);
    EXPECT_EQ(peak(heard, framesOf(6500) + 1, framesOf(7000)), 0);
}

TEST(Press, APaletteChangeKeepsWhatSounds) {
    Show show;
    show.tone("long.wav", 3);
    show.tone("other.wav", 1, 440);
    show.write("palette.ini",
               "[Test]\r\nPath_0=Audio_Sample\\long.wav\r\n[Next]\r\nPath_0=Audio_Sample\\other."
               "wav\r\nBTNCol_0=FF0000\r\n");
    const int status = show.perform(
        "at 100 press 0\n"
        "at 1000 pick Next\n"
        "at 1100 expect J(0).PlayingOtherPal -1\n"
        "at 1100 expect b_Jingle(0).backColor 16777215\n"  // PlayingColorAnotherPal
        "at 1100 expect J(0).Path Audio_Sample\\long.wav\n"
        "at 3300 expect J(0).PlayingOtherPal 0\n"
        "at 3300 expect J(0).Path Audio_Sample\\other.wav\n"
        "at 3400 press 0\n"
        "at 3500 expect J(0).State 1\n"
        "at 3600 end\n");
    EXPECT_EQ(status, 0) << show.messages();
    const Sound heard = show.heard(), file = decoded(show.home() / "Audio_Sample/long.wav");
    const std::size_t length = file.frames() - kFadeFrames;
    EXPECT_EQ(sameBits(heard, framesOf(100) + kFadeFrames, file, kFadeFrames, length), length);
    EXPECT_GT(peak(heard, framesOf(3450), framesOf(3600)), 0.4F);
}

}  // namespace
}  // namespace zv::test
