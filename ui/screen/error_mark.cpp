#include "ui/screen/error_mark.h"

#include <string>
#include <string_view>

#include "platform/controls.h"
#include "startup/settings/clock_settings.h"
#include "startup/settings/minimal_settings.h"
#include "startup/settings/playing_settings.h"
#include "startup/upcalls.h"
#include "ui/records/main_window.h"

namespace zv {

namespace {

ErrorMark shown, covered;

/// A mark that tells of a wait hides the mark before it, which comes back when the wait ends.
bool wait(const ErrorMark& mark) { return mark.visible && mark.mode == "wait"; }

}  // namespace

void ShowErrorMark(const ErrorMark& told) {
    if (wait(told) && !wait(shown)) {
        covered = shown;
    }
    const bool uncovers = told.mode == "hide" && wait(shown) && covered.visible && covered.character != 0;
    const ErrorMark mark = uncovers ? covered : told;
    shown = mark;
    if (!wait(mark)) {
        covered = {};
    }
    DisplayControls& d = frmMain().display;
    if (mark.character != 0) {
        d.lblErr.caption = std::string(1, mark.character);
    }
    d.lblErr.foreColor = mark.usesPlayingColor ? playingSettings.PlayingColor : clockSettings.DateTimeColor;
    d.lblErr.toolTip = mark.toolTip;
    d.lblErr.visible = mark.visible;
    if (mark.visible && minimalSettings.MinimalView == 1) {
        for (Control& playMode : d.lblPlayMode) {
            playMode.visible = false;
        }
    }
}

bool ErrMarkShows(std::string_view letter) {
    const Control& mark = frmMain().display.lblErr;
    return mark.visible && mark.caption() == letter;
}

void HideErrMark() {
    if (wait(shown) && covered.visible && covered.character != 0) {
        ErrorMark hide;
        hide.mode = "hide";
        hide.visible = false;
        ShowErrorMark(hide);
        return;
    }
    shown = covered = {};
    Control& mark = frmMain().display.lblErr;
    mark.caption = std::string();
    mark.toolTip = std::string();
    mark.visible = false;
}

}  // namespace zv
