// Where the windows stand on the screens, and what stands in the main one after another grid; its places are held by
// screen_test.cpp.

#include "ui/screen/layout.h"
#include "startup/settings/window_settings.h"
#include "tests/ui/window_test.h"
#include "ui/screen/layout_grid.h"
#include "ui/screen/window_place.h"
#include "ui/windows/question_window.h"
#include "ui/windows/rename_window.h"

namespace zv::test {

namespace {

class LayoutTest : public WindowTest {};

}  // namespace

/// Sizes and places of a window in pixels.
struct Place {
    int left, top, width, height;
    bool operator==(const Place&) const = default;
};
void PrintTo(const Place& p, std::ostream* out) {
    *out << p.left << "," << p.top << " " << p.width << "x" << p.height;
}
Place placeOf(const Control& c) {
    return {c.left / kTwipsPerPixel, c.top / kTwipsPerPixel, c.width / kTwipsPerPixel,
            c.height / kTwipsPerPixel};
}
void put(Control& window, const Place& p) {
    window.left = p.left * kTwipsPerPixel;
    window.top = p.top * kTwipsPerPixel;
    window.width = p.width * kTwipsPerPixel;
    window.height = p.height * kTwipsPerPixel;
}

/// Screens as the toolkit tells them: a scale of two halves their pixels.
const std::vector<Monitor> kUsual{{0, 0, 1280, 800}}, kLowAtTwo{{0, 0, 512, 300}},
    kWideAtTwo{{0, 0, 960, 540}}, kTwo{{0, 0, 1280, 800}, {1280, 0, 1920, 1080}},
    kTwoLeft{{0, 0, 1280, 800}, {-1920, -200, 1920, 1080}};
constexpr int kGone = 5'000'000 / kTwipsPerPixel;

TEST_F(LayoutTest, buttonsOfAJoinedGridStandAtTheHotOnes) {
    std::string tops;  // of a grid with 45 twips to spare
    for (const char* hotOnes : {"", "top", "bottom"})
        tops += std::to_string(GridFor(9000, 3105, 4, 3, 0, hotOnes).top(0)) + " ";
    EXPECT_EQ(tops, "15 0 45 ");
}

TEST_F(LayoutTest, theWindowIsHeldToTheScreensWhateverTheFileSays) {
    const struct {
        const std::vector<Monitor>& screens;
        int monitor, state;
        Place saved, opens;  // its title above the inner size
        bool fills = false;
    } cases[] = {
        {kUsual, 0, 0, {0, 0, kGone, 700}, {0, 0, 1280, 700}},
        {kUsual, 0, 0, {-4000, 100, 900, 600}, {0, 100, 900, 600}},
        {kUsual, 0, 0, {100, 100, 10, 10}, {100, 100, MinWinWidth, MinWinHeight}},
        {kLowAtTwo, 0, 0, {100, 50, 1000, 700}, {0, 0, 512, 236}, true},
        {kWideAtTwo, 0, 0, {100, 50, 800, 590}, {100, 0, 800, 476}},
        // Several screens: the one that holds the window, else the one of the settings, else the first.
        {kTwo, 0, 0, {1400, 100, kGone, 700}, {1280, 100, 1920, 700}},
        {kTwoLeft, 0, 0, {-1900, -150, 1000, kGone}, {-1900, -200, 1000, 1016}},
        {kTwo, 1, 0, {9000, 9000, 1000, 700}, {2200, 316, 1000, 700}},
        {kTwo, 1, 2, {100, 100, 1000, 700}, {1280, 0, 1920, 1080}, true},
        // The second one is gone.
        {kUsual, 1, 0, {1400, 300, 1600, 900}, {0, 0, 1280, 736}, true},
        {kUsual, 1, 0, {-1900, -150, 1000, 700}, {0, 0, 1000, 700}},
        {kUsual, 1, 2, {1400, 300, 1600, 900}, {0, 0, 1280, 800}, true},
        {kUsual, 0, 0, {kGone * 428, 0, kGone * 428, 700}, {0, 0, 1280, 700}}};
    int row = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(row++);
        desktop().screens = c.screens;
        windowSettings.Monitor = c.monitor;
        windowSettings.WinState = static_cast<std::uint8_t>(c.state);
        windowSettings.PosLeft = c.saved.left * kTwipsPerPixel;
        windowSettings.PosTop = c.saved.top * kTwipsPerPixel;
        windowSettings.WinWidth = c.saved.width * kTwipsPerPixel;
        windowSettings.WinHeight = c.saved.height * kTwipsPerPixel;
        Control& window = frmMain().window;
        PlaceWindow(window);
        EXPECT_EQ(placeOf(window), c.opens);
        LimitWindow(window);
        for (const Monitor& m : c.screens) {
            // A desktop's bars and the title take their part of a maximised window.
            EXPECT_LE(desktop().leastWidth, m.width);
            EXPECT_LE(desktop().leastHeight, m.height - 96);
        }
        TimerMainPosTick();
        EXPECT_EQ(windowSettings.WinState, c.fills ? 2 : 0);
        const Place& kept = c.fills ? c.saved : c.opens;
        const auto pixels = [](int twips) { return twips / kTwipsPerPixel; };
        EXPECT_EQ((Place{pixels(windowSettings.PosLeft), pixels(windowSettings.PosTop),
                         pixels(windowSettings.WinWidth), pixels(windowSettings.WinHeight)}),
                  kept);
    }
}

TEST_F(LayoutTest, aWindowOpensOverTheGridAndWhollyOnItsScreen) {
    const struct {
        const std::vector<Monitor>& screens;
        Place main, at;  // the form is 600 x 400, or as high as its room; its title stands above
    } cases[] = {{kUsual, {700, 0, 790, 590}, {680, 172, 600, 400}},
                 {kUsual, {140, -400, 1000, 736}, {340, 8, 600, 400}},
                 {kLowAtTwo, {0, 0, 512, 236}, {8, 8, 496, 252}},
                 {kTwo, {1400, 100, 1300, 800}, {1750, 371, 600, 400}},
                 {kTwoLeft, {-1900, -150, 1000, 700}, {-1700, 71, 600, 400}},
                 {kUsual, {-5000, 5000, 1000, 700}, {0, 380, 600, 380}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.main));
        desktop().screens = c.screens;
        put(frmMain().window, c.main);
        FormDraw("init");
        frmMain().window.visible = true;
        askOnCard(Question{}, {});
        const Place card = placeOf(frmQuestion().form.window);
        EXPECT_TRUE(card.left >= 0 && card.left + card.width <= c.main.width);
        EXPECT_TRUE(card.top == 0 || (card.top > 0 && card.top + card.height <= c.main.height));
        RenameWindow r;
        const auto opens = [&] {
            r.form.open();
            r.form.close();
            return placeOf(r.form.window);
        };
        EXPECT_EQ(opens(), c.at);
        // It comes back where it was left, unless no screen is there any more.
        put(r.form.window, {c.screens.back().left + 20, c.screens.back().top + 40, 300, 200});
        EXPECT_EQ(opens().left, c.screens.back().left + 20);
        put(r.form.window, {9000, 40, 300, 200});
        EXPECT_EQ(opens(), c.at);
    }
}

}  // namespace zv::test
