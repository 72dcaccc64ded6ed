#include "model/colours.h"

#include <algorithm>
#include <cmath>

#include "model/state.h"
#include "startup/helpers.h"
#include "startup/settings.h"

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
    const bool dark = settings.DarkMode == 1;
    if (colour == BtnFaceColor) return jingle ? JingleForeColor : dark ? kWhite : kBlack;
    const bool onDark = Luminosity(colour) <= settings.BrightThresh;
    if (!dark) {
        if (onDark) return settings.ColForeCB;
        return jingle ? JingleForeColor : BtnForeColor;
    }
    if (!onDark) return settings.ColForeCBDM;
    return jingle ? JingleForeColor : settings.DarkForeColor;
}

std::int32_t ButtonColour(std::string_view btnCol) {
    if (btnCol.empty() || btnCol == kFaceColourText) return BtnFaceColor;
    return ShadeColor(HexToRGB(btnCol), settings.ShadeOffsetVal);
}

ModeColour PlayMod2Color(PlayMode mode) {
    const auto shaded = [](std::int32_t colour) {
        return ModeColour{ShadeColor(colour, settings.ShadeOffsetVal), true};
    };
    switch (mode) {
        case PlayMode::autoRepeat:
            return shaded(settings.arColor);
        case PlayMode::touch:
            return shaded(settings.tcColor);
        case PlayMode::playStop:
            return shaded(settings.psColor);
        case PlayMode::noStop:
            return shaded(settings.nsColor);
        case PlayMode::global:
            break;
    }
    return {};
}

}  // namespace zv
