// Where everything stands, for every size of the grid and the window.

#include "ui/screen/layout.h"
#include "startup/language.h"
#include "startup/settings/bars_settings.h"
#include "startup/settings/grid_settings.h"
#include "startup/settings/labels_settings.h"
#include "startup/settings/meters_settings.h"
#include "startup/settings/minimal_settings.h"
#include "startup/settings/program_settings.h"
#include "startup/settings/window_settings.h"
#include "tests/ui/window_test.h"
#include "ui/edit/palette_list.h"
#include "ui/screen/layout_grid.h"
#include "ui/screen/layout_strip.h"
#include "ui/screen/window_place.h"
#include "ui/windows/question_window.h"
#include "ui/windows/rename_window.h"

namespace zv::test {

namespace {

struct Box {
    int left, top, right, bottom;
    bool inside(const Box& o) const {
        return left >= o.left && top >= o.top && right <= o.right && bottom <= o.bottom;
    }
    bool meets(const Box& o) const {
        return left < o.right && o.left < right && top < o.bottom && o.top < bottom;
    }
};

Box boxOf(const Control& c) { return {c.left, c.top, c.left + c.width, c.top + c.height}; }
Box innerOf(const Control& c) { return {0, 0, c.width, c.height}; }

bool wholePixels(const Control& c) {
    return c.left % kTwipsPerPixel == 0 && c.top % kTwipsPerPixel == 0 && c.width % kTwipsPerPixel == 0 &&
           c.height % kTwipsPerPixel == 0;
}

std::string nameOf(const Control& c) { return c.name + (c.index < 0 ? "" : std::to_string(c.index)); }

std::string shape(int rows, int columns) {
    return std::to_string(rows) + "x" + std::to_string(columns) + " joined " +
           std::to_string(gridSettings.JoinedJButtons) + " hot " +
           std::to_string(gridSettings.HotJinglesPos) + "/" + std::to_string(gridSettings.HotJinglesRows) +
           " at " + std::to_string(gridSettings.HotJinglesHeight) + " window " +
           std::to_string(frmMain().window.width / 15) + "x" + std::to_string(frmMain().window.height / 15) +
           " meters " + meterSettings.VUPos;
}

/// Visible controls of a frame leave it nowhere, stand on whole pixels and do not overlap; empty, or what does not hold.
std::string fault(const Control& frame, const std::vector<const Control*>& parts) {
    for (const Control* a : parts) {
        // Buttons of the least size may overflow.
        const bool least =
            a->kind == ControlKind::jingle && (a->width == kMinButtonWidth || a->height == kMinButtonHeight);
        if (!least && !boxOf(*a).inside(innerOf(frame))) return nameOf(*a) + " leaves " + frame.name;
        if (!wholePixels(*a) && frame.name != "picDispBack") return nameOf(*a) + " between pixels";
        for (const Control* b : parts)
            if (a != b && boxOf(*a).meets(boxOf(*b))) return nameOf(*a) + " over " + nameOf(*b);
    }
    return {};
}

std::vector<const Control*> seenIn(const Control& frame) {
    std::vector<const Control*> seen;
    for (const Control* c : frame.children())
        if (c->visible && c->width > 0) seen.push_back(c);
    return seen;
}

/// What must hold in any layout; empty, or what does not.
std::string fault(int columns) {
    MainWindow& w = frmMain();
    std::vector<const Control*> blocks = seenIn(w.window);
    std::erase(blocks, &w.linHotJingles);
    if (std::string found = fault(w.window, blocks); !found.empty()) return found;
    for (const Control* frame : {&w.fraTab[0], &w.fraTab[1], &w.fraTab[2], &w.fraTab[3], &w.keys.fraKeys,
                                 &w.fraVU, &w.fraJingles, &w.fraHotJingles})
        if (std::string found =
                frame->visible || frame->parent == &w.fraPanel ? fault(*frame, seenIn(*frame)) : "";
            !found.empty())
            return found;
    for (const Control* part : seenIn(w.display.picDispBack))
        if (!boxOf(*part).inside(innerOf(w.display.picDispBack))) return part->name + " leaves the display";
    for (const Control* c : w.fraJingles.children())
        for (const Control* part : seenIn(*c))
            if (c->visible && part->name != "ckJingSel" && !boxOf(*part).inside(innerOf(*c)))
                return nameOf(*part) + " outside its button";
    // Even gaps: the grid stands as far from the strip as its buttons from each other, and ends as far from
    // meters at its side.
    const Control& first = Button(0)->b_Jingle;
    const bool above = gridSettings.HotJinglesPos == 1;
    const int top =
        above ? w.fraHotJingles.top + Button(kPaletteSlots)->b_Jingle.top : w.fraJingles.top + first.top;
    if (first.height > kMinButtonHeight && meterSettings.VUPos != "t" &&
        top != boxOf(w.fraPanel).bottom + kGap)
        return "an uneven gap below the strip";
    const Box last = boxOf(Button(columns - 1)->b_Jingle);
    if (first.width > kMinButtonWidth && meterSettings.VUPos == "r" &&
        (w.fraJingles.left + first.left != kGap || w.fraVU.left - w.fraJingles.left - last.right != kGap))
        return "uneven gaps beside the grid";
    return {};
}

class LayoutTest : public WindowTest {};

}  // namespace

TEST_F(LayoutTest, everyGridInEveryWindowIsFreeOfOverlaps) {
    const struct {
        int width, height;
        const char* meters;
    } windows[] = {{790, 590, "r"},  {1280, 800, "l"}, {1280, 800, "r"}, {1920, 1080, "t"},
                   {1024, 700, "n"}, {960, 476, "r"},  {512, 236, "r"}};
    labelSettings.JNumbPos = 1;
    for (const auto& window : windows) {
        meterSettings.VUPos = window.meters;
        for (int rows = 4; rows <= 8; ++rows) {
            for (int columns = 4; columns <= 12; columns += 2) {
                for (int variant = 0; variant < 12; ++variant) {
                    gridSettings.JinglesRows = rows;
                    gridSettings.JinglesCols = columns;
                    gridSettings.JoinedJButtons = variant % 2;
                    gridSettings.HotJinglesPos = variant / 2 % 3;
                    gridSettings.HotJinglesRows = 1 + variant / 6;
                    gridSettings.HotJinglesHeight = variant % 2 == 0 ? 2 : 6;
                    labelSettings.JNumbPos = 1 + rows % 2;
                    barSettings.JRemLevPos = 1 + columns / 2 % 2;
                    resize(window.width, window.height);
                    ASSERT_EQ(fault(columns), "") << shape(rows, columns);
                }
            }
        }
    }
}

TEST_F(LayoutTest, theFirstAndTheLastButtonPlayAndKeepTheirRecordsInASmallerGrid) {
    const auto grid = [&](int rows, int columns) {
        gridSettings.JinglesRows = rows;
        gridSettings.JinglesCols = columns;
        resize(1280, 800);
    };
    grid(8, 12);
    for (const int index : {0, kPaletteSlots - 1, kPaletteSlots, kJingles - 1}) {
        load(index, 3000);
        press(index);
        release(index);
        pass(100);
        EXPECT_EQ(rec(index).State, PlayState::playing) << index;
        evStop();
        pass(100);
        EXPECT_EQ(rec(index).State, PlayState::idle) << index;
    }
    grid(4, 4);
    pass(100);
    for (const int index : {kPaletteSlots - 1, kJingles - 1}) {
        EXPECT_FALSE(button(index).visible);
        EXPECT_NE(rec(index).hPlay, 0U);
    }
    minimalSettings.MinimalView = 1;
    ChangeTab(1);
    EXPECT_EQ(ActiveTab, 0);
}

TEST_F(LayoutTest, everyKeySaysInEachLanguageWhatItDoes) {
    const MainWindow& w = frmMain();
    std::set<std::string> told;
    for (const char* language : {"English", "Fran\u00E7ais", "Deutsch", "Espa\u00F1ol"}) {
        programSettings.Language = language;
        LnStrings("frmMain");
        lstPalRefresh();
        std::vector<const Control*> open{&w.window};
        while (!open.empty()) {
            const Control* c = open.back();
            open.pop_back();
            for (const Control* child : c->children()) open.push_back(child);
            const bool key = c->kind == ControlKind::button || c->kind == ControlKind::toggle;
            EXPECT_TRUE(!key || c->name == "b_Jingle" || !c->toolTip().empty()) << language << " " << c->name;
        }
        told.insert(w.keys.btStop.toolTip());
        told.insert(w.fraJingles.toolTip());  // the hint of a program without a palette
    }
    EXPECT_EQ(told.size(), 8U);
    programSettings.Language = kEnglish;
}

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

TEST_F(LayoutTest, theWindowIsHeldToTheScreensWhateverTheFileSays) {
    const struct {
        const std::vector<Monitor>& screens;
        int monitor, state;
        Place saved, opens;  // its title above the inner size
        bool fills = false;
    } cases[] = {
        {kUsual, 0, 0, {0, 0, kGone, 700}, {0, 0, 1280, 700}},
        {kUsual, 0, 0, {-4000, 100, 900, 600}, {0, 100, 900, 600}},
        {kUsual, 0, 0, {100, 50, 1100, 999}, {100, 0, 1100, 736}},
        {kUsual, 0, 0, {100, 100, 10, 10}, {100, 100, MinWinWidth, MinWinHeight}},
        {kLowAtTwo, 0, 0, {100, 50, 1000, 700}, {0, 0, 512, 236}, true},
        {kWideAtTwo, 0, 0, {100, 50, 800, 590}, {100, 0, 800, 476}},
        {kWideAtTwo, 0, 2, {100, 50, 800, 590}, {0, 0, 960, 540}, true},
        // Several screens: the one that holds the window, else the one of the settings, else the first.
        {kTwo, 0, 0, {1400, 100, kGone, 700}, {1280, 100, 1920, 700}},
        {kTwo, 0, 0, {1400, 100, 1300, 800}, {1400, 100, 1300, 800}},
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
        EXPECT_EQ(windowSettings.WinWidth, (c.fills ? c.saved : c.opens).width * kTwipsPerPixel);
    }
}

TEST_F(LayoutTest, aWindowOpensOverTheGridAndWhollyOnItsScreen) {
    const struct {
        const std::vector<Monitor>& screens;
        Place main, at;  // the form is 600 x 400, or as high as its room; its title stands above
    } cases[] = {{kUsual, {140, 0, 1000, 736}, {340, 239, 600, 400}},
                 {kUsual, {700, 0, 790, 590}, {680, 172, 600, 400}},
                 {kUsual, {140, 600, 1000, 736}, {340, 380, 600, 380}},
                 {kUsual, {140, -400, 1000, 736}, {340, 8, 600, 400}},
                 {kLowAtTwo, {0, 0, 512, 236}, {8, 8, 496, 252}},
                 {kWideAtTwo, {100, 0, 800, 476}, {200, 120, 600, 380}},
                 {kTwo, {1400, 100, 1300, 800}, {1750, 371, 600, 400}},
                 {kTwoLeft, {-1900, -150, 1000, 700}, {-1700, 71, 600, 400}},
                 {kUsual, {5000, -5000, 1000, 700}, {680, 8, 600, 400}},
                 {kUsual, {-5000, 5000, 1000, 700}, {0, 380, 600, 380}}};
    for (const auto& c : cases) {
        desktop().screens = c.screens;
        put(frmMain().window, c.main);
        FormDraw("init");
        frmMain().window.visible = true;
        ASSERT_TRUE(askOnCard);
        askOnCard(Question{}, {});
        const Control& card = frmQuestion().form.window;
        EXPECT_TRUE(boxOf(card).inside(innerOf(frmMain().window)) || card.top == 0) << placeOf(card).top;
        RenameWindow r;
        r.form.open();
        EXPECT_EQ(placeOf(r.form.window), c.at) << ::testing::PrintToString(c.main);
        r.form.close();
        // It comes back where it was left, unless no screen is there any more.
        put(r.form.window, {c.screens.back().left + 20, c.screens.back().top + 40, 300, 200});
        r.form.open();
        EXPECT_EQ(placeOf(r.form.window).left, c.screens.back().left + 20);
        r.form.close();
        put(r.form.window, {9000, 40, 300, 200});
        r.form.open();
        EXPECT_EQ(placeOf(r.form.window), c.at) << ::testing::PrintToString(c.main);
        r.form.close();
    }
}

}  // namespace zv::test
