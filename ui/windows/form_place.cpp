#include "ui/windows/form_place.h"

#include <algorithm>
#include <vector>

#include "platform/controls.h"
#include "platform/desktop.h"
#include "ui/records/main_window.h"

namespace zv {

namespace {

constexpr int kLeastHeight = 380;  // a window lower than that serves nobody: it rather covers the panel
constexpr int kGap = 8;
constexpr int kLeastSeen = 64;  // of a window's title on a screen, so that it can be drawn back

int pixels(int twips) { return twips / kTwipsPerPixel; }

Monitor screenOf(const Control& window) {
    const std::vector<Monitor> all = monitors();
    const int x = pixels(window.left + window.width / 2), y = pixels(window.top + window.height / 2);
    for (const Monitor& m : all) {
        if (x >= m.left && x < m.left + m.width && y >= m.top && y < m.top + m.height) return m;
    }
    return all.empty() ? Monitor{0, 0, pixels(window.width), pixels(window.height)} : all.front();
}

}  // namespace

WindowRoom RoomOverGrid() {
    const MainWindow& main = frmMain();
    const Monitor screen = screenOf(main.window);
    const Control& strip = main.display.picDispBack;
    WindowRoom room;
    room.width = std::min(kWidestWindow, screen.width - 2 * kGap);
    room.left = pixels(main.window.left + main.window.width / 2) - room.width / 2;
    room.top = std::max(pixels(main.window.top + strip.top + strip.height), screen.top) + kGap;
    const int bottom = screen.top + screen.height - kGap;
    room.height = bottom - room.top - kFrameHeight;
    if (room.height < kLeastHeight) {
        room.height = std::min(kLeastHeight, screen.height - kFrameHeight - 2 * kGap);
        room.top = bottom - room.height - kFrameHeight;
    }
    return room;
}

std::pair<int, int> PlaceOverGrid(int width, int innerHeight) {
    const WindowRoom room = RoomOverGrid();
    const Control& main = frmMain().window;
    const Monitor screen = screenOf(main);
    const int height = innerHeight + kFrameHeight;
    const int grid = pixels(main.top + main.height) - room.top;
    const int left = pixels(main.left + main.width / 2) - width / 2;
    const int lowest = screen.top + screen.height - kGap - height;
    return {std::clamp(left, screen.left, std::max(screen.left, screen.left + screen.width - width)),
            std::clamp(room.top + (grid - height) / 2, room.top, std::max(room.top, lowest))};
}

void PlaceOverGrid(Control& window) {
    const auto [left, top] = PlaceOverGrid(pixels(window.width), pixels(window.height));
    window.left = left * kTwipsPerPixel;
    window.top = top * kTwipsPerPixel;
}

void HoldOnScreen(Control& window) {
    const int x = pixels(window.left + window.width / 2), y = pixels(window.top);
    for (const Monitor& m : monitors()) {
        const bool beside = x < m.left || x >= m.left + m.width;
        if (!beside && y >= m.top && y <= m.top + m.height - kLeastSeen) return;
    }
    PlaceOverGrid(window);
}

}  // namespace zv
