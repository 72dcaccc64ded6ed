/// The console: a small window with the traces of play, the device messages and the engine's version.
/// [control]
#pragma once

#include "platform/controls.h"

namespace zv {

struct ConsoleWindow {
    ConsoleWindow();

    Control window;  ///< "frmConsole"
    Control lstConsole, ckPause, btCopy, btClear, btClose;
};

ConsoleWindow& frmConsole();
/// Shows it over the main window; it is borderless and dragged by its surface.
void OpenConsole();
void CloseConsole();
extern bool ConsoleOpen;

/// Fills startupUpcalls' console entries.
void FillConsoleUpcalls();

}  // namespace zv
