#include "ui/screen/digits.h"

#include <cmath>
#include <cstddef>
#include <iterator>
#include <string>

#include "platform/controls.h"
#include "startup/settings/display_settings.h"
#include "ui/records/main_window.h"

namespace zv {

namespace {

constexpr int kSecondsPerMinute = 60;
constexpr int kTenths = 10, kHundredths = 100;  // of a second

void showMinutes(int minutes) {
    DisplayControls& d = frmMain().display;
    const std::string text = std::to_string(minutes);
    Control* digits[] = {&d.lblPosMin, &d.lblPosMinD, &d.lblPosMinC};
    for (std::size_t i = 0; i < std::size(digits); ++i) {
        digits[i]->visible = i < text.size();
        if (i < text.size()) {
            digits[i]->caption = text.substr(text.size() - 1 - i, 1);
        }
    }
    d.sepms.caption = ":";
}

}  // namespace

void SetDigitsColour(Colour colour) {
    for (Control* digit : frmMain().display.digits()) {
        digit->foreColor = colour;
    }
}

void WriteDigits(double seconds) {
    // One number, rounded once (halves go up): all digits are its digits.
    const int parts = displaySettings.DispCSec == 1 ? kHundredths : kTenths;
    const auto total = static_cast<long>(std::floor(seconds * parts + 0.5));
    const auto whole = static_cast<int>(total / parts);
    const int fraction = static_cast<int>(total % parts) * (kHundredths / parts);
    if (whole >= kSecondsPerMinute) {
        showMinutes(whole / kSecondsPerMinute);
    } else {
        HideMinutes();
    }
    DisplayControls& d = frmMain().display;
    const auto digit = [](int number) { return std::to_string(number % 10); };
    d.sepsd.caption = ".";
    d.lblPosSecD.caption = digit(whole % kSecondsPerMinute / 10);
    d.lblPosSecU.caption = digit(whole % kSecondsPerMinute);
    d.lblPosMisD.caption = digit(fraction / 10);
    d.lblPosMisC.caption = displaySettings.DispCSec == 1 ? digit(fraction) : std::string();
}

void HideMinutes() {
    DisplayControls& d = frmMain().display;
    d.lblPosMin.visible = false;
    d.lblPosMinD.visible = false;
    d.lblPosMinC.visible = false;
    d.sepms.caption = std::string();
}

}  // namespace zv
