/// Where everything stands: all places are worked out from the inner size of the window, in twips rounded
/// down to whole pixels. Nothing is laid out while the program loads or unloads (LoadingUI), nor while it is
/// minimised.
#pragma once

#include <string>
#include <string_view>

namespace zv {

/// Gap between buttons and the gap kept outside when they touch each other.
inline constexpr int kGap = 120;
inline constexpr int kJoinedOuterGap = 60;
inline constexpr int kMinButtonWidth = 765;
inline constexpr int kMinButtonHeight = 300;

extern int JGap;       ///< 120, or 0 when the buttons are joined
extern int JOuterGap;  ///< 0, or 60 when they are joined
extern int ActiveTab;  ///< 0 to 3

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

/// Lays out all; `mode` "init" also shows and hides what depends on settings. [control]
void FormDraw(const std::string& mode = {});
/// Makes or hides the families for the grid size; `load` 1 opens each slot again. [control]
void DrawJButtons(int load);
/// Height of the hot block for the present settings and window; 0 without one.
int HotBlockHeight();
void HotJinglesDraw();
void TabDraw(int tab);
/// Shows a tab; refused in minimal view. [control]
void ChangeTab(int tab);
void UpdateJLblFont();
/// Turns the gap of the grid on or off ("Alt+F9") and draws again. [control]
void SetJoinedJButtons(bool joined);

/// The caption of a path; empty for an empty path and for a bare drive. [control]
std::string btCaption(const std::string& path);
/// The tool tip of a button that failed to open: caption, the language's text, the error, a line each.
std::string MakeBJingName(const std::string& error, const std::string& path);
/// Captions of all live buttons anew, with or without the duration. [control]
void RewriteJingle();

}  // namespace zv
