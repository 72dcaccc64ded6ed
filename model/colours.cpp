#include "model/colours.h"

#include <algorithm>
#include <cmath>

#include "model/state.h"
#include "startup/helpers.h"
#include "startup/settings/dark_settings.h"
#include "startup/settings/marks_settings.h"

namespace zv {
namespace {

constexpr int kBlack = 0;
constexpr int kWhite = 0xFFFFFF;

int held(int channel) { return std::clamp(channel, 0, 255); }

}  // namespace

int Luminosity(std::int32_t colour) {
    const RGBParts parts = LongToRGB(colour);
    const double largest = std::max({parts.red, parts.green, parts.blue}) / 255.0;
    const double smallest = std::min({parts.red, parts.green, parts.blue}) / 255.0;
    return static_cast<int>(std::lround((largest + smallest) / 2 * 240));
}

std::int32_t ShadeColor(std::int32_t colour, int offset) {
    const int red = held((colour & 0xFF) + offset);
    const int green = held((colour & 0xFF00) / 255 + offset);
    const int blue = held((colour & 0xFF0000) / 65280 + offset);
    return red | green << 8 | blue << 16;
}

std::int32_t GetForeColor(std::int32_t colour, std::string_view kind) {
    const bool jingle = kind == "jingle";
    const bool dark = darkSettings.DarkMode == 1;
    if (colour == BtnFaceColor) return jingle ? JingleForeColor : dark ? kWhite : kBlack;
    const bool onDark = Luminosity(colour) <= darkSettings.BrightThresh;
    if (!dark) {
        if (onDark) return darkSettings.ColForeCB;
        return jingle ? JingleForeColor : BtnForeColor;
    }
    if (!onDark) return darkSettings.ColForeCBDM;
    return jingle ? JingleForeColor : darkSettings.DarkForeColor;
}

std::int32_t ButtonColour(std::string_view btnCol) {
    if (btnCol.empty() || btnCol == kFaceColourText) return BtnFaceColor;
    return ShadeColor(HexToRGB(btnCol), darkSettings.ShadeOffsetVal);
}

ModeColour PlayMod2Color(PlayMode mode) {
    const auto shaded = [](std::int32_t colour) {
        return ModeColour{ShadeColor(colour, darkSettings.ShadeOffsetVal), true};
    };
    switch (mode) {
        case PlayMode::autoRepeat:
            return shaded(markSettings.arColor);
        case PlayMode::touch:
            return shaded(markSettings.tcColor);
        case PlayMode::playStop:
            return shaded(markSettings.psColor);
        case PlayMode::noStop:
            return shaded(markSettings.nsColor);
        case PlayMode::global:
            break;
    }
    return {};
}

}  // namespace zv
