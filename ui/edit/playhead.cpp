#include "ui/edit/playhead.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "audio/edit_sound.h"
#include "audio/sounding.h"
#include "model/state.h"
#include "startup/guard.h"
#include "ui/edit/edited_jingle.h"
#include "ui/windows/jingle_window.h"

namespace zv {

namespace {

double lengthSeconds() { return EditSeconds(Edited.index, EditLength(Edited.index).length); }

/// SlidePos stands at a part of the file's length.
double slidTo() {
    const Control& slider = frmFX().SlidePos;
    return lengthSeconds() * slider.value() / std::max(1, slider.maximum());
}

void slideTo(double seconds) {
    Control& slider = frmFX().SlidePos;
    const double length = lengthSeconds();
    const double share = length > 0 ? std::clamp(seconds / length, 0.0, 1.0) : 0;
    slider.value = static_cast<int>(std::lround(share * slider.maximum()));
}

}  // namespace

double Playhead() {
    return Sounds(Edited.index) ? EditSeconds(Edited.index, EditPosition(Edited.index)) : slidTo();
}

void PlacePlayhead(double seconds) {
    slideTo(seconds);
    if (Sounds(Edited.index))
        EditSeek(Edited.index, EditBytes(Edited.index, std::min(seconds, lengthSeconds())));
    ShowPlayhead();
}

void ShowPlayhead() {
    JingleWindow& w = frmFX();
    const double at = Playhead();
    const FieldTime time = FieldsOf(at);
    w.lblPos.caption = TimeText(time);
    w.lblPosMinVal.caption = std::to_string(time.minutes);
    w.lblPosSecVal.caption = TwoDigits(time.seconds);
    w.lblPosCs.caption = TwoDigits(time.hundredths);
    if (Sounds(Edited.index)) slideTo(at);
}

void ResetPlayhead() {
    frmFX().SlidePos.value = 0;
    ShowPlayhead();
}

void WirePlayhead() {
    frmFX().SlidePos.onDescribe = [] { return frmFX().lblPos.caption(); };
    frmFX().SlidePos.onChange = [] {
        guarded("frmFX.SlidePos_Change", [] {
            if (FxOpen) PlacePlayhead(slidTo());
        });
    };
}

}  // namespace zv
