// FormDraw and the making of buttons.
#include "ui/layout.h"

#include <algorithm>

#include "audio/devices.h"
#include "audio/streams.h"
#include "model/jingle.h"
#include "model/state.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/settings.h"
#include "startup/stores.h"
#include "startup/trace.h"
#include "ui/clock_display.h"
#include "ui/commands.h"
#include "ui/jingle_buttons.h"
#include "ui/layout_parts.h"
#include "ui/main_window.h"
#include "ui/palette_list.h"

namespace zv {

int JGap = kGap;
int JOuterGap = 0;
int ActiveTab = 0;

namespace {

constexpr int px(double pixels) { return static_cast<int>(pixels) * kTwipsPerPixel; }

// The drawing of the window is 1280 x 800 pixels; these are its measures.
constexpr double kDrawnHeight = 800;
constexpr double kDrawnStripWidth = 1248;  // without the two gaps between its three parts
constexpr double kDrawnDisplay = 420, kDrawnKeys = 300, kDrawnStrip = 156;
constexpr int kMinStrip = 132, kMaxStrip = 300;
constexpr int kSideMeter = 44, kTopMeter = 24;
constexpr int kOutside = kGap;

int stripHeight(int windowHeight) {
    const double pixels = windowHeight / kTwipsPerPixel * kDrawnStrip / kDrawnHeight;
    return px(std::clamp(pixels, double{kMinStrip}, double{kMaxStrip}));
}

void place(Control& c, int left, int top, int width, int height) {
    c.left = left;
    c.top = top;
    c.width = std::max(0, width);
    c.height = std::max(0, height);
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
    place(w.display.picDispBack, left, kOutside, display, height);
    left += display + kGap;
    place(w.fraPanel, left, kOutside, panel, height);
    left += panel + kGap;
    place(w.keys.fraKeys, left, kOutside, keys, height);
    DrawDisplay();
    DrawKeys();
    for (int tab = 0; tab < kTabs; ++tab) {
        TabDraw(tab);
    }
}

/// Places the meters at their side and takes their room from the area.
void drawMeterBlock(Area& area) {
    MainWindow& w = frmMain();
    const std::string& side = settings.VUPos;
    w.fraVU.visible = side != "n";
    const int wide = px(kSideMeter);
    if (side == "t") {
        place(w.fraVU, kOutside, area.top + kGap, area.right - 2 * kOutside, px(kTopMeter));
        area.top += kGap + px(kTopMeter);
    } else if (side == "l") {
        place(w.fraVU, kOutside, area.top + kGap, wide, area.bottom - area.top - kGap - kOutside);
        area.left += kOutside + wide;
    } else if (side == "r") {
        place(w.fraVU, area.right - kOutside - wide, area.top + kGap, wide,
              area.bottom - area.top - kGap - kOutside);
        area.right -= kOutside + wide;
    }
    DrawMeters();
}

void drawBlocks(const Area& area) {
    MainWindow& w = frmMain();
    const int hot = HotBlockHeight();
    const int width = area.right - area.left - 2 * JOuterGap;
    const int left = area.left + JOuterGap;
    const int top = area.top + JOuterGap;
    const int bottom = area.bottom - JOuterGap;
    if (settings.HotJinglesPos == 1) {
        place(w.fraHotJingles, left, top, width, hot);
        place(w.fraJingles, left, top + hot, width, bottom - top - hot);
        place(w.linHotJingles, left + kGap, top + hot, width - 2 * kGap, kTwipsPerPixel);
    } else {
        place(w.fraJingles, left, top, width, bottom - top - hot);
        place(w.fraHotJingles, left, bottom - hot, width, hot);
        place(w.linHotJingles, left + kGap, bottom - hot - kTwipsPerPixel, width - 2 * kGap, kTwipsPerPixel);
    }
    DrawGrid();
}

/// What depends on settings: which controls exist at all.
void showBySettings() {
    MainWindow& w = frmMain();
    const bool mix = settings.DeviceSingle == 0;
    w.keys.btMicPush.visible = mix;
    w.keys.btMicTO.visible = mix;
    w.keys.btMicPush.enabled = settings.InputEnabled == 1;
    w.keys.btMicTO.enabled = settings.InputEnabled == 1;
    w.display.txtDisPal.visible = settings.DisPalName == 1;
    JGap = settings.JoinedJButtons == 1 ? 0 : kGap;
    JOuterGap = settings.JoinedJButtons == 1 ? kJoinedOuterGap : 0;
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
            setFullScreen(w.window, settings.FullScreen == 1);
            showBySettings();
            DrawJButtons(0);
        }
        const int height = stripHeight(w.window.height);
        drawStrip(w.window.width, height);
        Area area{0, kOutside + height, GetMultipleOf(w.window.width, kTwipsPerPixel),
                  GetMultipleOf(w.window.height, kTwipsPerPixel)};
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
            JExists[static_cast<std::size_t>(i)] = i == 0 || Button(i) != nullptr ? 1 : 0;
        }
        MakeButton(0);
        LastPalIdx = settings.JinglesRows * settings.JinglesCols - 1;
        if (Unloading) {
            return;
        }
        lockUpdates();
        const int live = LastPalIdx + 1 + 2 * settings.JinglesCols;
        for (int i = 0; i < kJingles; ++i) {
            if (!IsLive(i)) {
                ShowButton(i, false);
                continue;
            }
            guarded("frmMain.DrawJButtons", [&] {
                JingleButton& b = MakeButton(i);
                JExists[static_cast<std::size_t>(i)] = 1;
                ShowButton(i, i < kPaletteSlots || i < kPaletteSlots + settings.JinglesCols ||
                                  settings.HotJinglesRows > 1);
                if (J[static_cast<std::size_t>(i)].Path.empty()) {
                    b.b_Jingle.caption = std::string();
                    b.b_Jingle.toolTip = std::string();
                }
                if (load == 1) {
                    const bool hot = i >= kPaletteSlots;
                    openNames(i, hot ? kHotSection : settings.PaletteIndex, hot);
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

void ChangeTab(int tab) {
    guarded("frmMain.ChangeTab", [&] {
        if (settings.MinimalView == 1 || tab < 0 || tab >= kTabs) {
            return;
        }
        ResetOption();
        ActiveTab = tab;
        TabDraw(tab);
        MainWindow& w = frmMain();
        for (int i = 0; i < kTabs; ++i) {
            w.ckTab[static_cast<std::size_t>(i)].value = i == tab ? 1 : 0;
            w.fraTab[static_cast<std::size_t>(i)].visible = i == tab;
        }
    });
}

void SetJoinedJButtons(bool joined) {
    settings.JoinedJButtons = joined ? 1 : 0;
    JOuterGap = joined ? kJoinedOuterGap : 0;
    JGap = joined ? 0 : kGap;
    FormDraw();
}

}  // namespace zv
