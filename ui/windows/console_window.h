/// The console: a small window with the traces of play, the device messages and the engine's version.
/// [control]
#pragma once

#include "ui/windows/form_window.h"

namespace zv {

struct ConsoleWindow {
    ConsoleWindow();

    FormWindow form{"frmConsole"};
    Control& lstConsole = form.control("lstConsole", ControlKind::listBox);
    Control& ckPause = form.control("ckPause", ControlKind::checkBox);
    Control& btCopy = form.control("btCopy", ControlKind::button);
    Control& btClear = form.control("btClear", ControlKind::button);
    Control& btClose = form.control("btClose", ControlKind::button);
};

ConsoleWindow& frmConsole();
/// Shows it over the main window; it is borderless and dragged by its surface.
void OpenConsole();
void CloseConsole();
extern bool ConsoleOpen;

/// Fills startupUpcalls' console entries.
void FillConsoleUpcalls();

}  // namespace zv
