/// The progress of measuring several jingles. What it does stands in ui/edit. [control]
#pragma once

#include "ui/windows/form_window.h"

namespace zv {

struct LevelWindow {
    LevelWindow();

    FormWindow form{"frmLoudness", "lvTitle"};
    Control& lblNote = form.control("lblNote", ControlKind::label);
    Control& barDone = form.control("barDone", ControlKind::progress);
    Control& btCancel = form.control("btCancel", ControlKind::button, "lvCancel");
};

LevelWindow& frmLoudness();

}  // namespace zv
