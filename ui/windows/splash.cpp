#include "ui/windows/splash.h"

#include <cstddef>
#include <vector>

#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/settings/window_settings.h"
#include "startup/trace.h"
#include "ui/records/place.h"

namespace zv {

namespace {

constexpr Colour kBack = 0x1C1818, kText = 0xFFFFFF, kBar = 0xFFFF80, kTrack = 0x403C3A;
constexpr int kMargin = 300, kLine = 360, kBarHeight = 90;
constexpr double kTitlePoints = 22;

}  // namespace

Splash::Splash()
    : window("frmSplash", ControlKind::window),
      lblTitle("lblTitle", ControlKind::label, &window),
      lblStep("lblStep", ControlKind::label, &window),
      picLoadBack("picLoadBack", ControlKind::shape, &window),
      picLoad("picLoad", ControlKind::shape, &window) {
    window.caption = "Zentrova";
    window.backColor = kBack;
    window.width = SplashWidth + 2 * kMargin;
    window.height = 3 * kMargin + 3 * kLine + kBarHeight;
    Place(lblTitle, kMargin, kMargin, SplashWidth, 2 * kLine);
    lblTitle.caption = "Zentrova";
    lblTitle.fontSize = kTitlePoints;
    lblTitle.fontBold = true;
    lblTitle.foreColor = kText;
    Place(lblStep, kMargin, kMargin + 2 * kLine, SplashWidth, kLine);
    lblStep.foreColor = kBar;
    Place(picLoadBack, kMargin, 2 * kMargin + 3 * kLine, SplashWidth, kBarHeight);
    picLoadBack.backColor = kTrack;
    Place(picLoad, kMargin, 2 * kMargin + 3 * kLine, 0, kBarHeight);
    picLoad.backColor = kBar;
}

Splash& frmSplash() {
    static Splash splash;
    return splash;
}

void ShowSplash() {
    Control& w = frmSplash().window;
    const std::vector<Monitor> all = monitors();
    if (!all.empty()) {
        const auto index = static_cast<std::size_t>(windowSettings.Monitor);
        const Monitor& m = all[index < all.size() ? index : 0];
        w.left = m.left * kTwipsPerPixel + (m.width * kTwipsPerPixel - w.width()) / 2;
        w.top = m.top * kTwipsPerPixel + (m.height * kTwipsPerPixel - w.height()) / 2;
    }
    showWindow(w);
}

void UnloadSplash() { hideWindow(frmSplash().window); }

}  // namespace zv
