// Where everything stands, for every size of the grid and the window.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "model/jingle.h"
#include "model/state.h"
#include "startup/settings.h"
#include "tests/ui/window_test.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/screen/layout_grid.h"
#include "ui/screen/layout_strip.h"
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
           std::to_string(settings.JoinedJButtons) + " hot " + std::to_string(settings.HotJinglesPos) + "/" +
           std::to_string(settings.HotJinglesRows) + " at " + std::to_string(settings.HotJinglesHeight) +
           " window " + std::to_string(frmMain().window.width / 15) + "x" +
           std::to_string(frmMain().window.height / 15) + " meters " + settings.VUPos;
}

/// What must hold in any layout; empty, or what does not.
std::string fault(int rows, int columns) {
    MainWindow& w = frmMain();
    std::vector<const Control*> blocks{&w.display.picDispBack, &w.fraPanel, &w.keys.fraKeys, &w.fraJingles};
    if (settings.HotJinglesPos != 0) {
        blocks.push_back(&w.fraHotJingles);
    }
    if (settings.VUPos != "n") {
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
    const Control& upper = settings.HotJinglesPos == 1 ? w.fraHotJingles : w.fraJingles;
    const Control& topmost = settings.HotJinglesPos == 1 ? Button(kPaletteSlots)->b_Jingle : first;
    if (first.height > kMinButtonHeight && settings.VUPos != "t" &&
        upper.top + topmost.top != boxOf(w.fraPanel).bottom + kGap) {
        return "an uneven gap below the strip";
    }
    const Box last = boxOf(Button(columns - 1)->b_Jingle);
    if (first.width > kMinButtonWidth && settings.VUPos == "r" &&
        (w.fraJingles.left + first.left != kGap || w.fraVU.left - w.fraJingles.left - last.right != kGap)) {
        return "uneven gaps beside the grid";
    }
    std::vector<const Control*> seen;
    for (int i = 0; i < kJingles; ++i) {
        JingleButton* b = Button(i);
        const bool hot = i >= kPaletteSlots;
        const int place = hot ? i - kPaletteSlots : i;
        const bool wanted = hot ? place < columns * settings.HotJinglesRows : place < rows * columns;
        if (b == nullptr ? wanted : b->b_Jingle.visible != wanted) {
            return "button " + std::to_string(i) + " wrongly shown";
        }
        if (!wanted || (hot && settings.HotJinglesPos == 0)) {
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
    } windows[] = {{790, 590, "r"}, {1280, 800, "l"}, {1280, 800, "r"}, {1920, 1080, "t"}, {1024, 700, "n"}};
    settings.JNumbPos = 1;
    for (const auto& window : windows) {
        settings.VUPos = window.meters;
        for (int rows = 4; rows <= 8; ++rows) {
            for (int columns = 4; columns <= 12; columns += 2) {
                for (int variant = 0; variant < 12; ++variant) {
                    settings.JinglesRows = rows;
                    settings.JinglesCols = columns;
                    settings.JoinedJButtons = variant % 2;
                    settings.HotJinglesPos = variant / 2 % 3;
                    settings.HotJinglesRows = 1 + variant / 6;
                    settings.HotJinglesHeight = variant % 2 == 0 ? 2 : 6;
                    settings.JNumbPos = 1 + rows % 2;
                    settings.JRemLevPos = 1 + columns / 2 % 2;
                    resize(window.width, window.height);
                    ASSERT_EQ(fault(rows, columns), "") << shape(rows, columns);
                }
            }
        }
    }
}

TEST_F(LayoutTest, aGridByHand) {
    // 5 columns and 6 rows with gaps of 120 in 18420 x 7650: the leftover is halved and cut to whole pixels.
    const GridGeometry g = GridFor(18420, 7650, 6, 5, 120, "");
    EXPECT_EQ(g.width, 3540);
    EXPECT_EQ(g.height, 1125);
    EXPECT_EQ(g.originX, 0);
    EXPECT_EQ(g.originY, 30);
    EXPECT_EQ(g.left(6), 120 + 3540 + 120);
    EXPECT_EQ(g.top(6), 30 + 120 + 1125 + 120);
    // Joined: against the hot block.
    EXPECT_EQ(GridFor(18420, 7650, 7, 5, 0, "top").originY, 0);
    const GridGeometry bottom = GridFor(18420, 7660, 7, 5, 0, "bottom");
    EXPECT_EQ(bottom.top(34) + bottom.height, 7660);
    // Narrow: the buttons keep their least size and the grid overflows.
    const GridGeometry narrow = GridFor(6000, 2000, 8, 12, 120, "");
    EXPECT_EQ(narrow.width, kMinButtonWidth);
    EXPECT_EQ(narrow.height, kMinButtonHeight);
    EXPECT_EQ(narrow.left(11) + narrow.width, 60 + 120 * 12 + 765 * 12);  // centred before it was widened
}

TEST_F(LayoutTest, hotBlockByItsSettings) {
    const struct {
        int joined, position, rows, percent, block, button, top;
    } cases[] = {{0, 2, 1, 6, 720 + 240, 720, 120}, {0, 2, 2, 6, 1440 + 360, 720, 120},
                 {1, 1, 1, 6, 720, 720, 0},         {1, 1, 2, 6, 1440, 720, 0},
                 {0, 1, 2, 2, 480 + 360, 240, 120}, {1, 2, 1, 6, 720 + 120, 720, 120}};
    for (const auto& c : cases) {
        settings.JoinedJButtons = c.joined;
        settings.HotJinglesPos = c.position;
        settings.HotJinglesRows = c.rows;
        settings.HotJinglesHeight = c.percent;
        resize(1280, 800);
        EXPECT_EQ(HotBlockHeight(), c.block);
        EXPECT_EQ(button(96).height, c.button);
        EXPECT_EQ(button(96).top, c.top);
        EXPECT_EQ(button(97).left, button(1).left);
        EXPECT_EQ(button(97).width, button(1).width);
        EXPECT_EQ(button(96 + settings.JinglesCols).visible, c.rows == 2);
    }
}

TEST_F(LayoutTest, aSmallerGridHidesButtonsAndKeepsTheirRecords) {
    settings.JinglesRows = 8;
    settings.JinglesCols = 12;
    resize(1280, 800);
    load(90, 300);
    settings.JinglesRows = 4;
    settings.JinglesCols = 4;
    resize(1280, 800);
    EXPECT_EQ(LastPalIdx, 15);
    EXPECT_FALSE(button(90).visible);
    EXPECT_FALSE(rec(90).Path.empty());
    EXPECT_NE(rec(90).hPlay, 0U);
    EXPECT_FALSE(button(105).visible);  // beyond 95 + 2 x 4
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
    settings.MinimalView = 1;
    ChangeTab(1);
    EXPECT_EQ(ActiveTab, 3);
}

TEST_F(LayoutTest, captionsGrowWithTheButtonsAndFitThem) {
    settings.JLabelFontSize = 2;
    resize(1280, 800);
    EXPECT_EQ(button(0).fontSize, 5.0);  // 2 x 3540 / 12 / 110, in half points
    settings.JLabelFontSize = 20;
    resize(1280, 800);
    const double large = button(0).fontSize;
    EXPECT_LT(large * 4 / 3, button(0).height / 15 / 2);  // two lines and the duration have room
    settings.JLabelAutoSize = 0;
    UpdateJLblFont();
    EXPECT_EQ(button(0).fontSize, 20.0);
}

TEST_F(LayoutTest, theListOfKeysTellsWhatWorksAndScrolls) {
    const auto key = [](const Control& window, Key k) {
        KeyEvent event{k};
        window.onKeyDown(event);
        return event.consumed;
    };
    key(frmMain().window, Key::f1);
    ShortcutsWindow& s = frmShortcuts();
    ASSERT_TRUE(s.window.visible);
    std::string told;
    for (std::size_t i = 0; i < s.lblKey.size(); ++i) {
        const bool two = s.lblKeyBis[i]->visible;
        told += s.lblKey[i]->caption() + (two ? "+" + s.lblKeyBis[i]->caption() : "") + "=" +
                s.lblSCDesc[i]->caption() + "\n";
        EXPECT_FALSE(s.lblSCDesc[i]->caption().empty()) << s.lblKey[i]->caption();
    }
    EXPECT_NE(told.find("Alt+F9=Joined buttons\n"), std::string::npos) << told;
    EXPECT_NE(told.find("Ctrl+Shift=Hold: copy a jingle\n"), std::string::npos);
    EXPECT_EQ(told.find("F2="), std::string::npos) << "settings are not there yet";
    const int end = s.fraShow.height - s.fraKeys.height;
    ASSERT_LT(end, 0);
    EXPECT_TRUE(key(s.window, Key::down));
    EXPECT_EQ(s.fraKeys.top, -300);
    EXPECT_TRUE(key(s.window, Key::pageDown));
    EXPECT_EQ(s.fraKeys.top, -1300);
    for (int i = 0; i < 20; ++i) {
        key(s.window, Key::pageDown);
    }
    EXPECT_EQ(s.fraKeys.top, end) << "not beyond its end";
    EXPECT_TRUE(key(s.window, Key::escape));
    EXPECT_FALSE(s.window.visible);
}

}  // namespace zv::test
