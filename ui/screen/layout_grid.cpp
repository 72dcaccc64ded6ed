#include "ui/screen/layout_grid.h"

#include <algorithm>
#include <string_view>

#include "model/jingle.h"
#include "platform/controls.h"
#include "startup/helpers.h"
#include "startup/settings/bars_settings.h"
#include "startup/settings/grid_settings.h"
#include "startup/settings/labels_settings.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/records/place.h"

namespace zv {

int JGap = kGap;
int JOuterGap = 0;

namespace {

constexpr int kPixel = kTwipsPerPixel;
constexpr int kBarInset = 30;
constexpr int kSmallFieldInset = 60;
constexpr int kNumberInset = 45;
constexpr int kDigitWidth = 90;
constexpr int kNumberHeight = 165;
constexpr int kFxFromRight = 330;
constexpr int kSelectorInset = 300;
constexpr int kSelectorSize = 195;
constexpr int kMarks = 4;
constexpr int kMarkStep = 210;
constexpr int kLargeButton = 1500;
constexpr int kBelowBar = 30;

/// Positions of barSettings.JRemLevPos.
enum class BarPlace : int { none = 0, top = 1, bottom = 2 };

int multiple(int twips) { return GetMultipleOf(twips, kPixel); }

int barThickness() {
    constexpr int thickness[] = {60, 90, 120};
    return thickness[std::clamp<int>(barSettings.JRemLevThickness, 0, 2)];
}

/// The parts of one button for its present size.
void placeParts(JingleButton& b) {
    const int w = b.b_Jingle.width;
    const int h = b.b_Jingle.height;
    const auto bar = static_cast<BarPlace>(static_cast<int>(barSettings.JRemLevPos));
    const int thickness = std::min(barThickness(), multiple(h / 6));
    const int barTop = bar == BarPlace::bottom ? h - kBarInset - thickness : kBarInset;
    Place(b.JremBG, kBarInset, barTop, w - 2 * kBarInset, thickness);
    // While a bar is shown the display's tick sets its width.
    Place(b.JRemLev, kBarInset, barTop, b.JRemLev.visible ? b.JRemLev.width() : w - 2 * kBarInset, thickness);
    b.JRemLev.width = std::min(b.JRemLev.width(), w - 2 * kBarInset);

    const int marksTop = bar == BarPlace::top ? kBarInset + thickness + kBelowBar : 60;
    const int number = b.b_Jingle.index;
    const int digits = number < 10 ? 1 : number < 100 ? 2 : 3;
    const bool numberRight = labelSettings.JNumbPos == 2;
    const int numberWidth = digits * kDigitWidth;
    // One digit stands 135 twips from the right edge, two 225; a third goes on in the same step.
    const int numberLeft = numberRight ? w - (kNumberInset + numberWidth) : kNumberInset;
    const int numberHeight = std::min(kNumberHeight, multiple(h / 2));
    const int numberTop = std::min(marksTop, h - numberHeight - kPixel);
    Place(b.picbtnumber, numberLeft, numberTop, numberWidth, numberHeight);
    Place(b.lblbtnumber, numberLeft, numberTop, numberWidth, numberHeight);
    b.picbtnumber.visible = labelSettings.JNumbPos != 0 && !(numberRight && b.ckJingSel.visible);
    b.lblbtnumber.visible = b.picbtnumber.visible();

    // Marks grow on large buttons, with the steps between them.
    const int large = multiple(std::max(0, (h - kLargeButton) / 20));
    const int step =
        std::min(kMarkStep + large, multiple((w - kFxFromRight - kSmallFieldInset) / (kMarks - 1)));
    const int size = std::min({(numberRight ? 105 : 150) + large, step - kPixel, multiple(h / 2)});
    const int markTop = std::min(marksTop, h - size - kPixel);
    int left = w - kFxFromRight;
    for (Control* mark : {&b.fx_Jingle, &b.pm_Jingle, &b.sq_Jingle, &b.lp_Jingle}) {
        Place(*mark, left, markTop, size, size);
        left -= step;
    }

    const int field = std::min(180, multiple(h / 2));
    const int foot = bar == BarPlace::bottom ? thickness + 2 * kBarInset : kSmallFieldInset;
    Place(b.picPlaylist, kSmallFieldInset, std::max(0, h - foot - field), field, field);
    Place(b.lblPlaylist, kSmallFieldInset, std::max(0, h - foot - field), field, field);
    Place(b.ckJingSel, std::min(kSelectorInset, w - kSelectorSize),
          std::clamp(multiple((h - kSelectorSize) / 2), 0, kSelectorInset), kSelectorSize, kSelectorSize);
}

}  // namespace

GridGeometry GridFor(int blockWidth, int blockHeight, int rows, int columns, int gap,
                     std::string_view marker) {
    GridGeometry g;
    g.gap = gap;
    g.columns = std::max(1, columns);
    const int freeWidth = blockWidth - (columns + 1) * gap;
    const int freeHeight = blockHeight - (rows + 1) * gap;
    g.width = multiple(std::max(0, freeWidth / columns));
    g.height = multiple(std::max(0, freeHeight / rows));
    const int restX = std::max(0, freeWidth - columns * g.width);
    const int restY = std::max(0, freeHeight - rows * g.height);
    g.originX = multiple(restX / 2);
    g.originY = multiple(restY / 2);
    if (marker == "top") {
        g.originY = 0;
    } else if (marker == "bottom") {
        g.originY = restY;
    }
    g.width = std::max(g.width, kMinButtonWidth);
    g.height = std::max(g.height, kMinButtonHeight);
    return g;
}

int HotBlockHeight() {
    if (gridSettings.HotJinglesPos == 0) {
        return 0;
    }
    const int button = multiple(gridSettings.HotJinglesHeight * frmMain().window.height() / 100);
    const bool joined = gridSettings.JoinedJButtons != 0;
    const bool two = gridSettings.HotJinglesRows > 1;
    if (joined) {
        // The first row of a block below the grid keeps a gap above it.
        return (two ? 2 * button : button) + (gridSettings.HotJinglesPos == 2 ? kGap : 0);
    }
    return two ? 2 * button + 3 * kGap : button + 2 * kGap;
}

void DrawGrid() {
    const Control& block = frmMain().fraJingles;
    const bool joined = gridSettings.JoinedJButtons != 0;
    const std::string_view marker = !joined                           ? ""
                                    : gridSettings.HotJinglesPos == 1 ? "top"
                                    : gridSettings.HotJinglesPos == 2 ? "bottom"
                                                                      : "";
    const GridGeometry g =
        GridFor(block.width, block.height, gridSettings.JinglesRows, gridSettings.JinglesCols, JGap, marker);
    for (int i = 0; i <= LastPalIdx; ++i) {
        if (JingleButton* b = Button(i)) {
            Place(b->b_Jingle, g.left(i), g.top(i), g.width, g.height);
            placeParts(*b);
        }
    }
    HotJinglesDraw();
}

void HotJinglesDraw() {
    MainWindow& w = frmMain();
    w.fraHotJingles.visible = gridSettings.HotJinglesPos != 0;
    w.linHotJingles.visible = gridSettings.HotJinglesPos != 0;
    if (gridSettings.HotJinglesPos == 0) {
        return;
    }
    const bool joined = gridSettings.JoinedJButtons != 0;
    const int height = multiple(gridSettings.HotJinglesHeight * w.window.height() / 100);
    const int firstTop = joined && gridSettings.HotJinglesPos == 1 ? 0 : kGap;
    const int secondTop = firstTop + height + (joined ? 0 : kGap);
    const GridGeometry grid = GridFor(w.fraJingles.width, w.fraJingles.height, gridSettings.JinglesRows,
                                      gridSettings.JinglesCols, JGap, "");
    for (int i = kPaletteSlots; i <= LastLiveIdx(); ++i) {
        JingleButton* b = Button(i);
        if (b == nullptr) {
            continue;
        }
        const int column = (i - kPaletteSlots) % gridSettings.JinglesCols;
        const bool second = i - kPaletteSlots >= gridSettings.JinglesCols;
        Place(b->b_Jingle, grid.left(column), second ? secondTop : firstTop, grid.width, height);
        placeParts(*b);
        b->b_Jingle.visible = !second || gridSettings.HotJinglesRows > 1;
    }
}

namespace {

/// The largest caption that leaves room for the duration below it, in points. A low button has one line for
/// both. The least size is large enough that most names of narrow buttons share it.
double largestCaption(int buttonWidth, int buttonHeight) {
    constexpr double pointsPerTwip = 0.05;
    constexpr double ordinary = 225;  // twips: the caption of an ordinary button
    constexpr double least = 165;
    const double high = std::min(0.6 * buttonHeight, std::max(ordinary, 0.24 * buttonHeight));
    return std::min(high, std::max(least, 0.13 * buttonWidth)) * pointsPerTwip;
}

double halfPoints(double size) { return static_cast<int>(size * 2) / 2.0; }

}  // namespace

void UpdateJLblFont() {
    const auto apply = [](int index) {
        JingleButton* b = Button(index);
        if (b == nullptr) {
            return;
        }
        double size = labelSettings.JLabelFontSize;
        if (labelSettings.JLabelAutoSize == 1) {
            // The width sets the size; the height keeps it from being cut.
            size = halfPoints(std::min(size * b->b_Jingle.width() / 12 / 110,
                                       largestCaption(b->b_Jingle.width, b->b_Jingle.height)));
        }
        b->b_Jingle.fontName = labelSettings.JLabelFont;
        b->b_Jingle.fontSize = size;
        b->b_Jingle.fontBold = labelSettings.JLabelFontBold != 0;
        b->b_Jingle.fontItalic = labelSettings.JLabelFontItalic != 0;
    };
    for (const int i : LiveJingles()) {
        apply(i);
    }
}

}  // namespace zv
