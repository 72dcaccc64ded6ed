// Texts: captions of paths, dates.

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
        {0, 1, "C:\\.mp3", ""},  // a drive and less than 8 characters
        {0, 1, "Audio_Sample\\my_file.mp3", "my file"},
        {0, 0, "Audio_Sample\\my_file.mp3", "my_file"},
        {0, 1, "/sounds/Top.Hour.OGG", "Top.Hour"},
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
    load(1, 500);
    labelSettings.JLabelFormat = 2;
    RewriteJingle();
    EXPECT_EQ(button(1).caption(), "0.5\r\nSOUND 1");
}

TEST_F(CaptionTest, datesAndTimes) {
    const WallTime t{2026, 11, 7, 6, 15, 4, 9, 0};
    const auto dates = [&] {
        std::string all;
        for (const char* format : {"ddd dd mmmm yyyy", "mmmm dd ddd yyyy", "yyyy mmmm dd ddd"})
            all += FormatDate(format, t) + "|";
        return all;
    };
    EXPECT_EQ(dates(), "Sat 07 November 2026|November 07 Sat 2026|2026 November 07 Sat|");
    programSettings.Language = "Deutsch";
    EXPECT_EQ(dates(), "Sa., 07. November 2026|November 07. Sa., 2026|2026 November 07. Sa.|");
    programSettings.Language = "English";
    EXPECT_EQ(
        FormatTime("HH:mm:ss", t) + "|" + FormatTime("h:mm AM/PM", t) + "|" + FormatTime("hh:mm:ss AM/PM", t),
        "15:04:09|3:04 PM|03:04:09 PM");
    EXPECT_EQ(FormatDate("dd / mmm yyyy", t), "07 / Nov 2026");
    const DisplayControls& d = frmMain().display;
    DateTimeDemo(true), DateTimeUpdate();
    EXPECT_EQ(d.lblDate.caption() + d.lblTime.caption(), "Wed 23 September 2026 22:58:48");
    DateTimeDemo(false);
    EXPECT_NE(d.lblTime.caption(), " 22:58:48");
    EXPECT_EQ(FormatTime("h AM/PM", WallTime{2026, 1, 1, 0, 0, 5, 0, 0}), "12 AM");
}

}  // namespace zv::test
