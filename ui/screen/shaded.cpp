#include "ui/screen/shaded.h"

#include "model/colours.h"
#include "platform/controls.h"
#include "startup/settings/dark_settings.h"
#include "startup/settings/marks_settings.h"

namespace zv {

ShadedColours Shaded;

void ComputeShaded() {
    const int offset = darkSettings.ShadeOffsetVal;
    const auto shade = [&](Colour colour) { return ShadeColor(colour, offset); };
    Shaded.lp = shade(markSettings.lpColor);
    Shaded.sq = shade(markSettings.sqColor);
    Shaded.fx = shade(markSettings.fxColor);
    Shaded.co = shade(markSettings.coColor);
    Shaded.ar = shade(markSettings.arColor);
    Shaded.tc = shade(markSettings.tcColor);
    Shaded.ps = shade(markSettings.psColor);
    Shaded.ns = shade(markSettings.nsColor);
    Shaded.ta = shade(markSettings.taColor);
    Shaded.am = shade(markSettings.amColor);
    Shaded.am2 = shade(0xFFFFFF - markSettings.amColor);
    Shaded.ass = shade(markSettings.assColor);
}

}  // namespace zv
