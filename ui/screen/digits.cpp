#include "ui/screen/digits.h"

#include <cmath>
#include <cstddef>
#include <cstdio>
#include <iterator>
#include <string>

#include "platform/controls.h"
#include "startup/helpers.h"
#include "startup/settings.h"
#include "ui/records/main_window.h"

namespace zv {

namespace {

constexpr int kSecondsPerMinute = 60;

std::string fixed(double value, int decimals) {
    char text[64];
    // Halves go up, as the display always did.
    const double scale = std::pow(10.0, decimals);
    std::snprintf(text, sizeof text, "%.*f", decimals, std::floor(value * scale + 0.5) / scale);
    return text;
}

std::string lastCharacter(const std::string& text) {
    return text.empty() ? std::string() : text.substr(text.size() - 1);
}

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

void WriteDigits(double remain, const std::string& text) {
    DisplayControls& d = frmMain().display;
    const double value = Val(text);
    const int minutes = static_cast<int>(value / kSecondsPerMinute);
    const int whole = static_cast<int>(value) - minutes * kSecondsPerMinute;
    char seconds[16];
    std::snprintf(seconds, sizeof seconds, "%02d", whole);
    if (remain > kSecondsPerMinute) {
        showMinutes(minutes);
    } else {
        HideMinutes();
    }
    d.sepsd.caption = ".";
    d.lblPosSecD.caption = std::string(1, seconds[0]);
    d.lblPosSecU.caption = std::string(1, seconds[1]);
    d.lblPosMisD.caption = lastCharacter(fixed(value, 1));
    d.lblPosMisC.caption = settings.DispCSec == 1 ? lastCharacter(fixed(value, 2)) : std::string();
}

void HideMinutes() {
    DisplayControls& d = frmMain().display;
    d.lblPosMin.visible = false;
    d.lblPosMinD.visible = false;
    d.lblPosMinC.visible = false;
    d.sepms.caption = std::string();
}

}  // namespace zv
