/// The grid of jingle buttons and the hot block: arithmetic first, then the records. Twips, rounded down to whole
/// pixels. [control]
#pragma once

#include <string_view>

namespace zv {

/// Gap between buttons and the gap kept outside when they touch each other.
inline constexpr int kGap = 120;
inline constexpr int kJoinedOuterGap = 60;
inline constexpr int kMinButtonWidth = 765;
inline constexpr int kMinButtonHeight = 300;

extern int JGap;       ///< 120, or 0 when the buttons are joined
extern int JOuterGap;  ///< 0, or 60 when they are joined

/// Places of the grid's buttons inside their block.
struct GridGeometry {
    int width = 0, height = 0;     ///< of a button
    int originX = 0, originY = 0;  ///< X0, Y0
    int gap = 0;
    int columns = 1;
    int left(int index) const { return originX + gap + (index % columns) * (width + gap); }
    int top(int index) const { return originY + gap + (index / columns) * (height + gap); }
};
/// Pure arithmetic. `marker` is "top" or "bottom" on a joined grid with hot jingles at that side, else empty.
GridGeometry GridFor(int blockWidth, int blockHeight, int rows, int columns, int gap,
                     std::string_view marker);

/// Places of all live buttons of the grid, and of the hot block.
void DrawGrid();
/// Height of the hot block for the present settings and window; 0 without one.
int HotBlockHeight();
void HotJinglesDraw();
void UpdateJLblFont();

}  // namespace zv
