#include "ui/screen/layout.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "audio/streams.h"
#include "model/held_palette.h"
#include "model/jingle.h"
#include "model/state.h"
#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/settings/devices_settings.h"
#include "startup/settings/grid_settings.h"
#include "startup/settings/meters_settings.h"
#include "startup/settings/palette_list_settings.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings/volumes_settings.h"
#include "startup/settings/window_settings.h"
#include "startup/stores.h"
#include "startup/trace.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/records/place.h"
#include "ui/screen/button_faces.h"
#include "ui/screen/clock.h"
#include "ui/screen/layout_grid.h"
#include "ui/screen/layout_strip.h"

namespace zv {

namespace {

constexpr int px(double pixels) { return static_cast<int>(pixels) * kTwipsPerPixel; }

// The drawing of the window is 1280 x 800 pixels; these are its measures.
constexpr double kDrawnHeight = 800;
constexpr double kDrawnStripWidth = 1248;  // without the two gaps between its three parts
constexpr double kDrawnDisplay = 420, kDrawnKeys = 300, kDrawnStrip = 156;
constexpr int kMinStrip = 156, kMaxStrip = 300;
constexpr int kSideMeter = 44, kTopMeter = 24;
constexpr int kOutside = kGap;

int stripHeight(int windowHeight) {
    const double pixels = windowHeight / kTwipsPerPixel * kDrawnStrip / kDrawnHeight;
    return px(std::clamp(pixels, double{kMinStrip}, double{kMaxStrip}));
}

struct Area {
    int left, top, right, bottom;
};

void drawStrip(int windowWidth, int height) {
    MainWindow& w = frmMain();
    const int width = windowWidth - 2 * kOutside - 2 * kGap;
    const int display =
        GetMultipleOf(static_cast<int>(width * kDrawnDisplay / kDrawnStripWidth), kTwipsPerPixel);
    const int keys = GetMultipleOf(static_cast<int>(width * kDrawnKeys / kDrawnStripWidth), kTwipsPerPixel);
    const int panel = GetMultipleOf(width, kTwipsPerPixel) - display - keys;
    int left = kOutside;
    Place(w.display.picDispBack, left, kOutside, display, height);
    left += display + kGap;
    Place(w.fraPanel, left, kOutside, panel, height);
    left += panel + kGap;
    Place(w.keys.fraKeys, left, kOutside, keys, height);
    DrawDisplay();
    DrawKeys();
    for (int tab = 0; tab < kTabs; ++tab) {
        TabDraw(tab);
    }
}

bool joined() { return gridSettings.JoinedJButtons != 0; }

/// Inset of the button blocks. Buttons with gaps bring their own; joined ones are inset, so that their edges stand
/// under those of the strip.
int blockInset() { return joined() ? kOutside : 0; }

/// Gap between a hot block above and a joined grid; buttons with gaps bring their own.
int gapBelowHotBlock() { return joined() && gridSettings.HotJinglesPos == 1 ? kGap : 0; }

/// Twips that remain when a length is divided into equal buttons of whole pixels.
int leftOver(int length, int buttons, int smallest) {
    const int room = length - (buttons + 1) * JGap;
    return room / buttons < smallest ? 0 : room % (buttons * kTwipsPerPixel);
}

int leftOverHeight(const Area& area) {
    const bool across = meterSettings.VUPos == "t";
    const int taken =
        HotBlockHeight() + gapBelowHotBlock() + 2 * blockInset() + (across ? kGap + px(kTopMeter) : 0);
    return leftOver(area.bottom - area.top - taken, gridSettings.JinglesRows, kMinButtonHeight);
}

/// Places the meters at their side and takes their room from the area. Meters at a side take what the grid
/// cannot share out, so that the gaps stay even.
void drawMeterBlock(Area& area) {
    MainWindow& w = frmMain();
    const std::string& side = meterSettings.VUPos;
    w.fraVU.visible = side != "n";
    const int narrow = px(kSideMeter);
    const int wide = narrow + leftOver(area.right - area.left - kOutside - narrow - 2 * blockInset(),
                                       gridSettings.JinglesCols, kMinButtonWidth);
    if (side == "t") {
        Place(w.fraVU, kOutside, area.top + kGap, area.right - 2 * kOutside, px(kTopMeter));
        area.top += kGap + px(kTopMeter);
    } else if (side == "l") {
        Place(w.fraVU, kOutside, area.top + kGap, wide, area.bottom - area.top - kGap - kOutside);
        area.left += kOutside + wide;
    } else if (side == "r") {
        Place(w.fraVU, area.right - kOutside - wide, area.top + kGap, wide,
              area.bottom - area.top - kGap - kOutside);
        area.right -= kOutside + wide;
    }
    DrawMeters();
}

void drawBlocks(const Area& area) {
    MainWindow& w = frmMain();
    const int hot = HotBlockHeight();
    const int inset = blockInset();
    const int width = area.right - area.left - 2 * inset;
    const int left = area.left + inset;
    const int top = area.top + inset;
    const int bottom = area.bottom - inset;
    const int gap = gapBelowHotBlock();
    int line = 0;  // in the middle of what parts the blocks
    if (gridSettings.HotJinglesPos == 1) {
        Place(w.fraHotJingles, left, top, width, hot);
        Place(w.fraJingles, left, top + hot + gap, width, bottom - top - hot - gap);
        line = top + hot + gap / 2;
    } else {
        Place(w.fraJingles, left, top, width, bottom - top - hot);
        Place(w.fraHotJingles, left, bottom - hot, width, hot);
        line = bottom - hot + (joined() ? kGap / 2 : -kTwipsPerPixel);
    }
    const int lineInset = kOutside - inset;
    Place(w.linHotJingles, left + lineInset, line, width - 2 * lineInset, kTwipsPerPixel);
    DrawGrid();
}

/// What depends on settings: which controls exist at all.
void showBySettings() {
    MainWindow& w = frmMain();
    const bool mix = deviceSettings.DeviceSingle == 0;
    w.keys.btMicPush.visible = mix;
    w.keys.btMicTO.visible = mix;
    w.keys.btMicPush.enabled = volumeSettings.InputEnabled == 1;
    w.keys.btMicTO.enabled = volumeSettings.InputEnabled == 1;
    w.display.txtDisPal.visible = paletteListSettings.DisPalName == 1;
    JGap = gridSettings.JoinedJButtons == 1 ? 0 : kGap;
    JOuterGap = gridSettings.JoinedJButtons == 1 ? kJoinedOuterGap : 0;
}

}  // namespace

void FormDraw(const std::string& mode) {
    guarded("frmMain.FormDraw", [&] {
        MainWindow& w = frmMain();
        if (LoadingUI || isMinimised(w.window) || w.window.width() <= 0 || w.window.height() <= 0) {
            return;
        }
        lockUpdates();
        if (mode == "init") {
            setFullScreen(w.window, windowSettings.FullScreen == 1);
            showBySettings();
            DrawJButtons(0);
        }
        const int height = stripHeight(w.window.height);
        Area area{0, kOutside + height, GetMultipleOf(w.window.width, kTwipsPerPixel),
                  GetMultipleOf(w.window.height, kTwipsPerPixel)};
        // The strip takes the few pixels of height that the rows cannot share out.
        const int rest = leftOverHeight(area);
        area.top += rest;
        drawStrip(w.window.width, height + rest);
        drawMeterBlock(area);
        drawBlocks(area);
        UpdateJLblFont();
        DateTimeUpdate();
        unlockUpdates();
    });
}

void DrawJButtons(int load) {
    guarded("frmMain.DrawJButtons", [&] {
        for (int i = 0; i < kJingles; ++i) {
            JExists[static_cast<std::size_t>(i)] = Button(i) != nullptr ? 1 : 0;
        }
        LastPalIdx = gridSettings.JinglesRows * gridSettings.JinglesCols - 1;
        if (Unloading) {
            return;
        }
        lockUpdates();
        const int live = LastPalIdx + 1 + 2 * gridSettings.JinglesCols;
        for (int i = 0; i < kJingles; ++i) {
            if (!IsLive(i)) {
                ShowButton(i, false);
                continue;
            }
            guarded("frmMain.DrawJButtons", [&] {
                JingleButton& b = MakeButton(i);
                JExists[static_cast<std::size_t>(i)] = 1;
                ShowButton(i, i < kPaletteSlots || i < kPaletteSlots + gridSettings.JinglesCols ||
                                  gridSettings.HotJinglesRows > 1);
                if (Jingle(i).Path.empty() && Jingle(i).Kind != SlotKind::playlist) {
                    b.b_Jingle.caption = std::string();
                    b.b_Jingle.toolTip = std::string();
                }
                if (load == 1) {
                    const bool hot = i >= kPaletteSlots;
                    const std::string& palette =
                        HeldPalette().empty() ? paletteSettings.PaletteIndex : HeldPalette();
                    openNames(i, hot ? kHotSection : palette, hot);
                    openStreams(i);
                }
            });
            if (LoadingUI) {
                AddProgress(40.0 / live);
            }
        }
        unlockUpdates();
    });
}

void SetJoinedJButtons(bool joined) {
    gridSettings.JoinedJButtons = joined ? 1 : 0;
    FormDraw("init");
}

}  // namespace zv
