/// Colours by arithmetic. All are 0xBBGGRR. [control]
#pragma once

#include <cstdint>
#include <string_view>

#include "model/jingle.h"

namespace zv {

/// Lightness on a scale of 0 to 240: half the sum of the largest and the smallest channel.
int Luminosity(std::int32_t colour);
/// `offset` (may be negative) added to each channel, each held to 0..255. Green and blue come out a little
/// higher than they went in: their divisors are 255 and 65280.
std::int32_t ShadeColor(std::int32_t colour, int offset);
/// Text colour for a background; `kind` "jingle" is a jingle button.
std::int32_t GetForeColor(std::int32_t colour, std::string_view kind = {});
/// Back colour of a button for its BTNCol: the face, or the colour shaded by ShadeOffsetVal.
std::int32_t ButtonColour(std::string_view btnCol);

struct ModeColour {
    std::int32_t colour = 0;
    bool visible = false;
};
/// The mark of a play mode: none for the global one, else the option's shaded colour.
ModeColour PlayMod2Color(PlayMode mode);

}  // namespace zv
