#include "ui/screen/window_place.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/settings/window_settings.h"
#include "ui/records/main_window.h"

namespace zv {

namespace {

constexpr int kTitleBar = 64;  // pixels that a desktop may take from a window that fills it
constexpr int kBars = 96;      // what its title and the bars of a desktop take at most
constexpr int kMaximised = 2;  // of WinState

/// The screen that the settings name, or the first.
Monitor namedScreen(const std::vector<Monitor>& screens) {
    const auto wanted = static_cast<std::size_t>(windowSettings.Monitor);
    return screens[wanted < screens.size() ? wanted : 0];
}

/// The screen that holds the middle of the window's title, as far as a screen is wide; else the one that the
/// settings name.
Monitor screenFor(const Control& window, const std::vector<Monitor>& screens) {
    int widest = 0;
    for (const Monitor& m : screens) widest = std::max(widest, m.width);
    const int x = window.left / kTwipsPerPixel + std::min(window.width / kTwipsPerPixel, widest) / 2;
    const int y = window.top / kTwipsPerPixel;
    for (const Monitor& m : screens) {
        if (x >= m.left && x < m.left + m.width && y >= m.top && y < m.top + m.height) {
            return m;
        }
    }
    return namedScreen(screens);
}

/// A size and a place inside the screen, whatever the file says.
void holdToScreen(Control& window, const Monitor& screen) {
    const int wide = screen.width * kTwipsPerPixel;
    const int high = (screen.height - kTitleBar) * kTwipsPerPixel;
    window.width = std::clamp(window.width(), std::min(MinWinWidth * kTwipsPerPixel, wide), wide);
    window.height = std::clamp(window.height(), std::min(MinWinHeight * kTwipsPerPixel, high), high);
    const int left = screen.left * kTwipsPerPixel, top = screen.top * kTwipsPerPixel;
    window.left = std::clamp(window.left(), left, left + wide - window.width);
    window.top = std::clamp(window.top(), top, top + high - window.height);
}

}  // namespace

void LimitWindow(Control& window) {
    int width = MinWinWidth, height = MinWinHeight;
    for (const Monitor& m : monitors()) {
        width = std::min(width, m.width);
        height = std::min(height, m.height - kBars);
    }
    setMinimumSize(window, width, height);
}

void PlaceWindow(Control& window) {
    window.width = windowSettings.WinWidth;
    window.height = windowSettings.WinHeight;
    window.left = windowSettings.PosLeft;
    window.top = windowSettings.PosTop;
    const std::vector<Monitor> screens = monitors();
    if (windowSettings.WinState == kMaximised && !screens.empty()) {
        const Monitor screen = namedScreen(screens);
        window.width = screen.width * kTwipsPerPixel;
        window.height = screen.height * kTwipsPerPixel;
        window.left = screen.left * kTwipsPerPixel;
        window.top = screen.top * kTwipsPerPixel;
    } else if (!screens.empty()) {
        holdToScreen(window, screenFor(window, screens));
    }
}

void TimerMainPosTick() {
    guarded("frmMain.TimerMainPos_Timer", [] {
        const Control& w = frmMain().window;
        if (isMinimised(w) || windowSettings.FullScreen == 1) {
            return;
        }
        const std::vector<Monitor> screens = monitors();
        if (screens.empty()) return;
        const Monitor m = screenFor(w, screens);
        const bool fills =
            w.width() >= m.width * kTwipsPerPixel && w.height() >= (m.height - kTitleBar) * kTwipsPerPixel;
        windowSettings.WinState = fills ? kMaximised : 0;
        if (fills) {
            return;  // the size that it had before is kept
        }
        windowSettings.WinWidth = w.width;
        windowSettings.WinHeight = w.height;
        windowSettings.PosLeft = w.left;
        windowSettings.PosTop = w.top;
    });
}

}  // namespace zv
