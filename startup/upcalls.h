/// What the ground floor asks of the rooms above it. They fill the table at start; an unfilled callback does
/// nothing. All are called on the interface thread. [control]
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace zv {

/// State of the mark lblErr.
struct ErrorMark {
    std::string mode;    ///< as given to ErrDisp
    char character = 0;  ///< in the symbol font; 0: leave it as it is
    bool visible = true;
    bool blink = false;
    bool usesPlayingColor = false;  ///< fore colour is playingSettings.PlayingColor
    std::string toolTip;
};

struct StartupUpcalls {
    // ---- errors (ui) ----
    std::function<void(const ErrorMark&)> showErrorMark;  ///< also lblPlayMode(0), (1) in minimal view
    std::function<void()> startSaveTimer;
    std::function<bool()> reportWindowOpen;  ///< frmReportError is visible
    std::function<void(const std::string& title, const std::string& text)> showReportWindow;
    std::function<void()> unloadOtherWindows;  ///< all but the main window
    std::function<void()> endProgram;          ///< unload frmMain and end, without questions
    std::function<bool()> consolePaused;       ///< ckPause of frmConsole
    std::function<void(const std::vector<std::string>& lines, bool clear)> consoleLines;

    std::string serviceAddress;  ///< base address of the support site, for the link in a report

    // ---- live stream (audio) ----
    std::function<void(const std::string& text)> showStreamError;  ///< text of the stream combo box
    std::function<void()> stopPlayStream;

    // ---- language (ui) ----
    std::function<void(const std::string& window, const std::string& key, const std::string& text)> applyText;

    // ---- palettes and settings ----
    std::function<std::vector<std::string>()> paletteNames;  ///< entries of lstPal in their order
    std::function<void()> gridChanged;  ///< LoadZVini knows JinglesRows and JinglesCols: work out LastPalIdx

    // ---- splash (ui) ----
    std::function<void(const std::string& text)> splashStep;  ///< lblStep
    std::function<void(int width)> splashBar;                 ///< width of picLoad in twips
};

extern StartupUpcalls startupUpcalls;

/// Calls `f` with `arguments` unless it is empty.
template <class... Parameters, class... Arguments>
void callUp(const std::function<void(Parameters...)>& f, Arguments&&... arguments) {
    if (f) f(std::forward<Arguments>(arguments)...);
}

}  // namespace zv
