// What a press sounds like on the outputs, to the bit.

#include <cmath>

#include "show.h"

namespace zv::test {
namespace {

constexpr std::size_t kFadeFrames = 441;    // 10 ms
constexpr std::size_t kPeriodFrames = 441;  // of the devices

TEST(Press, SoundsWithinOnePeriodInEveryFormatRightAfterThePaletteWasOpened) {
    Show show;
    show.tone("tone.wav", 2);
    const std::pair<std::string, std::string> formats[] = {{"wav", ""},
                                                           {"flac", ""},
                                                           {"ogg", "-c:a libvorbis -q:a 6"},
                                                           {"mp3", "-c:a libmp3lame -b:a 192k"},
                                                           {"m4a", "-c:a aac -b:a 192k"},
                                                           {"mod", ""}};
    std::string palettes = "[Test]\r\nThis_palette_is_empty=Yes\r\n", script;
    int at = 0;
    for (const auto& [format, options] : formats) {
        const std::string file = show.sound("tone." + format);
        if (format == "mod") {
            std::filesystem::copy(test::sourceDir() + "/data/Audio_Sample/Jazz Bed.mod", file);
        } else if (format != "wav") {
            EXPECT_EQ(std::system(("ffmpeg -y -loglevel error -i \"" + show.sound("tone.wav") + "\" " +
                                   options + " \"" + file + "\" < /dev/null")
                                      .c_str()),
                      0);
        }
        palettes += "[" + format + "]\r\nPath_0=Audio_Sample\\tone." + format + "\r\n";
        // Off the devices' period, so that the press has to wait for the next one.
        const std::string time = "at " + std::to_string(at + 503) + " ";
        script += time + "pick " + format + "\n" + time + "press 0\n" + "at " + std::to_string(at + 903) +
                  " click btStop\n";
        at += 1000;
    }
    show.write("palette.ini", palettes);
    show.passes(script + "at " + std::to_string(at) + " end\n");

    for (const char* output : {"main.wav", "aux.wav"}) {
        const Heard heard = show.heard(output);
        double ms = 0;
        for (const auto& [format, options] : formats) {
            const std::size_t pressed = framesOf(ms + 503), start = framesOf(ms + 510);
            EXPECT_EQ(heard.loudest(start - kPeriodFrames, start), 0) << format << ": silence before";
            EXPECT_LE(heard.firstSound(start), pressed + kPeriodFrames) << format;
            // From the end of the fade-in to the stop: not a bit of the file is changed, so there is no gap
            // either.
            const Heard file = decoded(show.sound("tone." + format));
            const std::size_t length = framesOf(390) - kFadeFrames;
            EXPECT_EQ(sameBits(heard, start + kFadeFrames, file, kFadeFrames, length), length) << format;
            ms += 1000;
        }
        // The first of them is the tone at its own level.
        double sum = 0;
        const std::size_t from = framesOf(600), to = framesOf(900);
        for (std::size_t i = from; i < to; ++i) sum += static_cast<double>(heard.at(i)) * heard.at(i);
        EXPECT_NEAR(10 * std::log10(2 * sum / static_cast<double>(to - from) / 0.25), 0, 0.01) << output;
    }
}

}  // namespace
}  // namespace zv::test
