/// A question of the program: a card over the grid that takes the keyboard. Sound goes on behind it, STOP and plain
/// presses of jingles work, everything else waits for the answer. [control]
#pragma once

#include "platform/controls.h"
#include "ui/windows/form_window.h"

namespace zv {

struct QuestionWindow {
    FormWindow form{"frmQuestion"};
    Control& lblIcon = form.control("lblIcon", ControlKind::label);
    Control& lblTitle = form.control("lblTitle", ControlKind::label);
    Control& lblText = form.control("lblText", ControlKind::label);
    Control& btAgree = form.control("btAgree", ControlKind::button);  ///< where agreeing can be taken back
    Control& btDestroy = form.control("btDestroy", ControlKind::button);  ///< where it cannot
    Control& btDecline = form.control("btDecline", ControlKind::button);
    Control& btOK = form.control("btOK", ControlKind::button);

    QuestionWindow();
};
QuestionWindow& frmQuestion();

/// Fills what platform/desktop.h and platform/waiting.h ask of the window, but for what a refused press says.
void FillQuestions();
/// Puts an open question over the grid again, and in front of buttons made since.
void PlaceQuestion();

}  // namespace zv
