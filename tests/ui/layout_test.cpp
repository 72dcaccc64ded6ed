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
#include "ui/windows/shortcuts_window.h"

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

std::string shape(int rows, int columns) {
    return std::to_string(rows) + "x" + std::to_string(columns) + " joined " +
           std::to_string(gridSettings.JoinedJButtons) + " hot " +
           std::to_string(gridSettings.HotJinglesPos) + "/" + std::to_string(gridSettings.HotJinglesRows) +
           " at " + std::to_string(gridSettings.HotJinglesHeight) + " window " +
           std::to_string(frmMain().window.width / 15) + "x" + std::to_string(frmMain().window.height / 15) +
           " meters " + meterSettings.VUPos;
}

/// What must hold in any layout; empty, or what does not.
std::string fault(int rows, int columns) {
    MainWindow& w = frmMain();
    std::vector<const Control*> blocks{&w.display.picDispBack, &w.fraPanel, &w.keys.fraKeys, &w.fraJingles};
    if (gridSettings.HotJinglesPos != 0) {
        blocks.push_back(&w.fraHotJingles);
    }
    if (meterSettings.VUPos != "n") {
        blocks.push_back(&w.fraVU);
    }
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        if (!boxOf(*blocks[i]).inside(innerOf(w.window)) || !wholePixels(*blocks[i])) {
            return blocks[i]->name + " leaves the window or the pixels";
        }
        for (std::size_t k = 0; k < i; ++k) {
            if (boxOf(*blocks[i]).meets(boxOf(*blocks[k]))) {
                return blocks[i]->name + " over " + blocks[k]->name;
            }
        }
    }
    // Even gaps: the grid stands as far from the strip as its buttons from each other, and ends as far from
    // meters at its side.
    const Control& first = Button(0)->b_Jingle;
    const Control& upper = gridSettings.HotJinglesPos == 1 ? w.fraHotJingles : w.fraJingles;
    const Control& topmost = gridSettings.HotJinglesPos == 1 ? Button(kPaletteSlots)->b_Jingle : first;
    if (first.height > kMinButtonHeight && meterSettings.VUPos != "t" &&
        upper.top + topmost.top != boxOf(w.fraPanel).bottom + kGap) {
        return "an uneven gap below the strip";
    }
    const Box last = boxOf(Button(columns - 1)->b_Jingle);
    if (first.width > kMinButtonWidth && meterSettings.VUPos == "r" &&
        (w.fraJingles.left + first.left != kGap || w.fraVU.left - w.fraJingles.left - last.right != kGap)) {
        return "uneven gaps beside the grid";
    }
    // Joined buttons stand under the edges of the strip, up to the pixels that they cannot share out, and against
    // the hot block.
    if (gridSettings.JoinedJButtons == 1 && first.width > kMinButtonWidth &&
        first.height > kMinButtonHeight) {
        const int spare = (columns + 1) / 2 * kTwipsPerPixel;
        const int left =
            w.fraJingles.left + first.left - (meterSettings.VUPos == "l" ? boxOf(w.fraVU).right : 0);
        const Box foot = boxOf(Button(rows * columns - 1)->b_Jingle);
        if (left < kGap || left > kGap + spare) {
            return "joined buttons not under the strip's edge";
        }
        if (gridSettings.HotJinglesPos == 1 && first.top != 0) {
            return "joined buttons away from the hot block above";
        }
        if (gridSettings.HotJinglesPos == 2 && foot.bottom != w.fraJingles.height) {
            return "joined buttons away from the hot block below";
        }
        if (Button(1)->b_Jingle.left != boxOf(first).right) {
            return "joined buttons with a gap";
        }
    }
    std::vector<const Control*> seen;
    for (int i = 0; i < kJingles; ++i) {
        JingleButton* b = Button(i);
        const bool hot = i >= kPaletteSlots;
        const int place = hot ? i - kPaletteSlots : i;
        const bool wanted = hot ? place < columns * gridSettings.HotJinglesRows : place < rows * columns;
        if (b == nullptr ? wanted : b->b_Jingle.visible != wanted) {
            return "button " + std::to_string(i) + " wrongly shown";
        }
        if (!wanted || (hot && gridSettings.HotJinglesPos == 0)) {
            continue;
        }
        const Control& c = b->b_Jingle;
        if (!wholePixels(c)) {
            return "button " + std::to_string(i) + " between pixels";
        }
        const bool overflows = c.width == kMinButtonWidth || (!hot && c.height == kMinButtonHeight);
        if (!overflows && !boxOf(c).inside(innerOf(*c.parent))) {
            return "button " + std::to_string(i) + " outside its block";
        }
        if (const int below = c.height - boxOf(b->ckJingSel).bottom;
            b->ckJingSel.top > std::max(below, 0) + kTwipsPerPixel) {
            return "box at the foot of button " + std::to_string(i);
        }
        for (const Control* part : c.children()) {
            if (part->visible && part != &b->ckJingSel && !boxOf(*part).inside(innerOf(c))) {
                return part->name + " outside button " + std::to_string(i);
            }
        }
        for (const Control* other : seen) {
            if (other->parent == c.parent && boxOf(*other).meets(boxOf(c))) {
                return "button " + std::to_string(i) + " over " + std::to_string(other->index);
            }
        }
        seen.push_back(&c);
    }
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
                    ASSERT_EQ(fault(rows, columns), "") << shape(rows, columns);
                }
            }
        }
    }
}

TEST_F(LayoutTest, aGridTooLargeForItsBlockKeepsItsButtonsAndOverflows) {
    const GridGeometry g = GridFor(6000, 2000, 8, 12, kGap, "");
    EXPECT_EQ(g.width, kMinButtonWidth);
    EXPECT_EQ(g.height, kMinButtonHeight);
    EXPECT_GT(g.left(11) + g.width, 6000);
    EXPECT_GE(g.left(0), kGap);
}

TEST_F(LayoutTest, hotRowsTakeTheirShareOfTheWindow) {
    for (int variant = 0; variant < 16; ++variant) {
        gridSettings.JoinedJButtons = variant % 2;
        gridSettings.HotJinglesPos = 1 + variant / 2 % 2;
        gridSettings.HotJinglesRows = 1 + variant / 4 % 2;
        gridSettings.HotJinglesHeight = variant < 8 ? 2 : 6;
        resize(1280, 800);
        SCOPED_TRACE(shape(6, 5));
        const Control& first = button(kPaletteSlots);
        const Control& second = button(kPaletteSlots + gridSettings.JinglesCols);
        EXPECT_EQ(first.height, 800 * gridSettings.HotJinglesHeight / 100 * kTwipsPerPixel);
        EXPECT_EQ(second.visible, gridSettings.HotJinglesRows == 2);
        EXPECT_EQ(second.top - boxOf(first).bottom, gridSettings.JoinedJButtons == 1 ? 0 : kGap);
        EXPECT_EQ(button(kPaletteSlots + 1).left, button(1).left);
        EXPECT_EQ(button(kPaletteSlots + 1).width, button(1).width);
    }
}

TEST_F(LayoutTest, limitsAtSmallAndLargeWindows) {
    const auto pixels = [](const Control& c) { return c.height / kTwipsPerPixel; };
    const MainWindow& w = frmMain();
    barSettings.JRemLevPos = 1;
    labelSettings.JNumbPos = 2;
    const struct {
        int width, height, rows, thickness;
        int strip;  ///< pixels; the rows' spare ones come on top
        int bar;    ///< pixels
    } cases[] = {{790, 590, 6, 0, 156, 4},   {1024, 536, 6, 0, 156, 4},  {1280, 800, 6, 2, 156, 8},
                 {3840, 2160, 6, 2, 300, 8}, {3840, 2160, 6, 1, 300, 6}, {790, 590, 8, 2, 156, 6}};
    for (const auto& c : cases) {
        gridSettings.JinglesRows = c.rows;
        barSettings.JRemLevThickness = c.thickness;
        resize(c.width, c.height);
        SCOPED_TRACE(shape(c.rows, 5));
        for (const Control* block : {&w.display.picDispBack, &w.fraPanel, &w.keys.fraKeys}) {
            EXPECT_GE(pixels(*block), c.strip);
            EXPECT_LT(pixels(*block), c.strip + c.rows) << block->name;
        }
        EXPECT_EQ(pixels(Button(0)->JRemLev), c.bar);
        const PaletteTab& t = w.palettes;
        for (const Control* key : {&w.keys.btStop, &t.btUp, &t.btDn, &t.ckAssign, &t.btDelPal})
            EXPECT_GE(key->height, 32 * kTwipsPerPixel) << key->name;
        // Numbers end at the same distance from the edge, whatever their digits.
        for (const int index : {10, 15, kPaletteSlots + 4}) {
            const Control& one = Button(5)->lblbtnumber;
            const Control& more = Button(index)->lblbtnumber;
            EXPECT_EQ(button(index).width - boxOf(more).right, button(5).width - boxOf(one).right);
            EXPECT_EQ(more.width, one.width * (index < 100 ? 2 : 3)) << index;
        }
    }
}

TEST_F(LayoutTest, aSmallerGridHidesButtonsAndKeepsTheirRecords) {
    gridSettings.JinglesRows = 8;
    gridSettings.JinglesCols = 12;
    resize(1280, 800);
    load(90, 300);
    gridSettings.JinglesRows = 4;
    gridSettings.JinglesCols = 4;
    resize(1280, 800);
    EXPECT_EQ(LastPalIdx, 15);
    EXPECT_FALSE(button(90).visible);
    EXPECT_FALSE(rec(90).Path.empty());
    EXPECT_NE(rec(90).hPlay, 0U);
    EXPECT_FALSE(button(105).visible);  // beyond 95 + 2 x 4
}

TEST_F(LayoutTest, whatIsDoneToAllReachesTheFirstAndTheLast) {
    gridSettings.JinglesRows = 8;
    gridSettings.JinglesCols = 12;
    resize(1280, 800);
    for (const int index : {0, kPaletteSlots - 1, kPaletteSlots, kJingles - 1}) {
        load(index, 3000);
        press(index);
        release(index);
        pass(100);
        EXPECT_EQ(button(index).value, static_cast<int>(JingleState::sounding)) << index;
        evStop();
        pass(100);
        EXPECT_EQ(button(index).value, static_cast<int>(JingleState::rest)) << index;
        EXPECT_EQ(BASS_ChannelIsActive(rec(index).hPlay), static_cast<DWORD>(BASS_ACTIVE_STOPPED)) << index;
    }
}

TEST_F(LayoutTest, tabsShowOneFrameAndTheirControlsFit) {
    MainWindow& w = frmMain();
    for (const auto& [width, height] : {std::pair{790, 590}, {1280, 800}, {1920, 1080}}) {
        resize(width, height);
        for (int tab = 0; tab < kTabs; ++tab) {
            ChangeTab(tab);
            for (int i = 0; i < kTabs; ++i) {
                EXPECT_EQ(w.fraTab[static_cast<std::size_t>(i)].visible, i == tab);
                EXPECT_EQ(w.ckTab[static_cast<std::size_t>(i)].value, i == tab ? 1 : 0);
            }
            const Control& frame = w.fraTab[static_cast<std::size_t>(tab)];
            for (const Control* a : frame.children()) {
                if (!a->visible) {
                    continue;
                }
                EXPECT_TRUE(boxOf(*a).inside(innerOf(frame))) << a->name;
                for (const Control* b : frame.children()) {
                    EXPECT_FALSE(a != b && b->visible && boxOf(*a).meets(boxOf(*b)))
                        << a->name << " over " << b->name;
                }
            }
        }
        for (const Control* part : w.display.picDispBack.children()) {
            EXPECT_TRUE(boxOf(*part).inside(innerOf(w.display.picDispBack))) << part->name << " at " << width;
        }
    }
    minimalSettings.MinimalView = 1;
    ChangeTab(1);
    EXPECT_EQ(ActiveTab, 3);
}

TEST_F(LayoutTest, captionsGrowWithTheButtonsAndFitThem) {
    labelSettings.JLabelFontSize = 2;
    resize(1280, 800);
    EXPECT_EQ(button(0).fontSize, 5.0);  // 2 x 3540 / 12 / 110, in half points
    labelSettings.JLabelFontSize = 20;
    resize(1280, 800);
    const double large = button(0).fontSize;
    EXPECT_LT(large * 4 / 3, button(0).height / 15 / 2);  // two lines and the duration have room
    labelSettings.JLabelAutoSize = 0;
    UpdateJLblFont();
    EXPECT_EQ(button(0).fontSize, 20.0);
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

TEST_F(LayoutTest, theListOfKeysTellsWhatWorks) {
    KeyEvent f1{Key::f1};
    frmMain().window.onKeyDown(f1);
    ShortcutsWindow& s = frmShortcuts();
    ASSERT_TRUE(s.form.isOpen());
    std::string told;
    for (std::size_t i = 0; i < s.lblKey.size(); ++i) {
        const std::string second = s.lblKeyBis[i]->caption();
        if (!s.lblKey[i]->visible()) continue;
        told += s.lblKey[i]->caption() + (second.empty() ? "" : "+" + second) + "=" +
                s.lblSCDesc[i]->caption() + "\n";
        EXPECT_FALSE(s.lblSCDesc[i]->caption().empty()) << s.lblKey[i]->caption();
    }
    EXPECT_NE(told.find("Alt+F9=Joined buttons\n"), std::string::npos) << told;
    EXPECT_NE(told.find("Ctrl+Shift=Key held: copy a jingle\n"), std::string::npos);
    EXPECT_NE(told.find("F2="), std::string::npos);
    const Control& announcer = frmMain().announcer.ckTmAnn;
    EXPECT_EQ(told.find("\nN=") != std::string::npos, announcer.enabled()) << "only keys that do something";
    EXPECT_NE(told.find("F3="), std::string::npos);
    KeyEvent escape{Key::escape};
    s.form.window.onKeyDown(escape);
    EXPECT_TRUE(escape.consumed);
    EXPECT_FALSE(s.form.window.visible);
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
