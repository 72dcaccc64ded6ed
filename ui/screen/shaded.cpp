#include "ui/screen/shaded.h"

#include "model/colours.h"
#include "platform/controls.h"
#include "startup/settings.h"

namespace zv {

ShadedColours Shaded;

void ComputeShaded() {
    const int offset = settings.ShadeOffsetVal;
    const auto shade = [&](Colour colour) { return ShadeColor(colour, offset); };
    Shaded.lp = shade(settings.lpColor);
    Shaded.sq = shade(settings.sqColor);
    Shaded.fx = shade(settings.fxColor);
    Shaded.co = shade(settings.coColor);
    Shaded.ar = shade(settings.arColor);
    Shaded.tc = shade(settings.tcColor);
    Shaded.ps = shade(settings.psColor);
    Shaded.ns = shade(settings.nsColor);
    Shaded.ta = shade(settings.taColor);
    Shaded.am = shade(settings.amColor);
    Shaded.am2 = shade(0xFFFFFF - settings.amColor);
    Shaded.ass = shade(settings.assColor);
    Shaded.sp = shade(settings.spColor);
    Shaded.to = shade(settings.toColor);
    Shaded.mo = shade(settings.moColor);
}

}  // namespace zv
