#include "ui/screen/window_place.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/settings.h"
#include "ui/records/main_window.h"

namespace zv {

namespace {

constexpr int kTitleBar = 64;  // pixels that a desktop may take from a window that fills it
constexpr int kMaximised = 2;  // of WinState

}  // namespace

void PlaceWindow(Control& window) {
    window.width = settings.WinWidth;
    window.height = settings.WinHeight;
    window.left = settings.PosLeft;
    window.top = settings.PosTop;
    const std::vector<Monitor> screens = monitors();
    if (settings.WinState == kMaximised && !screens.empty()) {
        const auto wanted = static_cast<std::size_t>(settings.Monitor);
        const Monitor& screen = screens[wanted < screens.size() ? wanted : 0];
        window.width = screen.width * kTwipsPerPixel;
        window.height = screen.height * kTwipsPerPixel;
        window.left = screen.left * kTwipsPerPixel;
        window.top = screen.top * kTwipsPerPixel;
    }
}

void TimerMainPosTick() {
    guarded("frmMain.TimerMainPos_Timer", [] {
        const Control& w = frmMain().window;
        if (isMinimised(w) || settings.FullScreen == 1) {
            return;
        }
        const std::vector<Monitor> screens = monitors();
        const bool fills = std::any_of(screens.begin(), screens.end(), [&](const Monitor& m) {
            return w.width() >= m.width * kTwipsPerPixel &&
                   w.height() >= (m.height - kTitleBar) * kTwipsPerPixel;
        });
        settings.WinState = fills ? kMaximised : 0;
        if (fills) {
            return;  // the size that it had before is kept
        }
        settings.WinWidth = w.width;
        settings.WinHeight = w.height;
        settings.PosLeft = w.left;
        settings.PosTop = w.top;
    });
}

}  // namespace zv
