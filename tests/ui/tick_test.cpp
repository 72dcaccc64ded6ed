// The display's tick: counter, warning, bars, colours, end of play; the meters.

#include "platform/rehearsal/virtual_clock.h"
#include "startup/errors.h"
#include "startup/settings/bars_settings.h"
#include "startup/settings/clock_settings.h"
#include "startup/settings/display_settings.h"
#include "startup/settings/meters_settings.h"
#include "startup/settings/playing_settings.h"
#include "startup/settings/warning_settings.h"
#include "tests/ui/window_test.h"
#include "ui/records/soon.h"
#include "ui/records/timers.h"
#include "ui/screen/digits.h"
#include "ui/screen/error_mark.h"
#include "ui/screen/flashing.h"
#include "ui/screen/warning.h"

namespace zv::test {

class TickTest : public WindowTest {
  protected:
    /// Digits from the left as they are seen; hidden ones are left out.
    std::string shown() {
        std::string text;
        for (const Control* digit : frmMain().display.digits()) {
            text += digit->visible ? digit->caption() : "";
        }
        return text;
    }
};

TEST_F(TickTest, digits) {  // of times that no other test has
    const struct {
        double seconds;
        int hundredths;
        const char* shown;
    } cases[] = {{3.96, 0, "04.0"},    {59.96, 0, "1:00.0"},  {59.96, 1, "59.96"},
                 {1000, 0, "16:40.0"}, {6000, 0, "100:00.0"}, {599.25, 1, "9:59.25"}};
    for (const auto& c : cases) {
        displaySettings.DispCSec = c.hundredths;
        WriteDigits(c.seconds);
        EXPECT_EQ(shown(), c.shown) << c.seconds;
    }
}

TEST_F(TickTest, whatComesSoonComesInItsOrder) {
    std::string ran;
    for (const char task : {'a', 'b', 'c'}) Soon("test", [&ran, task] { ran += task; });
    EXPECT_EQ(ran, "");
    pass(50);
    EXPECT_EQ(ran, "abc");
}

TEST_F(TickTest, theWarningBlinksWhatItIsSetTo) {
    constexpr Colour kBack = 0x112233, kBackOther = 0x445566;
    barSettings.JRemLevColBg = kBack;
    barSettings.JRemLevColBgPl = kBackOther;
    const Colour warns = warningSettings.RemainColor, gone = displaySettings.DispBackCol,
                 bar = barSettings.JRemLevCol;
    const struct {
        int rate, target, transparent;
        bool other;
        std::set<Colour> digits, bars;
    } cases[] = {{100, 2, 1, false, {warns, gone}, {bar, playingSettings.PlayingColor}},
                 {100, 2, 1, true, {warns, gone}, {bar, playingSettings.PlayingColorAnotherPal}},
                 {100, 1, 0, true, {warns}, {bar, kBackOther}},
                 {100, 0, 1, false, {warns, gone}, {bar}},
                 {0, 2, 1, false, {warns}, {bar}}};
    load(2, 900);
    load(3, 60'000);  // its bar does not blink, which is held at every tick
    for (const auto& c : cases) {
        warningSettings.BlinkWarn = static_cast<std::uint8_t>(c.rate);
        warningSettings.BlinkTarget = static_cast<std::uint8_t>(c.target);
        barSettings.JRemLevTrBg = static_cast<std::uint8_t>(c.transparent);
        load(1, 6000);
        press(1), press(3);
        rec(1).PlayingOtherPal = c.other;
        pass(3500);
        std::set<Colour> digits, bars;
        for (int i = 0; i < 8; ++i) {
            pass(50);
            digits.insert(frmMain().display.lblPosSecU.foreColor);
            bars.insert(Button(1)->JRemLev.backColor);
        }
        EXPECT_EQ(digits, c.digits);
        EXPECT_EQ(bars, c.bars);
        if (c.rate > 0) {  // one that is shorter than the warning's time ends it, in whatever phase
            press(2);
            pass(50);
            EXPECT_EQ(Button(1)->JRemLev.backColor, bar);
            EXPECT_EQ(frmMain().display.lblPosSecU.foreColor, displaySettings.CountDownColor);
        }
        rec(1).PlayingOtherPal = false;
        evStop();
        pass(100);
    }
    // The settings window shows how it looks: bars of all buttons, whatever sounds.
    BlinkTestOn = true;
    timers().TimerWarnBlink.setInterval(100);
    warningSettings.BlinkWarn = 100;
    warningSettings.BlinkTarget = 2;
    bool shown = false;
    for (int i = 0; i < 8; ++i) pass(50), shown = shown || Button(4)->JRemLev.visible;
    EXPECT_TRUE(shown);
    EXPECT_EQ(Button(4)->JRemLev.width, button(4).width - 60);
    BlinkTestOn = false;
    pass(100);
    EXPECT_FALSE(Button(4)->JRemLev.visible);
    warningSettings.WarnAllJ = 1;  // also of a sound that is shorter than the warning's time
    press(2);
    pass(300);
}

TEST_F(TickTest, theMarkOfTheDisplayFlashesForAWhile) {
    // What failed or waits to be saved stays until it is mended.
    const Control& mark = frmMain().display.lblErr;
    for (const char* mode : {"no", "save", "wait", "notification", "ok"}) {
        FlashPhase = false;
        ErrDisp(mode, 1, "something");
        int changes = 0, ms = 0;
        for (Colour last = mark.foreColor; ErrOneShot != 0 && ms < 20'000; last = mark.foreColor) {
            pass(100);
            ms += 100;
            changes += last != mark.foreColor ? 1 : 0;
        }
        EXPECT_EQ(changes, 20) << mode;
        EXPECT_NEAR(ms, 10'250, 250) << mode;
        EXPECT_EQ(mark.foreColor, clockSettings.DateTimeColor) << mode;
        EXPECT_EQ(mark.visible, std::string("no save wait").find(mode) != std::string::npos) << mode;
        HideErrMark();
    }
}

TEST_F(TickTest, metersFollowTheLoudestAndFallIfTheyShould) {
    load(1, 1000);  // a sine at half scale
    for (const int falls : {1, 0}) {
        meterSettings.VUpersist = static_cast<std::uint8_t>(falls);
        press(1);
        std::vector<int> left;
        for (const int ms : {400, 100, 700}) {
            pass(ms);
            left.push_back(frmMain().VuL.value);
            EXPECT_EQ(frmMain().VuR.value, left.back()) << ms;
            if (ms == 400) evStop();
        }
        EXPECT_TRUE(left[0] >= 47 && left[0] <= 53 && (left[1] > 0) == (falls == 1) && left[1] < 40);
        EXPECT_EQ(left[2], 0);
    }
}

}  // namespace zv::test
