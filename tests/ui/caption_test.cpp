// Texts: captions of paths, durations, dates.

#include "startup/settings/labels_settings.h"
#include "startup/settings/program_settings.h"
#include "tests/ui/window_test.h"
#include "ui/screen/captions.h"
#include "ui/screen/clock.h"

namespace zv::test {

class CaptionTest : public WindowTest {};

TEST_F(CaptionTest, captionsOfPaths) {
    const struct {
        int format, blanks;
        const char *path, *caption;
    } cases[] = {
        {0, 1, "", ""},
        {0, 1, "C:\\a.mp3", "a"},
        {0, 1, "C:\\.mp3", ""},  // a drive and less than 8 characters
        {0, 1, "Audio_Sample\\my_file.mp3", "my file"},
        {0, 0, "Audio_Sample\\my_file.mp3", "my_file"},
        {0, 1, "/sounds/Top.Hour.OGG", "Top.Hour"},
        {0, 1, "x\\song.aiff", "song"},
        {0, 1, "x\\notes.txt", "notes.txt"},
        {1, 1, "x\\LOUD Äpfel.wav", "loud äpfel"},
        {2, 1, "x\\quiet éclair.wav", "QUIET ÉCLAIR"},
        {3, 1, "x\\my_file.mp3", "My File"},
        {3, 1, "x\\the BBC (live at six).wav", "The BBC (Live At Six)"},
        {4, 1, "x\\the BBC (LIVE).wav", "The Bbc (Live)"},
        {5, 1, "x\\élan VITAL.wav", "Élan VITAL"},
        {6, 1, "x\\ÉLAN VITAL.wav", "Élan vital"},
        {2, 1, "x\\日本 jingle.wav", "日本 JINGLE"},
    };
    for (const auto& c : cases) {
        labelSettings.JLabelFormat = c.format;
        labelSettings.JU2Sp = c.blanks;
        EXPECT_EQ(btCaption(c.path), c.caption) << c.path << " as " << c.format;
    }
}

TEST_F(CaptionTest, durations) {
    const struct {
        double seconds;
        const char* text;
    } cases[] = {{0, "0.0"},        {0.04, "0.0"},       {0.05, "0.1"},   {2, "2.0"},
                 {7.94, "7.9"},     {7.96, "8.0"},       {59.94, "59.9"}, {59.96, "1:00.0"},
                 {104.4, "1:44.4"}, {3600.5, "60:00.5"}, {61, "1:01.0"}};
    for (const auto& c : cases) {
        EXPECT_EQ(seconds2msd(c.seconds), c.text);
    }
    EXPECT_EQ(seconds2msd(""), "");
    EXPECT_EQ(seconds2msd("12,5"), "12.5");
}

TEST_F(CaptionTest, theDurationStandsAboveTheName) {
    load(3, 2500);
    EXPECT_EQ(button(3).caption(), "2.5\r\nsound 3");
    labelSettings.JDispDuration = 0;
    RewriteJingle();
    EXPECT_EQ(button(3).caption(), "sound 3");
    labelSettings.JDispDuration = 1;
    labelSettings.JDispDurationEncap = "(duration)";
    RewriteJingle();
    EXPECT_EQ(button(3).caption(), "(2.5)\r\nsound 3");
}

TEST_F(CaptionTest, datesAndTimes) {
    const WallTime t{2026, 11, 7, 6, 15, 4, 9, 0};
    const struct {
        const char *format, *text;
    } dates[] = {{"ddd dd mmmm yyyy", "Sat 07 November 2026"},
                 {"mmmm dd ddd yyyy", "November 07 Sat 2026"},
                 {"ddd mmmm dd yyyy", "Sat November 07 2026"},
                 {"yyyy mmmm dd ddd", "2026 November 07 Sat"}};
    for (const auto& c : dates) {
        EXPECT_EQ(FormatDate(c.format, t), c.text);
    }
    programSettings.Language = "Deutsch";
    EXPECT_EQ(FormatDate("ddd dd mmmm yyyy", t), "Sa., 07. November 2026");
    EXPECT_EQ(FormatDate("yyyy mmmm dd ddd", t), "2026 November 07. Sa.");
    programSettings.Language = "English";
    const struct {
        const char *format, *text;
    } times[] = {{"HH:mm:ss", "15:04:09"}, {"h:mm AM/PM", "3:04 PM"}, {"hh:mm:ss AM/PM", "03:04:09 PM"}};
    for (const auto& c : times) {
        EXPECT_EQ(FormatTime(c.format, t), c.text);
    }
    EXPECT_EQ(FormatTime("h AM/PM", WallTime{2026, 1, 1, 0, 0, 5, 0, 0}), "12 AM");
}

}  // namespace zv::test
